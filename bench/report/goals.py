"""The ratios to reach, and whether they are met."""

from typing import NamedTuple

from results import Key

HD = "1920x1080"
UHD = "3840x2160"
SMALL = "480x270"
DEPTHS = ("8", "16", "float")


class Goal(NamedTuple):
    """Time of `ours` divided by time of `other`, times `factor`: at most `limit`."""

    name: str
    against: str
    limit: float
    ours: Key
    other: Key
    factor: float = 1.0
    wall: bool = False


class Outcome(NamedTuple):
    goal: Goal
    ours: float  # seconds
    other: float
    ratio: float

    @property
    def reached(self):
        return self.ratio <= self.goal.limit


def frame(workload, size, depth, quality="", tool="vantorel", cpus="1"):
    return Key("frame", workload, size, depth, quality, tool, cpus)


def depth_text(depth):
    return depth if depth == "float" else f"{depth} bit"


def warp_goals():
    limits = [
        ("a", "standard", (0.7, 0.35, 0.45)),
        ("a", "high", (1.0, 0.45, 0.6)),
        ("g", "standard", (0.15, 0.06, 0.1)),
        ("f", "high", (0.5, 0.5, 0.5)),
    ]
    for workload, quality, by_depth in limits:
        shown = "bilinear path" if workload == "f" else quality
        for depth, limit in zip(DEPTHS, by_depth):
            yield Goal(f"({workload}) {shown}, {depth_text(depth)}", "OpenCV linear", limit,
                       frame(workload, HD, depth, quality), frame(workload, HD, depth, tool="opencv-linear"))


def minification_goals():
    peers = [
        ("OpenImageIO, default filter", "oiio-default", 1 / 200, DEPTHS),
        ("OpenImageIO, triangle filter", "oiio-triangle", 1 / 15, DEPTHS),
        ("ImageMagick", "magick", 1 / 20, ("16",)),
        ("OpenCV resize, area", "opencv-resize", 1.5, DEPTHS),
    ]
    for against, tool, limit, depths in peers:
        for depth in depths:
            yield Goal(f"(c) high, {depth_text(depth)}", against, limit,
                       frame("c", SMALL, depth, "high"), frame("c", SMALL, depth, tool=tool))
    for depth in DEPTHS:
        yield Goal(f"(c) high, {depth_text(depth)}", "one pass that sums the layer", 3.0,
                   frame("c", SMALL, depth, "high"), Key("sum", "c", UHD, depth, "", "plain"))


def scaling_goals():
    for quality in ("standard", "high"):
        for depth in DEPTHS:
            yield Goal(f"(a) {quality}, {depth_text(depth)}, 2 threads", "1 thread", 1 / 1.85,
                       frame("a", HD, depth, quality, cpus="2"), frame("a", HD, depth, quality), wall=True)
    for quality in ("standard", "high"):
        for depth in DEPTHS:
            yield Goal(f"(a) {quality}, {depth_text(depth)}, a pixel at {UHD}", f"a pixel at {HD}", 1.15,
                       frame("a", UHD, depth, quality), frame("a", HD, depth, quality), factor=0.25)


def outcomes(measurements):
    """The goals for which both sides were measured."""
    found = []
    for goal in (*warp_goals(), *minification_goals(), *scaling_goals()):
        if goal.ours in measurements and goal.other in measurements:
            ours = measurements[goal.ours].seconds(goal.wall)
            other = measurements[goal.other].seconds(goal.wall)
            found.append(Outcome(goal, ours, other, goal.factor * ours / other))
    return found
