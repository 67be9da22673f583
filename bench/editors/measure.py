"""Measures the frei0r filter through ffmpeg and melt, beside the filters for the same task that come with ffmpeg and with
frei0r-plugins, and prints the tables of docs/editors.md.

    python3 bench/editors/measure.py [--rounds N] [--crops FOLDER] [FILTER_FOLDER]

FILTER_FOLDER holds vantorel.so, build/release/lib/frei0r-1 unless given. --rounds: how often times are taken, each
filter in turn; 7 unless given. --crops writes parts of the pictures, and of the true ones, as PNG.
"""

import argparse
import statistics
import subprocess
import tempfile
from pathlib import Path

import numpy as np
from memory import resident_over
from pictures import HEIGHT, TRAPEZOID, WIDTH, detail, halves, homography, shrunk_corners, truth
from programs import (FILTERS, SIZE, drawn_by_ffmpeg, drawn_by_melt, frei0r_numbers, processor_seconds,
                      set_filter_folder)

FRAMES = 40
CROPS = (("trapezoid", TRAPEZOID, (190, 520, 430, 680)), ("shrunk", shrunk_corners(4), (720, 405, 960, 565)))


def frame_times(source, rounds):
    """Milliseconds per frame of each filter, minus those of the format conversion alone: one number per round."""
    times = {name: [] for name in FILTERS if "best" not in name}
    for _ in range(rounds):
        for name, samples in times.items():
            pixel_format, text = FILTERS[name]
            alone = processor_seconds(f"format={pixel_format}", source, FRAMES)
            filtered = processor_seconds(f"format={pixel_format},{text(TRAPEZOID)}", source, FRAMES)
            samples.append(1000 * (filtered - alone) / FRAMES)
    return times


def middle_line(frame):
    """Where black turns white in the middle column."""
    top, bottom = 260, 840  # well inside the trapezoid
    return bottom - frame[top:bottom, WIDTH // 2, 1].sum() / 255.0


def true_middle_line():
    x, y, w = homography(TRAPEZOID) @ (WIDTH / 2, HEIGHT / 2, 1)
    return y / w


def psnr(frame, expected, box):
    left, top, right, bottom = box
    error = frame[top:bottom, left:right, :3].astype(float) - expected
    return 10 * np.log10(255**2 / np.mean(error**2))


def box_of(corners):
    return *map(int, corners[0]), *map(int, corners[3])


def write_png(path, rgb):
    height, width = rgb.shape[:2]
    subprocess.run(["ffmpeg", "-v", "error", "-y", "-f", "rawvideo", "-pix_fmt", "rgb24", "-s", f"{width}x{height}",
                    "-i", "-", str(path)], input=np.ascontiguousarray(rgb).tobytes(), check=True)


def page(folder):
    """The layer of the guides' pictures, large."""
    png = folder / "page.png"
    subprocess.run(["rsvg-convert", "-w", str(WIDTH), "-h", str(HEIGHT), "docs/scene/screen.svg", "-o", png], check=True)
    raw = subprocess.run(["ffmpeg", "-v", "error", "-i", png, "-f", "rawvideo", "-pix_fmt", "rgba", "-"], check=True,
                         stdout=subprocess.PIPE).stdout
    return np.frombuffer(raw, np.uint8).reshape(HEIGHT, WIDTH, 4)


def write_crops(crops, folder):
    """A part of a page on the trapezoid, and shrunk 4 times: by the other filter, by this one, and exactly."""
    image = page(folder)
    source = folder / "page.rgba"
    image.tofile(source)
    for name, corners, box in CROPS:
        left, top, right, bottom = box
        for label, filter_name in (("other", "frei0r-plugins' corner filter"), ("ours", "this one, high")):
            frame = drawn_by_ffmpeg(filter_name, source, corners).astype(float)
            over_black = frame[top:bottom, left:right, :3] * frame[top:bottom, left:right, 3:] / 255
            write_png(crops / f"editors-{name}-{label}.png", over_black.round().astype(np.uint8))
        write_png(crops / f"editors-{name}-truth.png", truth(image, corners, box))


def measure(folder, filter_folder, arguments):
    set_filter_folder(filter_folder)
    lines, details = folder / "lines.rgba", folder / "details.rgba"
    halves().tofile(lines)
    image = detail()
    image.tofile(details)

    print(f"Middle line: truly at {true_middle_line():.3f}; off by, in pixels")
    for name in FILTERS:
        print(f"  {name:32} {abs(middle_line(drawn_by_ffmpeg(name, lines, TRAPEZOID)) - true_middle_line()):7.3f}")
    write_png(folder / "lines.png", halves()[..., :3])
    numbers = dict(enumerate(f"{number:.9f}" for number in frei0r_numbers(TRAPEZOID)))
    in_melt = drawn_by_melt("frei0r.vantorel", numbers, "lines.png", folder)
    print(f"  {'this one, high, through melt':32} {abs(middle_line(in_melt) - true_middle_line()):7.3f}")

    print("Shrunk: PSNR in dB, 4 and 8 times")
    for name in FILTERS:
        values = []
        for factor in (4, 8):
            corners = shrunk_corners(factor)
            expected = truth(image, corners, box_of(corners))
            values.append(psnr(drawn_by_ffmpeg(name, details, corners), expected, box_of(corners)))
        print(f"  {name:32} {values[0]:6.1f} {values[1]:6.1f}")

    print(f"Time: processor milliseconds a frame of {SIZE} through ffmpeg, one thread, conversion subtracted: median, least")
    times = frame_times(details, arguments.rounds)
    for name, samples in times.items():
        print(f"  {name:32} {statistics.median(samples):6.1f} {min(samples):6.1f}")
    for ours in ("this one, standard", "this one, high"):
        for other in list(times)[-2:]:
            ratio = statistics.median(a / b for a, b in zip(times[ours], times[other]))
            print(f"  {ours} / {other}: {ratio:.2f}, of the least {min(times[ours]) / min(times[other]):.2f}")

    memory = resident_over(filter_folder)
    print("Resident memory in KiB after 1,000 and 10,000 frames: {} {}; after 100 and 1,000 instances: {} {}".format(*memory))
    if arguments.crops:
        write_crops(arguments.crops, folder)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--rounds", type=int, default=7)
    parser.add_argument("--crops", type=Path)
    parser.add_argument("filter_folder", nargs="?", default="build/release/lib/frei0r-1")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        measure(Path(folder), arguments.filter_folder, arguments)


if __name__ == "__main__":
    main()
