"""Builds the wheel of the Python module with CMake, for `pip install .`; needs only Python's standard library.

`--config-settings build-dir=FOLDER` takes the module from an already configured CMake build folder; otherwise it is
built in build/wheel. The packages that the build needs are listed in scripts/packages.txt.
"""

import base64
import hashlib
import re
import subprocess
import sys
import sysconfig
import tempfile
import tomllib
import zipfile
from pathlib import Path

SOURCE = Path(__file__).resolve().parent.parent
TAG = f"cp{sys.version_info.major}{sys.version_info.minor}"
PLATFORM = re.sub(r"[-.]", "_", sysconfig.get_platform())


def run(*command):
    subprocess.run([*map(str, command)], check=True)


def configured_build(config_settings):
    """A configured CMake build folder."""
    given = (config_settings or {}).get("build-dir")
    if given:
        return Path(given)
    build = SOURCE / "build" / "wheel"
    run("cmake", "-S", SOURCE, "-B", build, "-G", "Ninja", "-Wno-dev", "-DCMAKE_BUILD_TYPE=Release",
        "-DVANTOREL_BUILD_TESTS=OFF", f"-DPython3_EXECUTABLE={sys.executable}")
    return build


def built_package(build, stage):
    """The folder below `stage` that holds the package `vantorel`."""
    run("cmake", "--build", build, "--target", "vantorel_python")
    run("cmake", "--install", build, "--component", "python", "--strip", "--prefix", stage)
    return next(Path(stage).rglob("vantorel/__init__.py")).parent.parent


def metadata(project, version):
    lines = ["Metadata-Version: 2.1", f"Name: {project['name']}", f"Version: {version}",
             f"Summary: {project['description']}", f"Requires-Python: {project['requires-python']}"]
    return "\n".join(lines + [f"Requires-Dist: {name}" for name in project["dependencies"]]) + "\n"


def write_wheel(path, files):
    """`files` by their names in the wheel; the record of their hashes is added."""
    record_name = next(name for name in files if name.endswith("/WHEEL")).replace("WHEEL", "RECORD")
    record = ""
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as wheel:
        for name, content in files.items():
            digest = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=").decode()
            record += f"{name},sha256={digest},{len(content)}\n"
            wheel.writestr(name, content)
        wheel.writestr(record_name, record + f"{record_name},,\n")


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    project = tomllib.loads((SOURCE / "pyproject.toml").read_text())["project"]
    version = re.search(r"project\(vantorel VERSION ([\d.]+)", (SOURCE / "CMakeLists.txt").read_text())[1]
    name = f"{project['name']}-{version}"
    with tempfile.TemporaryDirectory() as stage:
        package = built_package(configured_build(config_settings), stage)
        files = {str(file.relative_to(package)): file.read_bytes()
                 for file in sorted(package.rglob("*")) if file.is_file()}
    tag = f"{TAG}-{TAG}-{PLATFORM}"
    files[f"{name}.dist-info/METADATA"] = metadata(project, version).encode()
    files[f"{name}.dist-info/WHEEL"] = (
        f"Wheel-Version: 1.0\nGenerator: vantorel\nRoot-Is-Purelib: false\nTag: {tag}\n".encode())
    write_wheel(Path(wheel_directory) / f"{name}-{tag}.whl", files)
    return f"{name}-{tag}.whl"


def build_sdist(sdist_directory, config_settings=None):
    raise NotImplementedError("there is no source distribution; build a wheel from a checkout")
