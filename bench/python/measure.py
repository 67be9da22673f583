"""Measures vantorel.warp beside cv2.warpPerspective on one thread: 1920x1080, uint8, standard quality and linear.

Prints the least and the median processor time of each in milliseconds and the ratios, then what a call costs on a
picture of one pixel. Both are measured in turn, so that a busy machine slows both. Import path: PYTHONPATH=build/release/python.
"""

import statistics
import time

import cv2
import numpy as np
import vantorel

WIDTH, HEIGHT = 1920, 1080
CORNERS = np.array([(400, 200), (1520, 200), (200, 880), (1720, 880)], float)
REPETITIONS = 40


def seconds(function):
    start = time.thread_time()
    function()
    return time.thread_time() - start


def measure(name, image, **arguments):
    matrix = vantorel.homography(CORNERS, (WIDTH, HEIGHT))
    theirs_out, ours_out = np.empty_like(image), np.empty_like(image)

    def theirs():
        cv2.warpPerspective(image, matrix, (WIDTH, HEIGHT), dst=theirs_out, flags=cv2.INTER_LINEAR)

    def ours():
        vantorel.warp(image, CORNERS, quality="standard", threads=1, out=ours_out, **arguments)

    theirs(), ours()
    times = [(1e3 * seconds(theirs), 1e3 * seconds(ours)) for _ in range(REPETITIONS)]
    columns = list(zip(*times))
    least, median = [min(c) for c in columns], [statistics.median(c) for c in columns]
    print(f"{name:28} cv2 {least[0]:6.2f} {median[0]:6.2f}   vantorel {least[1]:6.2f} {median[1]:6.2f}"
          f"   ratio {least[1] / least[0]:.2f} {median[1] / median[0]:.2f}")


def main():
    cv2.setNumThreads(1)
    mixed = np.random.default_rng(0).integers(0, 256, (HEIGHT, WIDTH, 4), dtype=np.uint8)
    opaque = mixed.copy()
    opaque[..., 3] = 255
    measure("RGBA, opaque", opaque)
    measure("RGBA, random alpha", mixed)
    measure("RGBA, premultiplied", opaque, premultiplied=True)
    measure("RGB", np.ascontiguousarray(opaque[..., :3]))
    pixel, own, calls = np.zeros((1, 1, 4), np.uint8), np.array([(0, 0), (1, 0), (0, 1), (1, 1)], float), 20000
    out = np.zeros_like(pixel)
    total = seconds(lambda: [vantorel.warp(pixel, own, quality="standard", threads=1, out=out) for _ in range(calls)])
    print(f"one pixel: {1e6 * total / calls:.1f} microseconds a call")


if __name__ == "__main__":
    main()
