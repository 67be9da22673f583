"""Whole commands on the same file: starting, reading, warping, compressing and writing."""

import os
import random
import resource
import subprocess
import sys
import tempfile
import time
from pathlib import Path
from statistics import median

CORNERS_A = ((192, 108), (1728, 54), (96, 972), (1824, 1026))
CORNERS_C = ((0, 0), (480, 0), (0, 270), (480, 270))
LAYER_SIZES = {"a": (1920, 1080), "c": (3840, 2160)}
CANVAS_SIZES = {"a": (1920, 1080), "c": (480, 270)}


def vantorel(binary, layer, output, corners, canvas, quality):
    options = [f"--{name}={x},{y}" for name, (x, y) in zip(("ul", "ur", "ll", "lr"), corners)]
    return [str(binary), "render", str(layer), "-o", str(output), "--size", "{}x{}".format(*canvas),
            "--quality", quality, "--threads", "1", *options]


def magick(layer, output, corners, canvas, size):
    sources = ((0, 0), (size[0], 0), (0, size[1]), size)
    pairs = " ".join(f"{x},{y} {to_x},{to_y}" for (x, y), (to_x, to_y) in zip(sources, corners))
    return ["convert", str(layer), "-alpha", "set", "-virtual-pixel", "transparent",
            "-set", "option:distort:viewport", "{}x{}+0+0".format(*canvas), "-distort", "Perspective", pairs,
            str(output)]


def ffmpeg(layer, output, corners):
    places = ":".join(f"{x}:{y}" for x, y in corners)
    return ["ffmpeg", "-loglevel", "error", "-nostdin", "-threads", "1", "-filter_threads", "1", "-i", str(layer),
            "-vf", f"perspective={places}:interpolation=linear:sense=destination", "-threads", "1", "-y", str(output)]


def all_commands(binary, folder):
    """(workload, label, arguments) of each command."""
    for workload, corners in (("a", CORNERS_A), ("c", CORNERS_C)):
        size, canvas = LAYER_SIZES[workload], CANVAS_SIZES[workload]
        layer = folder / f"layer-{workload}.png"
        subprocess.run([str(binary), "testcard", "-o", str(layer), "--size", "{}x{}".format(*size)], check=True)
        for quality in ("standard", "high") if workload == "a" else ("high",):
            label = f"vantorel render, {quality} quality"
            output = folder / f"{workload}-{quality}.png"
            yield workload, label, vantorel(binary, layer, output, corners, canvas, quality)
        label = "ImageMagick convert -distort Perspective"
        yield workload, label, magick(layer, folder / f"{workload}-magick.png", corners, canvas, size)
        if workload == "a":
            yield workload, "ffmpeg perspective, linear", ffmpeg(layer, folder / f"{workload}-ffmpeg.png", corners)


def timed(arguments):
    """Processor and wall seconds of one run on one processor."""
    processor = {max(os.sched_getaffinity(0))}
    environment = dict(os.environ, MAGICK_THREAD_LIMIT="1", OMP_NUM_THREADS="1")
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    begin = time.perf_counter()
    done = subprocess.run(arguments, env=environment, preexec_fn=lambda: os.sched_setaffinity(0, processor),
                          stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True, check=False)
    wall = time.perf_counter() - begin
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    if done.returncode != 0:
        sys.exit(f"bench: {' '.join(arguments)} failed: {done.stderr.strip()}")
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime, wall


def measure(binary, repetitions):
    """Medians of each command, run in random order."""
    with tempfile.TemporaryDirectory() as folder:
        commands = list(all_commands(Path(binary), Path(folder)))
        runs = [index for index in range(len(commands)) for _ in range(repetitions)]
        random.shuffle(runs)
        times = [[] for _ in commands]
        for index in runs:
            times[index].append(timed(commands[index][2]))
    return [
        {
            "workload": workload,
            "command": label,
            "cpu_ms": 1e3 * median(cpu for cpu, _ in found),
            "wall_ms": 1e3 * median(wall for _, wall in found),
        }
        for (workload, label, _), found in zip(commands, times)
    ]
