"""The goals as a bar chart: one bar per ratio on a logarithmic scale, with the goal as a tick."""

from math import log10
from xml.sax.saxutils import escape

from tables import ratio_text

ROW = 19
TOP = 76
LABELS = 470
SCALE = 420
RIGHT = 90
LOW, HIGH = -4, 1  # powers of ten
REACHED, MISSED, GOAL = "#3a7d44", "#c8612c", "#222222"


def position(ratio):
    clipped = min(max(log10(ratio), LOW), HIGH)
    return LABELS + SCALE * (clipped - LOW) / (HIGH - LOW)


def text(x, y, content, anchor="start", size=12, fill="#222222"):
    place = f'x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}"'
    return f'<text {place} font-size="{size}" fill="{fill}">{escape(content)}</text>'


def line(x, top, bottom, colour, width=1.0):
    return f'<line x1="{x:.1f}" x2="{x:.1f}" y1="{top}" y2="{bottom}" stroke="{colour}" stroke-width="{width}"/>'


def axis(bottom):
    for power in range(LOW, HIGH + 1):
        x = position(10.0**power)
        yield line(x, TOP - 8, bottom, "#888888" if power == 0 else "#dddddd")
        yield text(x, TOP - 14, {0: "1 (equal)", 1: "10"}.get(power, f"1/{10**-power}"), "middle", 11, "#555555")


def bar(outcome, y):
    goal = outcome.goal
    end = position(outcome.ratio)
    yield text(LABELS - 8, y + 13, f"{goal.name} / {goal.against}", "end")
    yield (f'<rect x="{LABELS}" y="{y + 3}" width="{end - LABELS:.1f}" height="{ROW - 6}" '
           f'fill="{REACHED if outcome.reached else MISSED}"/>')
    yield line(position(goal.limit), y + 1, y + ROW - 1, GOAL, 2.5)
    yield text(max(end, position(goal.limit)) + 6, y + 13, ratio_text(outcome.ratio), size=11)


def draw(outcomes):
    """The plot as SVG text."""
    bottom = TOP + ROW * len(outcomes)
    width = LABELS + SCALE + RIGHT
    parts = [
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{bottom + 12}" '
        f'viewBox="0 0 {width} {bottom + 12}" font-family="sans-serif">',
        f'<rect width="{width}" height="{bottom + 12}" fill="#ffffff"/>',
        text(12, 22, "Time of Vantorel divided by the other tool's: shorter is faster", size=15),
        text(12, 40, "green: goal reached; orange: not reached; tick: the goal; logarithmic scale", fill="#555555"),
        *axis(bottom),
    ]
    for index, outcome in enumerate(outcomes):
        parts.extend(bar(outcome, TOP + ROW * index))
    return "\n".join((*parts, "</svg>", ""))
