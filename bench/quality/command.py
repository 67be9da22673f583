#!/usr/bin/env python3
"""Measures the quality of the command's pictures, and prints tables.

    python3 bench/quality/command.py build/release/bin/vantorel

What is compared is computed here, apart from every renderer: coverage by clipping polygons, motion blur as the mean of
256 stills, the way there and back by bilinear interpolation in float. Needs NumPy and OpenCV (python3-opencv), which
reads and writes the files. Times are processor time of one thread, the least of several runs in turn.
"""

import argparse
import json
import os
import pathlib
import subprocess
import sys
import tempfile

import cv2
import numpy as np

CANVAS = (1920, 1080)
MILD = ((150.3, 90.6), (1780.7, 50.4), (90.2, 1020.9), (1840.4, 1000.3))


class Command:
    """The command on files in a folder."""

    def __init__(self, path, folder):
        self.path, self.folder = path, folder

    def run(self, *arguments):
        """Runs it; returns the JSON lines, the processor seconds and the most memory in bytes."""
        with tempfile.TemporaryFile(dir=self.folder) as out:
            process = subprocess.Popen([self.path, *map(str, arguments)], cwd=self.folder, stdout=out)
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
            if process.returncode != 0:
                raise SystemExit(f"command.py: {' '.join(map(str, arguments))}: exit code {process.returncode}")
            out.seek(0)
            lines = [json.loads(line) for line in out.read().decode().splitlines() if line.startswith("{")]
        return lines, usage.ru_utime + usage.ru_stime, 1024 * usage.ru_maxrss

    def write(self, name, picture):
        if not cv2.imwrite(str(self.folder / name), picture):
            raise SystemExit(f"command.py: {name}: writing failed")

    def read(self, name):
        picture = cv2.imread(str(self.folder / name), cv2.IMREAD_UNCHANGED)
        if picture is None:
            raise SystemExit(f"command.py: {name}: reading failed")
        return picture


def corner_options(corners):
    names = ("--ul", "--ur", "--ll", "--lr")
    return [word for name, (x, y) in zip(names, corners) for word in (name, f"{x!r},{y!r}")]


def size_text(size):
    return f"{size[0]}x{size[1]}"


def psnr(a, b, largest):
    squares = np.mean((a.astype(np.float64) - b.astype(np.float64)) ** 2)
    return 10 * np.log10(largest**2 / squares) if squares > 0 else float("inf")


# ---- Pictures --------------------------------------------------------------------------------------------------------


def waves(size, shortest):
    """Grey waves in every direction, with at least the given wavelength in pixels; 8 bit."""
    random = np.random.default_rng(5)
    y, x = np.mgrid[0 : size[1], 0 : size[0]]
    total = np.zeros(x.shape)
    for _ in range(60):
        angle, phase = random.uniform(0, 2 * np.pi, 2)
        wavelength = shortest / random.uniform(0.05, 1.0)
        total += np.sin(2 * np.pi / wavelength * (x * np.cos(angle) + y * np.sin(angle)) + phase)
    return np.round(127.5 + 110 * total / np.abs(total).max()).astype(np.uint8)


def photograph(size):
    """Noise whose amplitude falls with its frequency, as those of photographs do; 8 bit."""
    random = np.random.default_rng(6)
    spectrum = np.fft.rfft2(random.standard_normal((size[1], size[0])))
    fy, fx = np.fft.fftfreq(size[1])[:, None], np.fft.rfftfreq(size[0])[None, :]
    frequency = np.maximum(np.hypot(fx, fy), 1.0 / max(size))
    picture = np.fft.irfft2(spectrum / frequency**1.2 * np.exp(-((frequency / 0.3) ** 2)), s=(size[1], size[0]))
    return np.clip(np.round(127.5 + 40 * picture / picture.std()), 0, 255).astype(np.uint8)


# ---- There and back --------------------------------------------------------------------------------------------------


