"""Measures sequences of PNG, JPEG and OpenEXR files: `vantorel render` against OpenImageIO's oiiotool, which reads and
writes the same files and draws nothing, and two threads against one.

    python3 bench/files/sequences.py [--rounds N] [--frames SHORT LONG] [--formats png,jpg,exr] [COMMAND]

COMMAND is the built command, build/release/bin/vantorel unless given. A frame's time is the difference between a long
and a short sequence, so that starting the programs does not count; each round runs all of them in turn, and ratios are
those of the medians. Keep the machine otherwise idle.
"""

import argparse
import os
import statistics
import subprocess
import tempfile
import time
from pathlib import Path

CORNERS = "--ul 192,108 --ur 1728,54 --ll 96,972 --lr 1824,1026".split()
# The files' own settings are OpenImageIO's for what is read, but for PNG, which both pack as the command does.
PNG_PACKING = "--attrib png:compressionLevel 1 --attrib png:filter 16".split()


def run(arguments, folder):
    """Wall and processor seconds."""
    begin = time.perf_counter()
    process = subprocess.Popen(arguments, cwd=folder, stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    wall = time.perf_counter() - begin
    if status != 0:
        raise SystemExit(f"{' '.join(arguments)}: status {status}")
    return wall, usage.ru_utime + usage.ru_stime


def make_pictures(command, folder, kind, frames):
    """Layers and plates of 1920x1080, each frame with different grain."""
    types = ["-d", "half"] if kind == "exr" else ["-d", "uint8"]
    run([command, "testcard", "-o", "card.png", "--size", "1920x1080"], folder)
    for frame in range(1, frames + 1):
        for name, stages in (("layer", ["--ch", "R,G,B,A=1"]), ("plate", ["--ch", "R,G,B", "--mulc", "0.6"])):
            run(["oiiotool", "card.png", *stages, "--noise:type=gaussian:stddev=0.01:seed=" + str(2 * frame),
                 *types, "-o", f"{name}.{frame:04d}.{kind}"], folder)


def vantorel(command, kind, threads, frames):
    return [command, "render", f"layer.%04d.{kind}", "--over", f"plate.%04d.{kind}", "-o", f"out.%04d.{kind}",
            *CORNERS, "--frames", f"1-{frames}", "--threads", str(threads)]


def oiiotool(kind, threads, frames):
    packing = PNG_PACKING if kind == "png" else []
    return ["oiiotool", "--threads", str(threads), "--frames", f"1-{frames}", "-i:now=1", f"layer.%04d.{kind}", "-i:now=1",
            f"plate.%04d.{kind}", *packing, "-o", f"copy.%04d.{kind}"]


def measure(command, folder, kind, lengths, rounds):
    """The medians of wall and processor milliseconds per frame, by the name of the program and its threads."""
    programs = {
        (name, threads): lambda frames, make=make, threads=threads: make(threads, frames)
        for threads in (1, 2)
        for name, make in (
            ("vantorel", lambda threads, frames: vantorel(command, kind, threads, frames)),
            ("oiiotool", lambda threads, frames: oiiotool(kind, threads, frames)),
        )
    }
    times = {name: [] for name in programs}
    for _ in range(rounds):
        for name, arguments in programs.items():
            short, long = (run(arguments(frames), folder) for frames in lengths)
            times[name].append([1000 * (b - a) / (lengths[1] - lengths[0]) for a, b in zip(short, long)])
    return {name: [statistics.median(column) for column in zip(*samples)] for name, samples in times.items()}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("command", nargs="?", default="build/release/bin/vantorel")
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--frames", type=int, nargs=2, default=(10, 30), metavar=("SHORT", "LONG"))
    parser.add_argument("--formats", default="png,jpg,exr")
    parser.add_argument("--folder", type=Path, help="where the pictures are kept from run to run")
    options = parser.parse_args()
    command = str(Path(options.command).resolve())
    print("| files | processor time against oiiotool's, one thread | time, one thread | time, two threads "
          "| two threads against one | ms a frame (processor, time), one thread | oiiotool |")
    print("| --- | --- | --- | --- | --- | --- | --- |")
    for kind in options.formats.split(","):
        with tempfile.TemporaryDirectory() as temporary:
            folder = options.folder or Path(temporary)
            folder.mkdir(parents=True, exist_ok=True)
            if not (folder / f"plate.{options.frames[1]:04d}.{kind}").exists():
                make_pictures(command, folder, kind, options.frames[1])
            times = measure(command, folder, kind, options.frames, options.rounds)
        one, two, copy_one, copy_two = (times[who] for who in (("vantorel", 1), ("vantorel", 2), ("oiiotool", 1),
                                                               ("oiiotool", 2)))
        print(f"| {kind} | {one[1] / copy_one[1]:.2f} | {one[0] / copy_one[0]:.2f} | {two[0] / copy_two[0]:.2f} "
              f"| {one[0] / two[0]:.2f} | {one[1]:.0f}, {one[0]:.0f} | {copy_one[1]:.0f}, {copy_one[0]:.0f} |",
              flush=True)


if __name__ == "__main__":
    main()
