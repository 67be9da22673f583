"""Reports a run of vantorel_bench: report FOLDER [--quick] [--update-docs]. FOLDER is the build folder, which holds
measurements.json and bin/vantorel."""

import argparse
import json
from pathlib import Path

import commands
import goals
import machine
import plot
import results
import tables

DOCS = Path("docs")
BUSY = 1.05  # wall time over processor time
BEGIN, END = "<!-- begin: written by scripts/bench -->", "<!-- end: written by scripts/bench -->"


def write_json(path, measurements, context, outcomes, timed):
    content = {
        "machine": machine.describe(),
        "date": context["date"],
        "wall_to_processor_time": results.busyness(measurements),
        "goals": [
            {"work": o.goal.name, "against": o.goal.against, "ratio": o.ratio, "at_most": o.goal.limit,
             "reached": o.reached, "clock": "wall" if o.goal.wall else "processor"}
            for o in outcomes
        ],
        "measurements": results.as_json(measurements),
        "commands": timed,
        "agreement": {name.removeprefix("agreement "): value for name, value in context.items()
                      if name.startswith("agreement ")},
    }
    path.write_text(json.dumps(content, indent=1) + "\n", encoding="utf-8")


def load_note(busyness):
    """What to know of the wall times when other programs ran meanwhile; empty when none did."""
    if busyness < BUSY:
        return ""
    return (f"The machine was busy with other programs meanwhile (wall time was {busyness:.2f} times processor time), "
            "so that the rows in wall time, which are those about two threads, tell little.")


def update_docs(shown, outcomes, date, note):
    page = DOCS / "performance.md"
    before, _, rest = page.read_text(encoding="utf-8").partition(BEGIN)
    _, end, after = rest.partition(END)
    if not end:
        raise SystemExit(f"bench: {page} lacks the line '{BEGIN}' or '{END}'; put it back, the tables go between")
    reached = sum(outcome.reached for outcome in outcomes)
    said = f"Measured on {machine.describe()}, {date[:10]}. {reached} of {len(outcomes)} goals are reached. {note}"
    picture = "![The goals and the ratios](performance.svg)"
    body = "\n\n".join((said.rstrip(), picture, *map(tables.as_markdown, shown)))
    page.write_text(f"{before}{BEGIN}\n\n{body}\n\n{END}{after}", encoding="utf-8")
    (DOCS / "performance.svg").write_text(plot.draw(outcomes), encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(prog="report")
    parser.add_argument("folder", type=Path)
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--update-docs", action="store_true")
    options = parser.parse_args()

    measurements, context = results.load(options.folder / "measurements.json")
    outcomes = goals.outcomes(measurements)
    timed = commands.measure(options.folder / "bin" / "vantorel", 1 if options.quick else 7)
    shown = tables.all_tables(measurements, context, outcomes, timed)
    print("\n\n".join(map(tables.as_text, shown)))
    note = load_note(results.busyness(measurements))
    if note:
        print(f"\n{note}")
    write_json(options.folder / "results.json", measurements, context, outcomes, timed)
    print(f"\nWritten: {options.folder / 'results.json'}")
    if options.update_docs:
        update_docs(shown, outcomes, context["date"], note)
        print(f"Written: {DOCS / 'performance.md'}, {DOCS / 'performance.svg'}")


if __name__ == "__main__":
    main()
