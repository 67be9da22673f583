"""The in-process measurements, by their labels."""

import json
from statistics import median
from typing import NamedTuple


class Key(NamedTuple):
    """The labels of a measurement; those that do not apply to its kind are empty."""

    kind: str
    workload: str = ""
    size: str = ""
    depth: str = ""
    quality: str = ""
    tool: str = ""
    cpus: str = "1"


class Measurement(NamedTuple):
    """Seconds of one run: processor time of the process, and wall time."""

    cpu: list
    wall: list
    items: int

    def seconds(self, wall=False):
        return median(self.wall if wall else self.cpu)


def key_of(name):
    labels = dict(part.split(":", 1) for part in name.split("/") if ":" in part)
    return Key(**{label: value for label, value in labels.items() if label in Key._fields})


def load(path):
    """The measurements by key, and the context that the run recorded."""
    with open(path, encoding="utf-8") as file:
        content = json.load(file)
    measurements = {}
    for run in content["benchmarks"]:
        if run["run_type"] != "iteration":
            continue
        if run.get("error_occurred"):
            raise SystemExit(f"bench: {run['name']}: {run['error_message']}")
        items_timed = run["real_time"] if "real_time" in run["name"] else run["cpu_time"]
        items = round(run.get("items_per_second", 0) * items_timed * 1e-9)
        kept = measurements.setdefault(key_of(run["name"]), Measurement([], [], items))
        kept.cpu.append(run["cpu_time"] * 1e-9)
        kept.wall.append(run["real_time"] * 1e-9)
    return measurements, content["context"]


def busyness(measurements):
    """Wall time divided by processor time of all frames on one thread: 1 on an otherwise idle machine."""
    single = [measured for key, measured in measurements.items() if key.kind == "frame" and key.cpus == "1"]
    return sum(m.seconds(wall=True) for m in single) / sum(m.seconds() for m in single)


def in_order(measurements):
    """Pairs of keys and measurements, sorted by their labels, depths by their bits."""
    return sorted(measurements.items(), key=lambda pair: pair[0]._replace(depth=pair[0].depth.rjust(2)))


def as_json(measurements):
    return [
        {
            **key._asdict(),
            "repetitions": len(measured.cpu),
            "items": measured.items,
            "cpu_ms": 1e3 * measured.seconds(),
            "cpu_ms_least": 1e3 * min(measured.cpu),
            "cpu_ms_most": 1e3 * max(measured.cpu),
            "wall_ms": 1e3 * measured.seconds(wall=True),
        }
        for key, measured in in_order(measurements)
    ]
