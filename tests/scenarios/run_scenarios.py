#!/usr/bin/env python3
"""Plays golden scenarios and compares what comes out with what is promised.

    run_scenarios.py --program PATH [--rewrite] [NAME...]

NAME.jsonl is a scenario: its first line is `#` and the one point it makes, its second line
`# TZ=ZONE` the zone it runs in. Beside it lie NAME.transcript.jsonl, the promised lines, and, where
the scenario is meant to be refused, NAME.stderr with the one line on standard error (a `*` at its end
stands for any rest); the exit status is then 2, otherwise 0 with nothing on standard error. Lines are
compared as JSON, so the order of keys is free. Without NAMEs, all scenarios of this folder.

--rewrite writes what came out over the promises, after a change of promise: read the diff line by
line against the rules, and name the change in the commit. The last line is `N passed, M failed`; the
exit status is 0 when none failed.
"""

import argparse
import itertools
import json
import os
import pathlib
import subprocess
import sys

FOLDER = pathlib.Path(__file__).resolve().parent
SECONDS = 60  # a scenario that takes longer hangs


class Broken(Exception):
    """Why a scenario did not keep its promise."""


def zone_of(scenario):
    lines = scenario.read_text(encoding="utf-8").splitlines()
    if len(lines) < 2 or not lines[0].startswith("# ") or not lines[1].startswith("# TZ="):
        raise Broken('the first two lines must be "# its point" and "# TZ=its zone"')
    return lines[1][len("# TZ="):]


def play(program, scenario):
    environment = dict(os.environ, TZ=zone_of(scenario))
    try:
        return subprocess.run([program, "play", scenario.name], cwd=scenario.parent,
                              env=environment, capture_output=True, timeout=SECONDS, check=False)
    except subprocess.TimeoutExpired as error:
        raise Broken(f"still running after {SECONDS} seconds") from error


def parse(text, where):
    lines = []
    for number, line in enumerate(text.splitlines(), 1):
        try:
            lines.append(json.loads(line))
        except ValueError as error:
            raise Broken(f"{where}, line {number} is no JSON: {line!r}") from error
    return lines


def shown(line):
    return "nothing more" if line is None else json.dumps(line, ensure_ascii=False)


def compare_transcripts(promised, got):
    for number, (want, have) in enumerate(itertools.zip_longest(promised, got), 1):
        if want != have:
            raise Broken(f"transcript line {number}\n  promised: {shown(want)}\n"
                         f"  got:      {shown(have)}")


def compare_refusal(promised, result):
    err = result.stderr.decode("utf-8", "replace")
    status = 0 if promised is None else 2
    wanted = "" if promised is None else promised.rstrip("\n")
    got = err.rstrip("\n")
    same = got.startswith(wanted[:-1]) if wanted.endswith("*") else got == wanted
    if not same or "\n" in got:
        raise Broken(f"standard error\n  promised: {wanted}\n  got:      {got}")
    if result.returncode != status:
        raise Broken(f"exit status {result.returncode} instead of {status}")


def check(program, scenario, rewrite):
    transcript = scenario.with_suffix(".transcript.jsonl")
    refusal = scenario.with_suffix(".stderr")
    result = play(program, scenario)
    out = result.stdout.decode("utf-8")
    if rewrite:
        if result.returncode not in (0, 2):
            raise Broken(f"exit status {result.returncode}: not rewritten")
        transcript.write_text(out, encoding="utf-8")
        if result.returncode == 2:
            refusal.write_bytes(result.stderr)
        elif refusal.exists():
            refusal.unlink()
        return
    if not transcript.exists():
        raise Broken(f"{transcript.name} is missing; --rewrite makes it")
    compare_transcripts(parse(transcript.read_text(encoding="utf-8"), transcript.name),
                        parse(out, "what came out"))
    compare_refusal(refusal.read_text(encoding="utf-8") if refusal.exists() else None, result)


def scenarios(names):
    if names:
        return [FOLDER / (name.removesuffix(".jsonl") + ".jsonl") for name in names]
    return sorted(path for path in FOLDER.glob("*.jsonl")
                  if not path.name.endswith(".transcript.jsonl"))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--program", required=True, help="the program vexalink")
    parser.add_argument("--rewrite", action="store_true", help="make what comes out the promise")
    parser.add_argument("names", nargs="*", metavar="NAME")
    arguments = parser.parse_args()
    program = str(pathlib.Path(arguments.program).resolve())
    failed = 0
    chosen = scenarios(arguments.names)
    for scenario in chosen:
        try:
            check(program, scenario, arguments.rewrite)
        except (Broken, OSError) as error:
            failed += 1
            print(f"FAILED {scenario.stem}: {error}")
    print(f"{len(chosen) - failed} passed, {failed} failed")
    return 1 if failed or not chosen else 0


if __name__ == "__main__":
    sys.exit(main())
