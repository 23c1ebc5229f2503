"""Manual pages and completion, held to the tools that read them."""

import os
import re
import shutil
import subprocess
import tempfile
import unittest

from client import PROGRAM, environment, run
from fake_controller import FakeController

WITH_PROGRAM = f"{os.path.dirname(PROGRAM)}:{os.environ['PATH']}"


def commands():
    lines = run("--help").out.partition("Subcommands:")[2].partition("\n\n")[0]
    return re.findall(r"^  (\w+)", lines, re.MULTILINE)


def options(command):
    return set(re.findall(r"^  (?:-\w,)?(--[\w-]+)", run(command, "--help").out, re.MULTILINE))


def tool(*arguments, text=""):
    return subprocess.run(arguments, input=text.encode(), capture_output=True, check=False,
                          timeout=60, env=environment(MANWIDTH="80"))


class ManualPages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        result = run("manual", "--output", cls.folder.name)
        assert result.status == 0, result
        cls.pages = sorted(os.path.join(cls.folder.name, name)
                           for name in os.listdir(cls.folder.name))

    def test_every_command_has_one(self):
        self.assertGreater(len(commands()), 25)
        names = {"vexalink.1"} | {f"vexalink-{command}.1" for command in commands()}
        self.assertEqual({os.path.basename(page) for page in self.pages}, names)

    @unittest.skipUnless(shutil.which("mandoc"), "mandoc is not installed")
    def test_mandoc_finds_nothing(self):
        done = tool("mandoc", "-T", "lint", *self.pages)
        self.assertEqual((done.returncode, done.stdout.decode()), (0, ""))

    @unittest.skipUnless(shutil.which("groff"), "groff is not installed")
    def test_groff_warns_of_nothing(self):
        for page in self.pages:
            done = tool("groff", "-man", "-ww", "-z", "-K", "utf8", page)
            self.assertEqual((done.returncode, done.stderr), (0, b""), page)

    @unittest.skipUnless(shutil.which("mandoc"), "mandoc is not installed")
    def test_they_name_all_options(self):
        for command in commands():
            page = tool("mandoc", "-T", "ascii", os.path.join(self.folder.name,
                                                             f"vexalink-{command}.1"))
            text = re.sub(".\b", "", page.stdout.decode())
            for option in options(command) - {"--help"}:
                self.assertIn(option, text, command)
            self.assertIn("EXIT STATUS", text, command)

    def test_one_can_be_asked_for(self):
        with open(os.path.join(self.folder.name, "vexalink-add.1"), encoding="utf-8") as page:
            self.assertEqual(run("manual", "add").out, page.read())
        self.assertEqual(run("manual", "history").out, run("manual", "journal").out)
        result = run("manual", "dance")
        self.assertEqual(result.status, 2)
        self.assertIn('there is no command "dance"', result.err)


