#!/usr/bin/env python3
"""Plays scenarios with the program and with the model and compares the two transcripts.

    compare.py --program PATH [--seeds A..B] [--zone Z] [--workers N] [FILES...]

PATH is the program that has `play FILE`; a file's zone is taken from its first line (`# TZ=<zone>`),
unless --zone gives one. Lines are compared as JSON: the order of keys is free. The first difference of
each scenario is printed, and a generated scenario that differs is kept. Exit status 1 on any difference.
"""

import argparse
import json
import os
import re
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from itertools import zip_longest

import generate

MODEL = [sys.executable, os.path.join(os.path.dirname(os.path.abspath(__file__)), "scheduler_model.py")]
TIMEOUT_SECONDS = 120
SHOWN_CHARACTERS = 1500


def zone_of(path):
    with open(path, encoding="utf-8") as lines:
        match = re.fullmatch(r"#\s*TZ=(\S+)\s*", lines.readline())
    return match[1] if match else None


def run(command, zone):
    environment = {**os.environ, "TZ": zone} if zone else None
    try:
        result = subprocess.run(command, env=environment, capture_output=True, timeout=TIMEOUT_SECONDS)
    except subprocess.TimeoutExpired:
        return [], f"no answer within {TIMEOUT_SECONDS} s", None
    # Not splitlines(): a text may hold other characters that it takes for line ends.
    output = result.stdout.decode("utf-8", "replace").split("\n")
    if output[-1] == "":
        output.pop()
    return output, result.stderr.decode("utf-8", "replace"), result.returncode


def canonical(line):
    """`line` as JSON in one form; a line that is no JSON stands for itself."""
    if line is None:
        return None
    try:
        return json.dumps(json.loads(line), sort_keys=True)
    except json.JSONDecodeError:
        return line


def actions_of(path):
    """The scenario's actions as (line number, text)."""
    with open(path, encoding="utf-8", newline="\n") as lines:
        return [(number, line.rstrip("\n")) for number, line in enumerate(lines, start=1)
                if line.strip() and not line.startswith("#")]


def is_done(line):
    return line is not None and line.lstrip().startswith("{") and '"done"' in line and "done" in json.loads(line)


def cut(text):
    return text if len(text) <= SHOWN_CHARACTERS else text[:SHOWN_CHARACTERS] + f"... ({len(text)} characters)"


def around_difference(one, other):
    """Both lines; of long ones the part around the first difference."""
    if one is None or other is None or max(len(one), len(other)) <= SHOWN_CHARACTERS:
        return one, other
    same = len(os.path.commonprefix([one, other]))
    first = max(0, same - 300)
    return tuple(("..." if first else "") + line[first:first + SHOWN_CHARACTERS] for line in (one, other))


def bad_input_place(path, errors):
    """`FILE:LINE` at the beginning of a complaint, or the whole text where there is none."""
    match = re.match(re.escape(path) + r":(\d+): \S", errors)
    return match[1] if match else errors


def difference(program, path, zone):
    """A report of the first difference, or None."""
    zone = zone or zone_of(path)
    model_lines, model_errors, model_status = run([*MODEL, path], zone)
    lines, errors, status = run([program, "play", path], zone)
    if model_status not in (0, 2) or "Traceback" in model_errors:
        return f"{path}: the model failed (status {model_status}):\n{cut(model_errors)}"
    actions = actions_of(path)
    done = 0
    for number, (expected, actual) in enumerate(zip_longest(model_lines, lines), start=1):
        one, other = canonical(expected), canonical(actual)
        if one != other:
            line, action = actions[done] if done < len(actions) else (0, "(after the last action)")
            one, other = around_difference(one, other)
            return (f"{path}:{line}: differs at transcript line {number} (TZ={zone}, status {status}, model {model_status})\n"
                    f"  action:  {cut(action)}\n  model:   {one}\n  program: {other}\n"
                    + (f"  program's errors: {cut(errors)}\n" if errors else ""))
        done += is_done(expected)
    if status != model_status:
        return f"{path}: exit status {status}, model {model_status}\n  program: {cut(errors)}\n  model:   {cut(model_errors)}"
    if status == 2 and bad_input_place(path, errors) != bad_input_place(path, model_errors):
        return f"{path}: complaint differs\n  program: {cut(errors)}\n  model:   {cut(model_errors)}"
    return None


def seed_range(text):
    match = re.fullmatch(r"(\d+)(?:\.\.(\d+))?", text)
    if not match:
        raise argparse.ArgumentTypeError(f'"{text}" is no range; give A..B')
    return range(int(match[1]), int(match[2] or match[1]) + 1)


def main(arguments):
    parser = argparse.ArgumentParser(description="Compares the program with the model.")
    parser.add_argument("--program", required=True)
    parser.add_argument("--seeds", type=seed_range, default=range(0))
    parser.add_argument("--zone")
    parser.add_argument("--workers", type=int, default=1)
    parser.add_argument("files", nargs="*")
    options = parser.parse_args(arguments)
    sys.stdout.reconfigure(encoding="utf-8", line_buffering=True)
    folder = tempfile.mkdtemp(prefix="scheduler_compare_")

    def generated(seed):
        path = os.path.join(folder, f"{seed}.jsonl")
        with open(path, "w", encoding="utf-8") as file:
            file.write(generate.generate(seed, options.zone))
        return path

    passed = failed = 0

    def count(report, path, keep):
        nonlocal passed, failed
        if report is None:
            passed += 1
            if not keep:
                os.remove(path)
        else:
            failed += 1
            print(report)

    with ThreadPoolExecutor(max(1, options.workers)) as workers:
        # In portions, so that not all scenarios lie about at once. Generated here, in one thread:
        # a scenario with fed-back state sets the process's zone while it is written.
        for begin in range(0, len(options.seeds), 50):
            paths = [generated(seed) for seed in options.seeds[begin:begin + 50]]
            reports = workers.map(lambda path: difference(options.program, path, options.zone), paths)
            for path, report in zip(paths, reports):
                count(report, path, keep=False)
        reports = workers.map(lambda path: difference(options.program, path, options.zone), options.files)
        for path, report in zip(options.files, reports):
            count(report, path, keep=True)

    if not os.listdir(folder):
        os.rmdir(folder)
    print(f"{passed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
