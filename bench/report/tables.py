"""The tables, each as a title, a header and rows of text."""

from typing import NamedTuple

from goals import DEPTHS, HD, SMALL, UHD, depth_text, frame
from results import Key, in_order

TOOLS = {
    "opencv-linear": "OpenCV linear",
    "opencv-area": "OpenCV warp, area flag",
    "opencv-resize": "OpenCV resize, area",
    "oiio-default": "OpenImageIO, default filter",
    "oiio-triangle": "OpenImageIO, triangle filter",
    "magick": "ImageMagick",
}


class Table(NamedTuple):
    title: str
    header: tuple
    rows: list


def number(value):
    """Three significant digits, or the whole part where that has more."""
    return f"{value:.0f}" if value >= 100 else f"{value:.3g}"


def milliseconds(seconds):
    return f"{number(1e3 * seconds)} ms"


def ratio_text(ratio):
    return f"1/{1 / ratio:.0f}" if ratio < 0.05 else f"{ratio:.2f}"


def limit_text(limit):
    """As a fraction if it was set as one."""
    return f"1/{1 / limit:.0f}" if limit < 0.1 and (1 / limit).is_integer() else f"{limit:.2f}"


def goal_table(outcomes):
    rows = [
        (o.goal.name, o.goal.against, milliseconds(o.ours), milliseconds(o.other), ratio_text(o.ratio),
         limit_text(o.goal.limit), "yes" if o.reached else "no")
        for o in outcomes
    ]
    header = ("workload", "against", "Vantorel", "other", "ratio", "goal: at most", "reached")
    return Table("Goals", header, rows)


def against_linear(measurements):
    """Every workload compared with OpenCV's linear warp, one column per depth."""
    def cell(ours, other):
        if ours not in measurements or other not in measurements:
            return "-"
        times = measurements[ours].seconds(), measurements[other].seconds()
        return f"{number(1e3 * times[0])} / {number(1e3 * times[1])} = {times[0] / times[1]:.2f}"

    rows = []
    for workload in "abcdefg":
        for size in (SMALL,) if workload == "c" else (HD, UHD):
            for quality in ("standard", "high"):
                cells = [cell(frame(workload, size, depth, quality), frame(workload, size, depth, tool="opencv-linear"))
                         for depth in DEPTHS]
                if any(text != "-" for text in cells):
                    rows.append((f"({workload})", size, "bilinear path" if workload == "f" else quality, *cells))
    return Table("Every workload beside OpenCV's linear warp (ms / ms = ratio)",
                 ("workload", "canvas", "quality", *map(depth_text, DEPTHS)), rows)


def filtering_peers(measurements):
    """Every tool that was measured at (a) and (c)."""
    rows = []
    for workload, size in (("a", HD), ("c", SMALL)):
        for tool, name in (("vantorel", "Vantorel, high quality"), *TOOLS.items()):
            keys = [frame(workload, size, depth, "high" if tool == "vantorel" else "", tool) for depth in DEPTHS]
            if any(key in measurements for key in keys):
                rows.append((f"({workload})", name, *(milliseconds(measurements[key].seconds()) if key in measurements
                                                  else "-" for key in keys)))
    return Table("Every tool at (a) and (c)", ("workload", "tool", *map(depth_text, DEPTHS)), rows)


def two_threads(measurements):
    rows = []
    for key, measured in in_order(measurements):
        single = key._replace(cpus="1")
        if key.cpus == "2" and single in measurements:
            name = "Vantorel" if key.tool == "vantorel" else TOOLS[key.tool]
            one, two = measurements[single].seconds(wall=True), measurements[key].seconds(wall=True)
            rows.append((f"({key.workload})", name, key.quality or "-", depth_text(key.depth), milliseconds(one),
                         milliseconds(two), f"{one / two:.2f}"))
    return Table("One thread and two, wall time",
                 ("workload", "tool", "quality", "depth", "1 thread", "2 threads", "times as fast"), rows)


def per_item(measurements, kind):
    return [(key, 1e9 * measured.seconds() / measured.items)
            for key, measured in in_order(measurements) if key.kind == kind]


def components(measurements):
    rows = [(f"row sampler over a sampler that does nothing, {key.quality} quality", key.tool, f"{time:.2f} ns a pixel")
            for key, time in per_item(measurements, "row-sampler")]
    rows += [(f"area sampler, radius {key.quality}, {depth_text(key.depth)}", key.tool, f"{time:.1f} ns a sample")
             for key, time in per_item(measurements, "area-sampler")]
    return Table("Components alone, by instruction set", ("component", "variant", "time"), rows)


def setup_and_baselines(measurements):
    rows = []
    for kind, name in (("frame-setup", "frame setup"), ("pre-render", "pre-render")):
        key = Key(kind, "a", HD, tool="vantorel")
        if key in measurements:
            rows.append((f"{name}, through the host", f"{1e6 * measurements[key].seconds():.2f} µs"))
    for kind, name in (("frame-1", "first"), ("frame-100", "hundredth")):
        key = Key(kind, "g", HD, "8", "high", "vantorel")
        if key in measurements:
            rows.append((f"{name} frame of an instance: (g) high, 8 bit, wall time",
                         milliseconds(measurements[key].seconds(wall=True))))
    for key, measured in in_order(measurements):
        if key.kind == "copy":
            rows.append((f"memcpy of a {key.size} picture, {depth_text(key.depth)}", milliseconds(measured.seconds())))
        if key.kind == "sum":
            rows.append((f"one pass that sums a {key.size} picture, {depth_text(key.depth)}",
                         milliseconds(measured.seconds())))
    return Table("Setup and baselines", ("what", "time"), rows)


def command_table(commands):
    rows = [(f"({c['workload']})", c["command"], f"{c['cpu_ms']:.0f} ms", f"{c['wall_ms']:.0f} ms") for c in commands]
    return Table("Whole commands: start, read a PNG, warp, compress and write a PNG, on one processor",
                 ("workload", "command", "processor time", "wall time"), rows)


def difference_table(context):
    rows = []
    for name, value in sorted(context.items()):
        if name.startswith("difference "):
            _, workload, tool = name.split(" ", 2)
            rows.append((f"({workload})", TOOLS[tool], value))
    return Table("Difference of the other tools' pictures from Vantorel's at high quality (16 bit, whole canvas)",
                 ("workload", "tool", "peak signal to noise"), rows)


def all_tables(measurements, context, outcomes, commands):
    tables = [goal_table(outcomes), against_linear(measurements), filtering_peers(measurements),
              two_threads(measurements), components(measurements), setup_and_baselines(measurements),
              command_table(commands), difference_table(context)]
    return [table for table in tables if table.rows]


def as_text(table):
    widths = [max(len(row[i]) for row in (table.header, *table.rows)) for i in range(len(table.header))]
    lines = ["  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip()
             for row in (table.header, tuple("-" * width for width in widths), *table.rows)]
    return "\n".join((table.title, "", *lines))


def as_markdown(table):
    lines = [f"| {' | '.join(row)} |" for row in (table.header, ("---",) * len(table.header), *table.rows)]
    return "\n".join((f"## {table.title}", "", *lines))
