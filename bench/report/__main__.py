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

TABLES = Path("docs/performance-tables.md")
PLOT = Path("docs/performance.svg")
BUSY = 1.05  # wall time over processor time


def write_json(path, measurements, context, outcomes, timed):
    content = {
        "machine": machine.describe(),
        "date": context["date"],
        "wall_to_processor_time": results.busyness(measurements),
        "goals": [
            {"goal": o.goal.name, "against": o.goal.against, "ratio": o.ratio, "at_most": o.goal.limit,
             "reached": o.reached, "clock": "wall" if o.goal.wall else "processor"}
            for o in outcomes
        ],
        "measurements": results.as_json(measurements),
        "commands": timed,
        "difference": {name.removeprefix("difference "): value for name, value in context.items()
                       if name.startswith("difference ")},
    }
    path.write_text(json.dumps(content, indent=1) + "\n", encoding="utf-8")


def load_note(busyness):
    """A note about the wall times if other programs ran meanwhile; empty if none did."""
    if busyness < BUSY:
        return ""
    return (f"Other programs kept the machine busy meanwhile (wall time was {busyness:.2f} times processor time), so "
            "the rows in wall time, which are those about two threads, say little.")


def update_docs(shown, outcomes, date, note):
    reached = sum(outcome.reached for outcome in outcomes)
    summary = f"Measured on {machine.describe()}, {date[:10]}. {reached} of {len(outcomes)} goals are reached. {note}"
    origin = ("Written by `scripts/bench --update-docs`. [Performance](performance.md) says what the workloads are and how "
              "they are\nmeasured.")
    parts = ("# Performance: the tables", origin, summary.rstrip(), *map(tables.as_markdown, shown))
    TABLES.write_text("\n\n".join(parts) + "\n", encoding="utf-8")
    PLOT.write_text(plot.draw(outcomes), encoding="utf-8")


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
        print(f"Written: {TABLES}, {PLOT}")


if __name__ == "__main__":
    main()
