#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Formats the JSON output of the benchmark program as a table or as data for plots. scripts/bench runs it.

Usage: report.py table [--strict] ROUND.json ...
       report.py curves FILE.json DIRECTORY

"table" prints a row for each operation: the median over the rounds of the ratio of its time to that of its baseline,
and the range of these ratios. With --strict, the exit status is 1 if an operation missed its limit. "curves" writes
DIRECTORY/PLOT.dat for each plot: a line with labels, then a line per size with the seconds of each curve."""
import collections
import json
import statistics
import sys

BASELINE = " (baseline)"
SECONDS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1}


def read_runs(path):
    """Yields (name, size, seconds, run) for each measurement; ends the program if one failed."""
    with open(path, encoding="utf-8") as file:
        runs = json.load(file)["benchmarks"]
    for run in runs:
        if run.get("error_occurred"):
            sys.exit(f"{run['name']}: {run['error_message']}")
        if run["run_type"] == "iteration":
            name, *options = run["run_name"].split("/")
            # CPU time, which busy processes distort less, unless the benchmark measures the time itself.
            time = run["real_time" if "manual_time" in options else "cpu_time"]
            size = int(options[0]) if options and options[0].isdigit() else None
            yield name, size, time * SECONDS[run["time_unit"]], run


def format_time(seconds):
    unit = next(unit for unit in ("s", "ms", "us", "ns") if seconds >= SECONDS[unit] or unit == "ns")
    return f"{seconds / SECONDS[unit]:.3g}\N{NO-BREAK SPACE}{unit.replace('u', 'µ')}"


def rate(ratios, limit):
    """Returns "met", "missed", or "unstable" if the ratios vary by more than their distance from the limit."""
    ratio = statistics.median(ratios)
    if ratio > limit:
        return "missed"
    return "unstable" if max(ratios) - min(ratios) > limit - ratio else "met"


def print_table(paths, is_strict):
    rows = {}  # by name: name of the baseline, and limit
    times = collections.defaultdict(list)  # by name: the median of each round
    for path in paths:
        of_round = collections.defaultdict(list)
        order = {}
        for name, _, seconds, run in read_runs(path):
            of_round[name].append(seconds)
            if "max ratio" in run:
                order[run["family_index"]] = name
                rows[name] = (run["label"], run["max ratio"])
        for name, seconds in of_round.items():
            times[name].append(statistics.median(seconds))
    print("| operation | baseline | times | ratio | range | limit | result |")
    print("|---|---|--:|--:|--:|--:|---|")
    results = []
    for _, name in sorted(order.items()):
        baseline, limit = rows[name]
        both = times[name], times[name + BASELINE]
        ratios = [time / base for time, base in zip(*both)]
        results.append(rate(ratios, limit))
        medians = " / ".join(format_time(statistics.median(each)) for each in both)
        print(f"| {name} | {baseline} | {medians} | {statistics.median(ratios):.3f} "
              f"| {min(ratios):.3f} to {max(ratios):.3f} | {limit:.2g} | {results[-1]} |")
    if "unstable" in results:
        print("unstable: the range is wider than the distance from the limit; measure again on a quieter machine",
              file=sys.stderr)
    return 1 if is_strict and "missed" in results else 0


def write_curves(path, directory):
    plots = collections.defaultdict(lambda: collections.defaultdict(dict))
    for name, size, seconds, _ in read_runs(path):
        plot, label = name.split(": ", 1)
        plots[plot][label].setdefault(size, []).append(seconds)
    for plot, curves in plots.items():
        # The registration order of different source files is unspecified; the baseline is drawn last.
        labels = sorted(curves, key=lambda label: label.startswith("baseline"))
        with open(f"{directory}/{plot}.dat", "w", encoding="utf-8") as file:
            print("size", *(f'"{label}"' for label in labels), file=file)
            for size in sorted(curves[labels[0]]):
                print(size, *(statistics.median(curves[label][size]) for label in labels), file=file)


if sys.argv[1] == "curves":
    write_curves(sys.argv[2], sys.argv[3])
else:
    arguments = [argument for argument in sys.argv[2:] if argument != "--strict"]
    sys.exit(print_table(arguments, "--strict" in sys.argv))
