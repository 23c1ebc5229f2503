#!/usr/bin/env python3
"""Prints one table of what the benchmarks measured: work, ours, peer, ratio, bound.

    report.py TIMES.json MEMORY.txt YEAR_MILLISECONDS

TIMES.json is Google Benchmark's output; times are of the processor, each as much as its row says.
"""

import json
import os
import platform
import sys

UNITS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
MISSING = "-"

# Work; ours; peer and its name; bound; what a time is divided by (items processed, or 1).
ROWS = [
    ("occurrences over a year, 1,000 mixed rules, each", "BM_OccurrencesOverAYear",
     "BM_OccurrencesOverAYear_libical", "libical", "BM_OccurrencesOverAYear_bound", "items"),
    ("the whole request, reply and its text, each occurrence", "BM_OccurrencesRequest",
     "BM_OccurrencesOverAYear_libical", "libical, bare", None, "items"),
    ("one leap-day rule up to year 9999", "BM_OccurrencesToYear9999/1", None, None, None, None),
    ("one rule of every million years up to year 9999", "BM_OccurrencesToYear9999/1000000", None,
     None, None, None),
    ("the fourth Wednesday of every month up to year 9999, each",
     "BM_NthOccurrencesToYear9999", None, None, None, "items"),
    ("which of 10,000 rules happen today, each", "BM_EventsOnDate/10000",
     "BM_EventsOnDate_plain/10000", "two localtime", None, "items"),
    ("which of 100,000 rules happen today, each", "BM_EventsOnDate/100000", None, None, None,
     "items"),
    ("today's list of 1,000 events", "BM_CalculateTodaysEvents/1000", None, None, None, None),
    ("today's list of 10,000 events", "BM_CalculateTodaysEvents/10000", None, None, None, None),
    ("today's list of 100,000 events", "BM_CalculateTodaysEvents/100000", None, None, None, None),
    ("add and delete one among 1,000", "BM_AddAndDeleteOne/1000", None, None, None, None),
    ("add and delete one among 10,000", "BM_AddAndDeleteOne/10000", None, None, None, None),
    ("add and delete one among 100,000", "BM_AddAndDeleteOne/100000", None, None, None, None),
    ("idle tick, TZ set", "BM_IdleTick_zoneSet", None, None, "BM_IdleTick_bound", None),
    ("idle tick, TZ not set", "BM_IdleTick_zoneUnset", "BM_IdleTick_localtimeUnset",
     "one localtime", "BM_IdleTick_bound", None),
    ("sunrise and sunset of a day", "BM_SunPair", None, None, "BM_SunPair_bound", None),
    ("sunrise and sunset of the same day again", "BM_SunPairAgain", None, None, None, None),
    ("take up 100,000 persisted events, each", "BM_Initialize", "BM_Initialize_expat",
     "expat, no tree", None, "items"),
    ("parse 100,000 events into a tree, each", "BM_ParseState", "BM_Initialize_expat",
     "expat, no tree", None, "items"),
    ("the state of 100,000 events to text, each", "BM_PersistStateToText",
     "BM_PersistStateToText_pugixml", "pugixml", None, "items"),
]


def load(path):
    with open(path, encoding="utf-8") as file:
        document = json.load(file)
    return {run["name"]: run for run in document["benchmarks"] if run["run_type"] == "iteration"}


def nanoseconds(runs, name, per):
    """The processor's time of a benchmark, or None where it was not run."""
    run = runs.get(name) if name else None
    if run is None:
        return None
    if per == "items":
        return 1e9 / run["items_per_second"]
    return run["cpu_time"] * UNITS[run["time_unit"]]


def shown(value):
    if value is None:
        return MISSING
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if value >= size:
            return f"{value / size:.3g} {unit}"
    return f"{value:.3g} ns"


def times(value, other):
    return MISSING if value is None or other is None else f"{other / value:.3g}"


def row(*cells):
    print("| " + " | ".join(cells) + " |")


def machine():
    model = platform.processor() or platform.machine()
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        for line in file:
            if line.startswith("model name"):
                model = line.split(":", 1)[1].strip()
                break
    return f"{model}, {os.cpu_count()} cores, {platform.system()} {platform.machine()}"


def main(arguments):
    times_file, memory_file, year_milliseconds = arguments
    runs = load(times_file)
    print(f"Machine: {machine()}\n")
    row("work", "ours", "peer", "peer / ours", "bound", "ours / bound")
    row("---", "---", "---", "---", "---", "---")
    for work, ours_name, peer_name, peer_is, bound_name, per in ROWS:
        ours = nanoseconds(runs, ours_name, per)
        peer = nanoseconds(runs, peer_name, per)
        bound = nanoseconds(runs, bound_name, per)
        peer_text = MISSING if peer is None else f"{shown(peer)} ({peer_is})"
        row(work, shown(ours), peer_text, times(ours, peer), shown(bound), times(bound, ours))
    for name, run in runs.items():
        if name.startswith("Measure/"):
            work = "next occurrence, " + name.removeprefix("Measure/")
            row(work, shown(nanoseconds(runs, name, None)), MISSING, MISSING, MISSING, MISSING)
    row("a year in steps of a second, 100 events, played", f"{int(year_milliseconds) / 1000:.3g} s",
        MISSING, MISSING, MISSING, MISSING)
    print()
    with open(memory_file, encoding="utf-8") as file:
        for line in file:
            print("- " + line.strip())


if __name__ == "__main__":
    main(sys.argv[1:])
