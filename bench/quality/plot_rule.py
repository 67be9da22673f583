#!/usr/bin/env python3
"""Draws docs/images/samples.svg, the samples that the rule chooses:

    build/bench/bin/vantorel_quality build/bench/bin/vantorel.so --rule | python3 bench/quality/plot_rule.py > samples.svg
"""

import csv
import math
import sys

COLOURS = {1: "#eef3f8", 2: "#c3d7ea", 3: "#8fb8dc", 4: "#5b95c8", 6: "#2f6ca6", 8: "#123f6d"}
WIDTH, HEIGHT, LEFT, TOP = 560, 270, 60, 20
FONT = 'font-family="sans-serif" font-size="12" fill="#222"'


def text(x, y, words, anchor="middle", extra=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" {FONT} {extra}>{words}</text>'


def main():
    rows = [(float(r["degrees"]), float(r["shrunk"]), int(r["samples"])) for r in csv.DictReader(sys.stdin)]
    shrinkings = sorted({shrunk for _, shrunk, _ in rows})
    least, step = shrinkings[0], math.log(shrinkings[1] / shrinkings[0])
    most_degrees = max(degrees for degrees, *_ in rows)
    column_width, row_height = WIDTH / len(shrinkings), HEIGHT / (most_degrees + 1)
    x = lambda shrunk: LEFT + (math.log(shrunk / least) / step + 0.5) * column_width
    y = lambda degrees: TOP + HEIGHT - (degrees + 0.5) * row_height
    print(f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH + LEFT + 110} {HEIGHT + TOP + 50}">')
    print(f'<rect width="100%" height="100%" fill="#fff"/><g shape-rendering="crispEdges">')
    for degrees in sorted({degrees for degrees, *_ in rows}):
        line = [(shrunk, samples) for d, shrunk, samples in rows if d == degrees]
        begin = 0
        for i in range(1, len(line) + 1):  # one rectangle for neighbours of one colour
            if i == len(line) or line[i][1] != line[begin][1]:
                print(f'<rect x="{x(line[begin][0]) - column_width / 2:.2f}" y="{y(degrees) - row_height / 2:.2f}" '
                      f'width="{(i - begin) * column_width:.2f}" height="{row_height:.2f}" '
                      f'fill="{COLOURS[line[begin][1]]}"/>')
                begin = i
    print("</g>")
    for shrunk in (0.25, 0.5, 1, 2, 4, 8, 16, 32):
        print(text(x(shrunk), TOP + HEIGHT + 16, f"{shrunk:g}"))
    for degrees in (0, 15, 30, 45, 60, 75, 90):
        print(text(LEFT - 8, y(degrees) + 4, f"{degrees}°", "end"))
    print(text(LEFT + WIDTH / 2, TOP + HEIGHT + 38, "times shrunk (below 1: enlarged)"))
    print(text(18, TOP + HEIGHT / 2, "turned by", extra=f'transform="rotate(-90 18 {TOP + HEIGHT / 2})"'))
    for i, (samples, colour) in enumerate(COLOURS.items()):
        top = TOP + 20 * i
        print(f'<rect x="{LEFT + WIDTH + 14}" y="{top}" width="14" height="14" fill="{colour}" stroke="#888"/>')
        print(text(LEFT + WIDTH + 34, top + 12, f"{samples} x {samples}", "start"))
    print("</svg>")


if __name__ == "__main__":
    main()