def homography(source, target):
    """The 3x3 matrix that takes four points to four points, for column vectors."""
    rows, right = [], []
    for (x, y), (u, v) in zip(source, target):
        rows += [[x, y, 1, 0, 0, 0, -u * x, -u * y], [0, 0, 0, x, y, 1, -v * x, -v * y]]
        right += [u, v]
    return np.append(np.linalg.solve(rows, right), 1.0).reshape(3, 3)


def outline(size):
    return ((0, 0), (size[0], 0), (0, size[1]), size)


def bilinear(picture, size, to_source, samples):
    """A picture of that size, each pixel the mean of samples by samples points, in float."""
    height, width = picture.shape
    total = np.zeros((size[1], size[0]))
    for i in range(samples * samples):
        y, x = np.mgrid[0 : size[1], 0 : size[0]].astype(np.float64)
        x += (i % samples + 0.5) / samples
        y += (i // samples + 0.5) / samples
        u, v, w = (to_source[k, 0] * x + to_source[k, 1] * y + to_source[k, 2] for k in range(3))
        u, v = np.clip(u / w - 0.5, 0, width - 1), np.clip(v / w - 0.5, 0, height - 1)
        left, top = np.minimum(u.astype(int), width - 2), np.minimum(v.astype(int), height - 2)
        a, b = u - left, v - top
        total += (picture[top, left] * (1 - a) + picture[top, left + 1] * a) * (1 - b)
        total += (picture[top + 1, left] * (1 - a) + picture[top + 1, left + 1] * a) * b
    return total / samples**2


def by_lanczos(picture, size, to_source):
    """A picture of that size and 8 bits: points of the picture enlarged 8 times, each way by OpenCV's Lanczos filter."""
    times = 8
    large = cv2.resize(picture.astype(np.float32), None, fx=times, fy=times, interpolation=cv2.INTER_LANCZOS4)
    y, x = np.mgrid[0 : size[1], 0 : size[0]] + 0.5
    u, v, w = (to_source[k, 0] * x + to_source[k, 1] * y + to_source[k, 2] for k in range(3))
    at = ((times * c / w - 0.5).astype(np.float32) for c in (u, v))
    points = cv2.remap(large, *at, cv2.INTER_LINEAR, borderMode=cv2.BORDER_REPLICATE)
    return np.clip(np.round(points), 0, 255).astype(np.uint8)


def there_and_back(command):
    """What is left of a layer of 8 bits that is rendered and rectified; the outermost 4 pixels are left out."""
    print("| there and back, dB | enlarged | the command | bilinear at points, in float | by area, in float |"
          " the command, 16 bit between | with --enlarge lanczos | points of Lanczos, 8 bit between |\n"
          "| --- | --- | --- | --- | --- | --- | --- | --- |")
    for scale in (1.05, 1.9, 3.8):
        size = tuple(round(side * 0.85 / scale) for side in CANVAS)
        command.run("testcard", "-o", "card.png", "--size", size_text(size))
        card = cv2.cvtColor(command.read("card.png")[..., :3], cv2.COLOR_BGR2GRAY)
        pictures = {"test card": card, "waves of 8 pixels and longer": waves(size, 8),
                    "photograph-like": photograph(size)}
        matrix = homography(outline(size), MILD)
        for name, picture in pictures.items():
            command.write("layer.png", picture)
            command.run("render", "layer.png", "-o", "there.png", "--size", size_text(CANVAS), *corner_options(MILD))
            command.run("rectify", "there.png", "-o", "back.png", "--size", size_text(size), *corner_options(MILD))
            command.run("render", "layer.png", "-o", "there.png", "--size", size_text(CANVAS), "--depth", 16,
                        *corner_options(MILD))
            command.run("rectify", "there.png", "-o", "back16.png", "--size", size_text(size), *corner_options(MILD))
            inside = np.s_[4:-4, 4:-4]
            backs = [grey(command.read("back.png"))]
            for samples in (1, 4):
                there = bilinear(picture, CANVAS, np.linalg.inv(matrix), samples)
                backs.append(bilinear(there, size, matrix, samples))
            backs.append(grey(command.read("back16.png")) / 257.0)
            lanczos = ["--enlarge", "lanczos", *corner_options(MILD)]
            command.run("render", "layer.png", "-o", "there.png", "--size", size_text(CANVAS), *lanczos)
            command.run("rectify", "there.png", "-o", "back.png", "--size", size_text(size), *lanczos)
            backs.append(grey(command.read("back.png")))
            backs.append(by_lanczos(by_lanczos(picture, CANVAS, np.linalg.inv(matrix)), size, matrix))
            figures = " | ".join(f"{psnr(back[inside], picture[inside], 255):.1f}" for back in backs)
            print(f"| {name} | {scale} times | {figures} |")


def grey(picture):
    return picture if picture.ndim == 2 else picture[..., 0]


def identity(command):
    """Whether a layer that is not moved is reproduced to the bit."""
    command.run("testcard", "-o", "card.png", "--size", "960x540")
    command.run("render", "card.png", "-o", "there.png")
    command.run("rectify", "there.png", "-o", "back.png", *corner_options(outline((960, 540))))
    same = [np.array_equal(command.read("card.png"), command.read(name)) for name in ("there.png", "back.png")]
    print(f"\nidentity to the bit: render {same[0]}, then rectify {same[1]}")


# ---- Memory, motion blur, light --------------------------------------------------------------------------------------


def memory(command):
    """The most memory of a frame of 7680x4320."""
    command.run("testcard", "-o", "card.png", "--size", size_text(CANVAS))
    corners = [(4 * x, 4 * y) for x, y in MILD]
    figures = []
    for samples in (1, 4, "auto"):
        *_, peak = command.run("render", "card.png", "-o", "large.png", "--size", "7680x4320", "--samples", samples,
                               *corner_options(corners))
        figures.append((samples, peak / 2**20))
    (_, one), (_, four), _ = figures
    text = ", ".join(f"{samples}: {peak:.0f} MiB" for samples, peak in figures)
    print(f"\nmemory at 7680x4320 by --samples: {text}; 4 against 1: {four / one:.2f}")


def corners_file(command, name, frames):
    head = "frame,ulx,uly,urx,ury,llx,lly,lrx,lry\n"
    rows = [",".join(map(repr, (frame, *np.ravel(corners).tolist()))) for frame, corners in frames]
    (command.folder / name).write_text(head + "\n".join(rows) + "\n")


def motion_blur(command):
    """A layer that moves by 20 pixels while the shutter is open, against the mean of 256 stills."""
    move, moments = np.array((16.0, 12.0)), 256
    command.run("testcard", "-o", "card.png", "--size", size_text(CANVAS))
    start = np.array(MILD)
    corners_file(command, "moving.csv", [(0, start), (2, start + 2 * move)])
    shares = (np.arange(moments) + 0.5) / moments - 0.5
    corners_file(command, "stills.csv", [(i, start + (1 + share) * move) for i, share in enumerate(shares)])
    size = ["--size", size_text(CANVAS)]
    command.run("render", "card.png", "-o", "still.####.png", *size, "--depth", 16, "--corners", "stills.csv",
                "--frames", f"0-{moments - 1}", "--no-progress")
    truth = sum(command.read(f"still.{i:04d}.png").astype(np.float64) * alpha(command, i) for i in range(moments))
    blurred = ["render", "card.png", "-o", "blurred.####.png", *size, "--corners", "moving.csv", "--frames", "1-1",
               "--shutter", 360, "--threads", 1, "--json", "--no-progress"]
    still = [*blurred, "--shutter", 0]
    times = {"blurred": 1e9, "still": 1e9}
    for _ in range(3):
        for name, arguments in (("still", still), ("blurred", blurred)):
            lines, *_ = command.run(*without_repetition(arguments))
            times[name] = min(times[name], lines[0]["render_ms"])
    picture = command.read("blurred.0001.png").astype(np.float64)
    error = psnr(premultiplied(picture / 255), truth / moments / 65535, 1.0)
    print(f"\nmotion blur of 20 pixels against 256 stills: {error:.1f} dB, {times['blurred']:.0f} ms, a still "
          f"{times['still']:.0f} ms: {times['blurred'] / times['still']:.2f} times")


def without_repetition(arguments):
    """If an option is given twice, the last value counts."""
    arguments = list(arguments)
    if arguments.count("--shutter") > 1:
        at = arguments.index("--shutter")
        del arguments[at : at + 2]
    return arguments


def premultiplied(picture):
    return np.concatenate((picture[..., :3] * picture[..., 3:], picture[..., 3:]), axis=2)


def alpha(command, i):
    """Factors that premultiply a still of 16 bits."""
    share = command.read(f"still.{i:04d}.png")[..., 3:] / 65535
    return np.concatenate((share, share, share, np.ones_like(share)), axis=2)


def clipped(polygon, axis, limit, keep_above):
    """The part of a polygon on one side of an upright or level line (Sutherland and Hodgman)."""
    result = []
    for p, q in zip(polygon, polygon[1:] + polygon[:1]):
        inside = [(point[axis] >= limit) == keep_above for point in (p, q)]
        if inside[0]:
            result.append(p)
        if inside[0] != inside[1]:
            share = (limit - p[axis]) / (q[axis] - p[axis])
            result.append(tuple(a + (b - a) * share for a, b in zip(p, q)))
    return result


def coverage(polygon, x, y):
    """The fraction of pixel (x, y) that a convex polygon covers."""
    for axis, limit, keep_above in ((0, x, True), (0, x + 1, False), (1, y, True), (1, y + 1, False)):
        polygon = clipped(polygon, axis, limit, keep_above)
        if not polygon:
            return 0.0
    pairs = zip(polygon, polygon[1:] + polygon[:1])
    return abs(sum(p[0] * q[1] - q[0] * p[1] for p, q in pairs)) / 2


def to_light(value):
    return np.where(value <= 0.04045, value / 12.92, ((value + 0.055) / 1.055) ** 2.4)


def square_in_light(command):
    """The largest difference of a white square's edges over black, in light, from their true coverage."""
    corners = ((20.3, 30.6), (140.7, 15.2), (35.4, 120.9), (120.8, 145.3))
    ring = [corners[0], corners[1], corners[3], corners[2]]
    truth = np.array([[coverage(ring, x, y) for x in range(160)] for y in range(160)])
    command.write("white.png", np.full((64, 64), 255, np.uint8))
    command.write("black.png", np.zeros((160, 160, 3), np.uint8))
    for depth, largest in ((16, 65535), (8, 255)):
        command.run("render", "white.png", "-o", "square.png", "--over", "black.png", "--linear", "--depth", depth,
                    *corner_options(corners))
        light = to_light(grey(command.read("square.png")) / largest)
        half_a_level = np.abs(to_light(np.minimum(grey(command.read("square.png")) + 0.5, largest) / largest) - light)
        print(f"\nwhite square with --linear, {depth} bit: at most {255 * np.abs(light - truth).max():.2f} / 255 from "
              f"true coverage; half a level of the file's is up to {255 * half_a_level.max():.2f} / 255")


MEASUREMENTS = {"there-and-back": there_and_back, "identity": identity, "memory": memory, "motion-blur": motion_blur,
                "light": square_in_light}


def main():
    parser = argparse.ArgumentParser(description="Measures what the command makes of whole pictures.")
    parser.add_argument("command", help="the command vantorel")
    parser.add_argument("only", nargs="*", help="what to measure: " + ", ".join(MEASUREMENTS) + " (default: all)")
    arguments = parser.parse_args()
    unknown = [name for name in arguments.only if name not in MEASUREMENTS]
    if unknown:
        parser.error(f"unknown measurement {unknown[0]}; choose from {', '.join(MEASUREMENTS)}")
    with tempfile.TemporaryDirectory() as folder:
        command = Command(os.path.abspath(arguments.command), pathlib.Path(folder))
        for name, measure in MEASUREMENTS.items():
            if not arguments.only or name in arguments.only:
                measure(command)
                sys.stdout.flush()


if __name__ == "__main__":
    main()
