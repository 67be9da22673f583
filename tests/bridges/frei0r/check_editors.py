"""check_editors.py FILTER FOLDER: the editors' descriptions in FOLDER name the parameters of the frei0r filter FILTER,
with its defaults; the XML is well formed, and so is the QML where qmllint is installed."""

import ctypes
import re
import shutil
import subprocess
import sys
import xml.etree.ElementTree
from pathlib import Path


class ParameterInfo(ctypes.Structure):
    _fields_ = [("name", ctypes.c_char_p), ("type", ctypes.c_int), ("explanation", ctypes.c_char_p)]


BOOL, DOUBLE, TEXT = 0, 1, 4


def parameters(path):
    """Name and default, number or text, of each parameter."""
    library = ctypes.CDLL(path)
    library.f0r_construct.restype = ctypes.c_void_p
    instance = ctypes.c_void_p(library.f0r_construct(16, 16))
    for index in range(11):
        info, number, text = ParameterInfo(), ctypes.c_double(), ctypes.c_char_p()
        library.f0r_get_param_info(ctypes.byref(info), index)
        library.f0r_get_param_value(instance, ctypes.byref(text if info.type == TEXT else number), index)
        yield info.name.decode(), text.value.decode() if info.type == TEXT else number.value


def same(listed, default):
    return listed == default if isinstance(default, str) else abs(float(listed) - default) < 1e-6


def check_kdenlive(path, filters):
    effect = xml.etree.ElementTree.parse(path).getroot()
    assert effect.get("tag") == "frei0r.vantorel"
    listed = {parameter.get("name"): parameter for parameter in effect.findall("parameter")}
    assert list(listed) == [name for name, _ in filters], list(listed)
    for name, default in filters:
        parameter = listed[name]
        assert same(parameter.get("default"), default), (name, default)
        if parameter.get("type") == "animated":
            assert parameter.get("min") == "0" and parameter.get("max") == parameter.get("factor"), name
        if isinstance(default, str):
            assert default in parameter.get("paramlist").split(";"), name


def check_shotcut(folder, filters):
    """Shotcut sets parameters by their numbers; a name stands beside each."""
    meta, controls = (folder / "meta.qml").read_text(), (folder / "ui.qml").read_text()
    pairs = re.findall(r"name: qsTr\('([^']+)'\)\s+property: '(\d+)'", meta)
    pairs += [("Quality", "8"), ("Opaque outside", "10")]
    assert sorted((int(number), name) for name, number in pairs) == [(i, name) for i, (name, _) in enumerate(filters)]
    sliders = re.findall(r"name: qsTr\('([^']+)'\), parameter: '(\d+)', initial: (\d+), low: ([^,]+), high: ([^}]+) }", controls)
    assert [(name, number) for name, number, *_ in sliders] == re.findall(
        r"name: qsTr\('([^']+)'\)\s+property: '(\d+)'", meta)
    for name, number, initial, low, high in sliders:
        low, high = (eval(value, {}) for value in (low, high))
        assert same(low + (high - low) * float(initial) / 100, filters[int(number)][1]), name
    assert "quality: '8'" in controls and "opaqueOutside: '10'" in controls
    if shutil.which("qmllint"):
        subprocess.run(["qmllint", *sorted(map(str, folder.glob("*.qml")))], check=True)


filters = list(parameters(sys.argv[1]))
check_kdenlive(Path(sys.argv[2]) / "frei0r_vantorel.xml", filters)
check_shotcut(Path(sys.argv[2]) / "shotcut", filters)
