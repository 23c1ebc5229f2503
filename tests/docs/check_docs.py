#!/usr/bin/env python3
"""Holds the documents to what they show.

    check_docs.py --build FOLDER

- A link, and a name in backquotes that looks like a path of the repository, leads to something; a
  `Class::Function` stands so in the sources.
- A ```sh block runs, line by line as bash reads it, and succeeds. It runs in a folder that looks like
  the repository with a finished build in build/release; FOLDER is that build.
- A ```text output block is what the ```sh blocks since the one before print to standard output; `...`
  stands for anything within a line.
- A ```sh by-hand block is not run, but its programs and scripts, its presets and its options exist.
- A ```text serve block is how the by-hand block before it begins to log, but for times, numbers and
  quoted names.
- A ```text file=PATH block is that file.
- A ```json block is one JSON document.
- A ```cpp or ```cmake block is there to be read; a whole translation unit (one that includes something)
  compiles.

The last line is `N passed, M failed`: documents.
"""

import argparse
import json
import os
import pathlib
import re
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import time

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
SECONDS = 120  # a command that takes longer hangs
FENCE = re.compile(r"^```(.*)$")


class Wrong(Exception):
    """What a document says and what is not so."""


class Block:
    def __init__(self, info, line):
        words = info.split()
        self.language = words[0] if words else ""
        self.mark = words[1] if len(words) > 1 else ""
        self.line = line
        self.text = ""


def blocks_of(text):
    """The fenced blocks, in order, and the prose around them as one text."""
    blocks, prose, block = [], [], None
    for number, line in enumerate(text.splitlines(), 1):
        fence = FENCE.match(line)
        if fence and block is None:
            block = Block(fence.group(1), number)
        elif fence:
            blocks.append(block)
            block = None
        elif block is not None:
            block.text += line + "\n"
        else:
            prose.append(line)
    if block is not None:
        raise Wrong(f"line {block.line}: the block is not closed")
    return blocks, "\n".join(prose)


def broken_links(document, prose, repository=REPOSITORY):
    for target in re.findall(r"\]\(([^)]+)\)", prose):
        path = target.split("#")[0]
        if "://" in target or not path:
            continue
        if not (document.parent / path).exists():
            yield f"link to {target}, which is not there"
    tops = {entry.name for entry in repository.iterdir() if entry.name != "build"}
    for name in re.findall(r"`([\w./-]+)`", prose):
        if "/" in name and name.removeprefix("./").split("/")[0] in tops:
            if not (repository / name).exists():
                yield f"`{name}` is not there"


def unknown_functions(prose, sources):
    for name in re.findall(r"`((?:\w+::)+\w+)`", prose):
        if not name.startswith("std::") and not re.search(rf"\b{name}\b", sources):
            yield f"`{name}` is in no source"


def sources_of(repository=REPOSITORY):
    return "\n".join(path.read_text(encoding="utf-8")
                     for top in ("host", "astro", "framework", "vexalink_agent_scheduler",
                                 "controller", "examples", "tests")
                     for path in (repository / top).rglob("*.[ch]*") if path.suffix in (".cpp", ".h"))


def matches(shown, got):
    """Whether what was printed is what is shown; `...` stands for anything within a line."""
    pattern = "".join(
        "[^\n]*" if part == "..." else re.escape(part) for part in re.split(r"(\.\.\.)", shown))
    return re.fullmatch(pattern.rstrip("\n") + "\n?", got) is not None


def shape(line):
    """A log line without what differs from run to run."""
    line = re.sub(r"\([A-Z]+\)", "()", re.sub(r'"[^"]*"', '""', line))  # a zone has two names
    return re.sub(r"[+-]0:0", "+0:0", re.sub(r"\d+", "0", line))


class House:
    """A folder that looks like the repository, built."""

    def __init__(self, build):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="vexalink-docs-"))
        for entry in REPOSITORY.iterdir():
            if entry.name not in ("build", ".git"):
                (self.folder / entry.name).symlink_to(entry)
        (self.folder / "build").mkdir()
        (self.folder / "build" / "release").symlink_to(build)
        self.vexalink = build / "bin" / "vexalink"
        self.environment = dict(os.environ, TZ="Europe/Berlin", LC_ALL="C.UTF-8",
                                HOME=str(self.folder), PYTHONDONTWRITEBYTECODE="1",
                                XDG_STATE_HOME=str(self.folder / "state"))
        self.environment.pop("JOURNAL_STREAM", None)
        self.environment.pop("STATE_DIRECTORY", None)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        shutil.rmtree(self.folder)

    def run(self, text):
        result = subprocess.run(["bash", "-eu", "-o", "pipefail", "-c", text], cwd=self.folder,
                                env=self.environment, stdin=subprocess.DEVNULL,
                                capture_output=True, text=True, timeout=SECONDS, check=False)
        if result.returncode != 0:
            raise Wrong(f"exit status {result.returncode}\n{result.stdout}{result.stderr}")
        return result.stdout

    def log_of(self, arguments):
        """What `vexalink serve` logs until it says what is next, and that it then ends cleanly."""
        log = self.folder / "serve.log"
        with log.open("w") as out:
            serve = subprocess.Popen([self.vexalink, "serve", *arguments], cwd=self.folder,
                                     env=self.environment, stdin=subprocess.DEVNULL, stderr=out)
            try:
                end = time.monotonic() + SECONDS
                while "next: " not in log.read_text() and serve.poll() is None:
                    if time.monotonic() > end:
                        raise Wrong("serve does not say what is next")
                    time.sleep(0.05)
                serve.send_signal(signal.SIGINT)
                if serve.wait(SECONDS) != 0:
                    raise Wrong(f"serve ended with {serve.returncode}\n{log.read_text()}")
            finally:
                if serve.poll() is None:
                    serve.kill()
        return log.read_text().splitlines()

    def help_of(self, *command):
        return self.run(shlex.join([str(self.vexalink), *command, "--help"]))