class Completion(unittest.TestCase):
    def complete(self, *words, url="http://127.0.0.1:9"):
        """What bash offers for the last word; it splits at = as a command line does."""
        script = (run("completion", "bash").out + """
COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _vexalink
printf '%s\\n' "${COMPREPLY[@]}"
""")
        done = subprocess.run(
            ["bash", "--noprofile", "--norc", "-c", script, "bash", *words], capture_output=True,
            check=False, timeout=60, cwd=self.cwd,
            env=environment(VEXALINK_URL=url, PATH=WITH_PROGRAM))
        self.assertEqual((done.returncode, done.stderr), (0, b""), words)
        return [line for line in done.stdout.decode().split("\n") if line]

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.cwd = folder.name
        for name in ("a schedule.xml", "other.xml"):
            with open(os.path.join(self.cwd, name), "w", encoding="ascii"):
                pass

    def test_offers_all_commands_and_options(self):
        offered = self.complete("vexalink", "")
        self.assertEqual(set(commands()) | {"history"},
                         {word for word in offered if not word.startswith("-")})
        for command in commands():
            self.assertEqual(options(command), {word for word in self.complete(
                "vexalink", command, "--")}, command)

    def test_offers_what_fits(self):
        rows = [
            (["sho"], ["show"]),
            (["add", "--at", "sun"], ["sunrise", "sunset"]),
            (["add", "--at", "=", "sun"], ["sunrise", "sunset"]),
            (["add", "--on", ""], ["event", "push", "click"]),
            (["add", "--on", "="], ["event", "push", "click"]),
            (["add", "--catch-up", ""], ["ignore", "always"]),
            (["add", "--method", "P"], ["POST", "PUT", "PATCH"]),
            (["add", "--description", ""], []),
            (["add", "--body", ""], []),
            (["history", "--kind", "c"], ["change", "clock", "controller"]),
            (["list", "--color", "a"], ["auto", "always"]),
            (["import", ""], ["a schedule.xml", "other.xml"]),
            (["list", "--token-file", "o"], ["other.xml"]),
            (["completion", ""], ["bash", "zsh", "fish"]),
            (["occurrences", "--from", "to"], ["today", "tomorrow"]),
            (["show", ""], []),
            (["nonsense", "--a"], []),
        ]
        for words, expected in rows:
            with self.subTest(words=words):
                self.assertEqual(sorted(self.complete("vexalink", *words)), sorted(expected))

    def test_offers_the_events_of_the_controller(self):
        with FakeController({"GET /events": {"total": 2, "events": [
                {"id": 7, "description": "Porch"}, {"id": 71, "description": "$(touch x) lamp\n"}]}}
                            ) as house:
            self.assertEqual(self.complete("vexalink", "show", "7", url=house.url), ["7", "71"])
            self.assertEqual(self.complete("vexalink", "run", "Por", url=house.url), ["Porch"])
            quoted = self.complete("vexalink", "run", "\\$", url=house.url)
        self.assertEqual(len(quoted), 1)
        # As the shell will read it again: one word, and nothing is run.
        done = tool("bash", "-c", f"printf %s {quoted[0]}")
        self.assertEqual(done.stdout.decode(), "$(touch x) lamp\\n")
        self.assertNotIn("x", os.listdir(self.cwd))

    def test_is_clean_for_each_shell(self):
        for shell, check in [("bash", ["bash", "-n"]), ("bash", ["shellcheck", "-"]),
                             ("zsh", ["zsh", "-n"]), ("fish", ["fish", "-n"])]:
            with self.subTest(check=check):
                if not shutil.which(check[0]):
                    self.skipTest(f"{check[0]} is not installed")
                done = tool(*check, text=run("completion", shell).out)
                self.assertEqual((done.returncode, done.stdout, done.stderr), (0, b"", b""))

    @unittest.skipUnless(shutil.which("fish"), "fish is not installed")
    def test_works_in_fish(self):
        def offers(line):
            script = run("completion", "fish").out + f"\ncomplete -C '{line}'\n"
            with tempfile.TemporaryDirectory() as home:
                done = subprocess.run(
                    ["fish", "--no-config", "-c", script], capture_output=True, timeout=60,
                    check=False, env=environment(HOME=home, PATH=WITH_PROGRAM,
                                                 VEXALINK_URL="http://127.0.0.1:9"))
            self.assertEqual(done.stderr, b"")
            return {entry.split("\t")[0] for entry in done.stdout.decode().splitlines()}

        self.assertEqual(offers("vexalink hist"), {"history"})
        self.assertEqual(offers("vexalink add --on "), {"event", "push", "click"})
        self.assertLessEqual(options("history"), offers("vexalink history --"))

    @unittest.skipUnless(shutil.which("zsh"), "zsh is not installed")
    def test_loads_in_zsh(self):
        with tempfile.TemporaryDirectory() as home:
            with open(os.path.join(home, "_vexalink"), "w", encoding="utf-8") as script:
                script.write(run("completion", "zsh").out)
            done = subprocess.run(
                ["zsh", "-f", "-c", f"fpath=({home} $fpath); autoload -Uz compinit; "
                 f"compinit -u -d {home}/dump; autoload +X _vexalink; whence -w _vexalink; "
                 "echo ${_comps[vexalink]}"],
                capture_output=True, timeout=60, check=False, env=environment(HOME=home))
        self.assertEqual((done.stdout.decode(), done.stderr), ("_vexalink: function\n_vexalink\n", b""))


if __name__ == "__main__":
    unittest.main()
