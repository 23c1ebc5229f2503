"""The commands on a real controller: what one of them does the others see."""

import json
import os
import re
import select
import signal
import subprocess
import tempfile
import unittest

from client import PROGRAM, Running, environment, run, until


class House(unittest.TestCase):
    """A controller of its own for each test, with no events."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.log = os.path.join(self.folder, "log")
        self.start()

    def start(self):
        with open(self.log, "w", encoding="utf-8") as log:
            self.serve = subprocess.Popen(
                [PROGRAM, "serve", "--listen", "127.0.0.1:0", "--empty",
                 "--project", os.path.join(self.folder, "project.db")],
                env=environment(), stderr=log, stdout=log, stdin=subprocess.DEVNULL)
        self.addCleanup(self.stop)
        until(self.listens, "the controller's address")

    def listens(self):
        with open(self.log, encoding="utf-8") as log:
            text = log.read()
        if self.serve.poll() is not None:
            raise AssertionError(text)
        found = re.search(r"api (http://127\.0\.0\.1:\d+)/", text)
        if found:
            self.url = found.group(1)
        return found

    def stop(self):
        if self.serve.poll() is None:
            self.serve.send_signal(signal.SIGTERM)
        self.assertEqual(self.serve.wait(timeout=60), 0)

    def do(self, *arguments, status=0):
        result = run(*arguments, url=self.url)
        self.assertEqual(result.status, status, result)
        return result.out if status in (0, 10) else result.err

    def json(self, *arguments, status=0):
        result = run(*arguments, "--json", url=self.url)
        self.assertEqual(result.status, status, result)
        return json.loads(result.out)

    def test_an_event_lives_and_comes_back(self):
        self.assertIn("there are no events", self.do("list"))
        out = self.do("add", "Porch", "--at", "sunset-30", "--every", "2 weeks on mon,fri",
                      "--until", "2099-03-31", "--spread", "10", "--if", "time is night",
                      "--run", "logger {description}")
        self.assertRegex(out, r'^added event 1 "Porch"\n.*sunset.*\nnext: \w{3} \d{4}-\d\d-\d\d')
        shown = self.do("show", "porch")
        for text in ("sunset-30 ±10", "every 2 weeks on mon,fri until 2099-03-31",
                     "if time is night: run logger {description}"):
            self.assertIn(text, shown)

        self.do("modify", "Porch", "--at", "7:30pm", "--every", "month on the last fri")
        event = self.json("show", "1")["event"]
        self.assertEqual(event["time"], {"base": "clock", "at": "19:30", "minutes": 1170,
                                         "spread": 10})
        self.assertEqual(event["repeat"]["nth"], {"week": "last", "weekday": "fri"})
        self.assertEqual(event["repeat"]["until"], "2099-03-31")
        self.do("modify", "1", "--every", "once", "--description", "Back door", "--spread", "0",
                "--delay", "5m")
        event = self.json("show", "1")
        self.assertIsNone(event["event"]["repeat"])
        self.assertEqual(event["event"]["time"]["spread"], 0)
        self.assertEqual(event["programming"]["actions"][0]["delay"], 300)
        self.assertEqual(event["programming"]["actions"][0]["if"], {"kind": "time", "is": "night"})

        self.assertEqual(self.json("delete", "Back door"), {"deleted": [1]})
        self.assertIn('there is no event "1"', self.do("show", "1", status=5))
        self.assertEqual(self.do("restore", "1"), 'restored event 1 "Back door"\n')
        self.assertEqual(self.json("show", "1")["programming"], event["programming"])
        kinds = [(row["kind"], row.get("reason")) for row in self.json("journal", "1")["rows"]]
        self.assertIn(("change", "restored"), kinds)
        self.assertIn(("change", "deleted"), kinds)
        actors = {row.get("actor") for row in self.json("journal", "--kind", "change")["rows"]}
        self.assertTrue(any(actor and actor.startswith("cli:") for actor in actors), actors)

    def test_a_preview_changes_nothing(self):
        out = self.do("add", "Bins", "--at", "19:00", "--every", "month on the last thu", "--dry-run")
        self.assertEqual(len(re.findall("^next: Thu ", out, re.MULTILINE)), 10)
        self.assertEqual(self.json("list")["total"], 0)
        self.do("add", "Bins", "--at", "19:00")
        before = self.json("show", "Bins")
        self.assertIn("sunrise", self.do("modify", "Bins", "--at", "sunrise", "--dry-run"))
        self.assertEqual(self.json("show", "Bins"), before)

    def test_what_it_does_is_done(self):
        done = os.path.join(self.folder, "done")
        self.do("add", "Touch", "--at", "noon", "--every", "day",
                "--run", f"touch '{done}' {{event}}")
        self.assertRegex(self.do("run", "Touch"), r'^ran event 1 "Touch", row \d+ of the journal\n$')
        until(lambda: os.path.exists(done), "the file")
        until(lambda: "done" in self.do("journal", "--kind", "action"), "the outcome")
        self.assertIn("fired", self.do("history", "Touch"))
        self.do("actions", "Touch", "--run", "false")
        self.assertEqual(len(self.json("actions", "Touch")["actions"]), 2)
        self.assertIn("failed", self.json("actions", "Touch", "--test", "2", status=1)["outcome"])
        self.do("actions", "Touch", "--remove", "2")
        self.assertEqual(self.json("actions"), {"actions": []})
        self.do("press", "Touch", "--button", "push")

    def test_it_can_be_held_back(self):
        self.do("add", "Porch", "--at", "noon", "--every", "day", "--run", "true")
        self.do("disable", "Porch")
        self.do("pause", "Porch", "--until", "2099-01-01")
        self.do("skip", "Porch")
        self.assertIn("disabled, paused until 2099-01-01, skips the next, 1 action", self.do("list"))
        self.do("enable", "Porch")
        self.do("resume", "Porch")
        self.do("skip", "Porch", "--undo")
        self.assertTrue(self.do("list").endswith("  1 action\n"))
        self.do("away", "2099-01-01")
        self.assertIn("away", self.do("status"))
        self.assertEqual(self.do("away", "off"), "the house is not away\n")

    def test_it_tells_what_comes(self):
        self.do("add", "Noon", "--at", "noon", "--every", "day", "--until", "2099-01-01")
        self.do("add", "Leap day", "--at", "sunrise", "--start", "2096-02-29")
        listed = self.json("occurrences", "Noon", "--from", "2096-02-28", "--to", "2096-03-01")
        self.assertEqual([o["date"] for o in listed["occurrences"]],
                         ["2096-02-28", "2096-02-29", "2096-03-01"])
        self.assertIn("note: there are more", run("occurrences", "--limit", "3", url=self.url).err)
        self.assertEqual(len(self.json("next", "Noon", "-n", "5")["occurrences"]), 5)
        self.assertEqual(self.do("next", "Leap day"), "nothing comes in the next ten years\n")
        self.assertRegex(self.do("sun"), r"sunrise +\d\d:\d\d\nsunset +\d\d:\d\d\n")
        self.assertEqual(len(self.json("sun", "--year", "2096")["days"]), 366)
        status = self.json("status")
        self.assertEqual((status["events"], status["saving"]["ok"]), (2, True))

    def test_conditions_of_every_kind_are_understood(self):
        self.do("test", "date", "after", "2026-01-01")
        self.do("test", "date", "before", "2026-01-01", status=10)
        day = self.json("test", "time is day", status=self.status("time is day"))["result"]
        self.assertNotEqual(day, self.json("test", "time is night",
                                           status=self.status("time is night"))["result"])
        for text in ("time between 22:00 and 02:00", "time after 7pm", "within 30 minutes before sunset",
                     "within 1h30 after sunrise", "weekday in sat,sun", "weekday between mon and fri",
                     "weekday not in weekend", "day in 1,15", "day between 1 and 7",
                     "date between 2026-12-24 and 2027-01-06", "month between 11 and 2",
                     "month is jan", "year eq 2027", "year between 2026 and 2030", "leap"):
            with self.subTest(text=text):
                self.assertIn(self.status(text), (0, 10))
                self.do("add", text, "--at", "noon", "--run", "true", "--if", text)
                self.assertIn(f"if {self.written(text)}: run true", self.do("show", text))

    def status(self, condition):
        return run("test", condition, url=self.url).status

    def written(self, condition):
        """As `show` writes it, where that is not as it was given."""
        return {"time after 7pm": "time after 19:00", "weekday in sat,sun": "weekday in sun,sat",
                "weekday not in weekend": "weekday not in sun,sat", "month is jan": "month is 1",
                "year eq 2027": "year is 2027"}.get(condition, condition)

    def test_refusals_say_what_is_wrong(self):
        self.do("add", "Porch", "--at", "noon")
        self.assertIn('is "Porch"', self.do("add", "Porch", "--at", "noon", status=4))
        self.assertIn("/description", self.do("add", "", "--at", "noon", status=4))
        self.assertIn('there is no event "99"', self.do("run", "99", status=5))
        self.do("delete", "Porch", "--if-match", '"other"', status=4)
        self.do("restore", "55", status=5)
        version = self.json("show", "Porch")["version"]
        self.do("modify", "Porch", "--at", "1pm", "--if-match", version)
        self.do("modify", "Porch", "--at", "2pm", "--if-match", version, status=4)

    def test_what_happens_is_watched(self):
        with Running("watch", "--json", url=self.url) as watch:
            # The stream has begun once something of it has come.
            until(lambda: self.do("add", f"e{self.json('list')['total']}", "--at", "noon") and
                  self.readable(watch), "the stream")
            line = json.loads(watch.line())
            self.assertIn("event", line)
            self.assertEqual(watch.stop(), 0)

    def readable(self, watch):
        return select.select([watch.process.stdout], [], [], 0.1)[0]

    def test_nobody_answers_once_it_has_ended(self):
        self.do("list")
        self.stop()
        self.assertIn("no controller answers", self.do("list", status=3))


if __name__ == "__main__":
    unittest.main()