def check_options(words, known, where):
    for word in words:
        option = word.split("=")[0]
        if option.startswith("--") and not re.search(re.escape(option) + r"(?![\w-])", known):
            raise Wrong(f"{where} knows no {option}")


def presets():
    kinds = json.loads((REPOSITORY / "CMakePresets.json").read_text())
    return {preset["name"] for kind in ("configurePresets", "buildPresets", "testPresets")
            for preset in kinds[kind] if not preset.get("hidden")}


def check_by_hand(line, house):
    """One command that is not run."""
    words = shlex.split(line)
    program, rest = words[0], words[1:]
    if "--preset" in rest:
        preset = rest[rest.index("--preset") + 1]
        if preset not in presets():
            raise Wrong(f"there is no preset {preset}")
    if program in ("./run.sh", "build/release/bin/vexalink"):
        known = house.help_of("serve" if program == "./run.sh" else rest[0])
        if rest[1:] and re.search(rf"^  {re.escape(rest[1])}  ", known, re.MULTILINE):
            known += house.help_of(*rest[:2])  # a command of a command
        check_options(rest, known, line)
    elif (REPOSITORY / program).is_file():
        if not os.access(REPOSITORY / program, os.X_OK):
            raise Wrong(f"{program} cannot be executed")
        check_options(rest, (REPOSITORY / program).read_text(), program)
    elif "/" in program:
        raise Wrong(f"{program} is not there")


def check_unit(block, house):
    compiler = os.environ.get("CXX", "c++")
    unit = house.folder / "shown.cpp"
    unit.write_text(block.text)
    house.run(f"{compiler} -std=c++20 -Wall -Wextra -Werror -fsyntax-only -I. {unit.name}")


def check_json(text):
    try:
        json.loads(text, object_pairs_hook=without_twins)
    except ValueError as error:
        raise Wrong(f"is no JSON: {error}") from error


def without_twins(pairs):
    """An object in which no key stands twice."""
    if len(dict(pairs)) < len(pairs):
        raise ValueError("a key stands twice")
    return dict(pairs)


def check_document(document, house):
    blocks, prose = blocks_of(document.read_text(encoding="utf-8"))
    wrong = [*broken_links(document, prose), *unknown_functions(prose, sources_of())]
    printed, by_hand = "", []
    for block in blocks:
        kind = (block.language, block.mark.split("=")[0])
        try:
            if kind == ("sh", ""):
                printed += house.run(block.text)
            elif kind == ("sh", "by-hand"):
                by_hand = block.text.splitlines()
                for line in by_hand:
                    check_by_hand(line, house)
            elif kind == ("text", "output"):
                if not matches(block.text, printed):
                    raise Wrong(f"what is printed is\n{printed}")
                printed = ""
            elif kind == ("text", "serve"):
                got = house.log_of(shlex.split(by_hand[-1])[1:])
                shown = block.text.splitlines()
                if [shape(line) for line in shown] != [shape(line) for line in got[:len(shown)]]:
                    raise Wrong("what is logged is\n" + "\n".join(got))
            elif kind == ("text", "file"):
                if block.text != (REPOSITORY / block.mark.split("=")[1]).read_text():
                    raise Wrong("the file is another")
            elif kind == ("cpp", ""):
                if "#include" in block.text:
                    check_unit(block, house)
            elif kind == ("json", ""):
                check_json(block.text)
            elif kind not in (("text", ""), ("cmake", "")):
                raise Wrong(f"a block of kind {' '.join(kind)!r}; see check_docs.py for those there are")
        except (Wrong, subprocess.TimeoutExpired) as error:
            wrong.append(f"block at line {block.line}: {error}")
    return wrong


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", type=pathlib.Path, required=True)
    build = parser.parse_args().build.resolve()
    documents = sorted([*REPOSITORY.glob("*.md"), *(REPOSITORY / "docs").rglob("*.md")])
    failed = 0
    for document in documents:
        with House(build) as house:
            wrong = check_document(document, house)
        failed += bool(wrong)
        for line in wrong:
            print(f"{document.relative_to(REPOSITORY)}: {line}")
    print(f"{len(documents) - failed} passed, {failed} failed")
    return 1 if failed or not documents else 0


if __name__ == "__main__":
    sys.exit(main())
