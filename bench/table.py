#!/usr/bin/env python3
"""Runs benchmark programs and prints one table: what, our figure, the baseline's, their ratio, its goal, met or not.

    bench/table.py [--json] [--filter TEXT] <program>...

Names are "<subject>/ours: <what>[/<variant>]" and "<subject>/baseline: <what>[/<variant>]".
bench/goals.json has the goals, per
subject and baseline. Figures are medians of interleaved repetitions. Ends with 1 when a goal is missed."""
import argparse
import json
import pathlib
import re
import subprocess
import sys

REPETITIONS = 5
NAME = re.compile(r"(?P<subject>[^/]+)/(?P<side>ours|baseline): (?P<what>[^/]+)(?:/(?P<variant>.+))?$")
GOALS = json.loads((pathlib.Path(__file__).parent / "goals.json").read_text())


def medians(program):
    """Microseconds by name."""
    result = subprocess.run([program, "--benchmark_format=json", "--benchmark_min_time=0.1",
                             f"--benchmark_repetitions={REPETITIONS}",
                             "--benchmark_enable_random_interleaving=true", "--benchmark_report_aggregates_only=true"],
                            check=True, stdout=subprocess.PIPE)
    runs = json.loads(result.stdout)["benchmarks"]
    for run in runs:
        if run.get("error_occurred"):
            sys.exit(f"{run['name']}: {run['error_message']}")
    units = {"ns": 1e-3, "us": 1.0, "ms": 1e3, "s": 1e6}
    return {run["run_name"].removesuffix("/real_time"): run["real_time"] * units[run["time_unit"]]
            for run in runs if run["aggregate_name"] == "median"}


def goal_of(subject, ours, baseline, variant):
    for goal in GOALS:
        if goal["subject"] == subject and goal["baseline"] == baseline and goal.get("ours", ours) == ours \
                and goal.get("variant", variant) == variant:
            return goal
    return None


def is_met(goal, ours, theirs):
    return ours <= goal["ratio"] * theirs + goal.get("plus_ms", 0) * 1e3


def goal_text(goal):
    return f"{goal['ratio']:g}" + (f" + {goal['plus_ms']:g} ms" if "plus_ms" in goal else "")


def compare(figures):
    sides = {"ours": [], "baseline": []}
    for name, microseconds in figures.items():
        match = NAME.match(name)
        sides[match["side"]].append((match["subject"], match["what"], match["variant"] or "", microseconds))
    for subject, what, variant, ours in sides["ours"]:
        for other, baseline, other_variant, theirs in sides["baseline"]:
            if (subject, variant) == (other, other_variant):
                goal = goal_of(subject, what, baseline, variant)
                ratio = ours / theirs
                yield {"subject": subject, "variant": variant, "what": what, "baseline": baseline,
                       "ours_us": ours, "baseline_us": theirs,
                       "ratio": ratio, "goal": goal, "met": None if goal is None else is_met(goal, ours, theirs)}


def time_text(microseconds):
    for limit, unit, factor in ((1.0, "ns", 1e3), (1e3, "us", 1.0), (1e6, "ms", 1e-3)):
        if microseconds < limit:
            return f"{microseconds * factor:.3g} {unit}"
    return f"{microseconds * 1e-6:.3g} s"


def table(rows):
    lines = [("what", "ours", "beside", "its figure", "ratio", "goal", "met")]
    for row in rows:
        variant = " " + row["variant"] if row["variant"] else ""
        lines.append((f"{row['subject']}{variant}: {row['what']}", time_text(row["ours_us"]),
                      row["baseline"], time_text(row["baseline_us"]), f"{row['ratio']:.2f}",
                      "" if row["goal"] is None else goal_text(row["goal"]),
                      {None: "", True: "yes", False: "MISSED"}[row["met"]]))
    widths = [max(len(line[i]) for line in lines) for i in range(len(lines[0]))]
    return "\n".join("  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip() for line in lines)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--json", action="store_true")
    parser.add_argument("--filter", default="")
    parser.add_argument("programs", nargs="+")
    arguments = parser.parse_args()
    rows = []
    for program in arguments.programs:
        if arguments.filter in program:
            rows += sorted(compare(medians(program)), key=lambda row: (row["subject"], row["what"]))
    print(json.dumps(rows, indent=2) if arguments.json else table(rows))
    return 1 if any(row["met"] is False for row in rows) else 0


if __name__ == "__main__":
    sys.exit(main())
