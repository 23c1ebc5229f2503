#!/usr/bin/env python3
"""What goes wrong around a running controller: the disk, the clock, its end.

Each test has a controller of its own. VEXALINK_PROGRAM names the program.
"""

import contextlib
import ctypes
import datetime
import http.server
import os
import pathlib
import resource
import shutil
import signal
import sqlite3
import subprocess
import tempfile
import threading
import time
import unittest

import serving

DAILY = {"description": "Porch", "start": "2026-01-01",
         "time": {"base": "clock", "at": "07:00"}, "repeat": {"unit": "day"}}


def named(name, at="07:00", **more):
    return DAILY | {"description": name, "time": {"base": "clock", "at": at}} | more


class Folder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.project = self.folder / "house" / "project.db"
        self.project.parent.mkdir()
        self.log = self.folder / "log"

    def serve(self, **options):
        controller = serving.Controller(self.project, log=self.log, **options)
        self.addCleanup(controller.kill)
        return controller

    def add(self, client, name, expected=201, **more):
        answer = client.ask("POST", "/events", named(name, **more))
        self.assertEqual(answer.status, expected, answer)
        return answer.json()

    def names(self, client):
        return sorted(event["description"] for event in client.get("/events")["events"])


class DiskTest(Folder):
    """A change that cannot be saved is in effect, told as such, and saved as soon as that works."""

    def expect_trouble_and_recovery(self, controller, heal, why):
        client = controller.client()
        self.assertEqual(client.ask("GET", "/readyz").status, 200)
        problem = None
        for number in range(2000):  # until the disk takes no more
            answer = client.ask("POST", "/events", named(f"Lamp {number}" + "x" * 150))
            if answer.status != 201:
                problem = answer
                break
        self.assertIsNotNone(problem, "it never failed")
        self.assertEqual(problem.status, 503, problem)
        self.assertEqual(problem.json()["type"], "urn:vexalink:problem:not-saved")
        self.assertIs(problem.json()["applied"], True, problem)
        self.assertIn(why, problem.json()["detail"])
        listed = self.names(client)
        self.assertEqual(len(listed), number + 1, "what was not saved is in effect")
        ready = client.ask("GET", "/readyz")
        self.assertEqual(ready.status, 503)
        self.assertIn(why, ready.json()["detail"])
        self.assertEqual(client.metric("vexalink_saving_works"), 0)
        self.assertEqual(client.ask("GET", "/healthz").status, 200)
        heal()
        serving.until(lambda: client.ask("GET", "/readyz").status == 200, "recovery")
        self.assertIn("saving works again", controller.said())
        self.add(client, "Afterwards")
        controller.kill()
        with self.serve().until_up() as again:
            self.assertEqual(self.names(again.client()), sorted(listed + ["Afterwards"]))
            self.assertEqual(again.stop(), 0)

    def test_a_full_disk(self):
        if os.geteuid() != 0 or subprocess.run(
                ["mount", "-t", "tmpfs", "-o", "size=512k", "tmpfs", self.project.parent],
                capture_output=True, check=False).returncode != 0:
            self.skipTest("no small disk can be mounted here")
        self.addCleanup(subprocess.run, ["umount", "-l", self.project.parent], check=True)
        filler = self.project.parent / "filler"
        filler.write_bytes(b"x" * 200 * 1024)
        with self.serve().until_up() as controller:
            self.expect_trouble_and_recovery(controller, filler.unlink, "the disk is full")

    def test_a_limit_of_the_file_size(self):
        # SQLite tells of what cannot be written whole that the disk is full.
        with self.serve().until_up() as controller:
            self.add(controller.client(), "First")
            size = self.project.stat().st_size
            resource.prlimit(controller.pid, resource.RLIMIT_FSIZE,
                             (size + 100 * 1024, resource.RLIM_INFINITY))
            self.expect_limit(controller)

    def expect_limit(self, controller):
        client = controller.client()
        failed = serving.until(lambda: self.fill(client), "a failure")
        self.assertEqual(failed.json()["type"], "urn:vexalink:problem:not-saved")
        self.assertEqual(client.ask("GET", "/readyz").status, 503)
        listed = self.names(client)
        resource.prlimit(controller.pid, resource.RLIMIT_FSIZE,
                         (resource.RLIM_INFINITY, resource.RLIM_INFINITY))
        serving.until(lambda: client.ask("GET", "/readyz").status == 200, "recovery")
        controller.kill()
        with self.serve().until_up() as again:
            self.assertEqual(self.names(again.client()), listed)

    def fill(self, client):
        self.count = getattr(self, "count", 0) + 1
        answer = client.ask("POST", "/events", named(f"Lamp {self.count} " + "x" * 150))
        return answer if answer.status == 503 else None

    def test_a_folder_that_may_not_be_written(self):
        with self.serve(prepare=give_up_override).until_up() as controller:
            client = controller.client()
            self.add(client, "Before")
            folder = self.project.parent
            folder.chmod(0o555)
            self.addCleanup(folder.chmod, 0o755)
            # All files that saving needs are there: it goes on.
            self.add(client, "Meanwhile")
            self.assertEqual(client.ask("GET", "/readyz").status, 200)
            controller.kill()
        with self.serve(prepare=give_up_override).until_up() as again:
            self.assertEqual(self.names(again.client()), ["Before", "Meanwhile"])
            self.assertEqual(again.stop(), 0)
        folder.chmod(0o755)
        with self.serve(prepare=give_up_override).until_up() as again:
            self.assertEqual(again.stop(), 0)
        folder.chmod(0o555)
        refused = self.serve(prepare=give_up_override)
        self.assertEqual(refused.wait(), 1)
        self.assertIn("folder must be writable", refused.said())

    def test_a_file_that_was_taken_away(self):
        elsewhere = self.folder / "elsewhere.db"
        with self.serve().until_up() as controller:
            client = controller.client()
            self.add(client, "Before")
            self.project.rename(elsewhere)
            answer = client.ask("POST", "/events", named("Meanwhile"))
            self.assertEqual(answer.status, 503, answer)
            self.assertIn("put it back", answer.json()["detail"])
            elsewhere.rename(self.project)
            serving.until(lambda: client.ask("GET", "/readyz").status == 200, "recovery")
            controller.kill()
        with self.serve().until_up() as again:
            self.assertEqual(self.names(again.client()), ["Before", "Meanwhile"])

    def test_another_program_that_holds_it(self):
        with self.serve().until_up() as controller:
            client = controller.client()
            self.add(client, "Before")
            with contextlib.closing(sqlite3.connect(self.project)) as other:
                other.execute("BEGIN EXCLUSIVE")
                answer = client.ask("POST", "/events", named("Meanwhile"))
                self.assertEqual(answer.status, 503, answer)
                self.assertIn("another process holds it", answer.json()["detail"])
                other.rollback()
            serving.until(lambda: client.ask("GET", "/readyz").status == 200, "recovery")
            controller.kill()
        with self.serve().until_up() as again:
            self.assertEqual(self.names(again.client()), ["Before", "Meanwhile"])


def give_up_override():
    """Takes from the process, root's too, the right to write where it has no permission."""
    if os.geteuid() == 0:
        libc = ctypes.CDLL(None)
        for capability in (1, 2):  # CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH
            if libc.prctl(24, capability, 0, 0, 0) != 0:  # PR_CAPBSET_DROP
                raise OSError("the system does not let it")


class ClockTest(Folder):
    """The wall clock is set while a controller runs: forward, back, over midnight."""

    def setUp(self):
        super().setUp()
        if shutil.which("faketime") is None:
            self.skipTest("needs the package faketime: scripts/install-deps.sh test")
        if os.environ.get("VEXALINK_SANITIZE"):
            self.skipTest("the sanitizers' library wants the place that faketime's takes")
        self.clock = self.folder / "clock"
        self.lines = self.folder / "lines"
        self.lines.touch()
        self.begin = 0
        self.hours = 0

    def start(self, at):
        """With the clock of the house at `at` (UTC) of 1 March 2030, a Friday, or a little later."""
        then = datetime.datetime(2030, 3, 1, *at, tzinfo=datetime.timezone.utc)
        self.begin = int((then - datetime.datetime.now(datetime.timezone.utc)).total_seconds())
        self.hours = 0
        return self.launch()

    def launch(self):
        self.set(self.hours)
        library = next(iter(sorted(pathlib.Path("/usr/lib").glob("*/faketime/libfaketime.so.1"))))
        controller = self.serve(environment={
            "LD_PRELOAD": str(library), "FAKETIME_TIMESTAMP_FILE": str(self.clock),
            "FAKETIME_NO_CACHE": "1", "FAKETIME_DONT_FAKE_MONOTONIC": "1",
            "FAKETIME_DONT_RESET": "1"})
        return controller.until_up()

    def set(self, hours):
        """So many hours from where it began: seconds go on as they do, so a tick is a tick."""
        self.hours = hours
        other = self.clock.with_suffix(".new")
        other.write_text(f"{self.begin + hours * 3600:+d}\n")
        other.replace(self.clock)

    def event(self, client, name, at, policy="ignore"):
        programming = {"catch_up": {"policy": policy}, "actions": [{"command": {"argv": [
            "/bin/sh", "-c", f'echo "$0 $1" >> "{self.lines}"', "{description}", "{planned}"]}}]}
        return self.add(client, name, start="2030-02-01", at=at, programming=programming)["id"]

    def add(self, client, name, expected=201, **more):
        at = more.pop("at", "07:00")
        answer = client.ask("POST", "/events", named(name, at) | more)
        self.assertEqual(answer.status, expected, answer)
        return answer.json()

    def jumps(self, client):
        return client.get("/journal?kind=clock")["rows"]

    def rows(self, client, *kinds):
        query = "&".join(f"kind={kind}" for kind in kinds)
        return [(row["kind"], row["description"], row["reason"], row["date"])
                for row in reversed(client.get(f"/journal?limit=1000&{query}")["rows"])]

    def wait_for_jump(self, client, count):
        serving.until(lambda: len(self.jumps(client)) >= count, "the jump", 20)
        self.assertEqual(len(self.jumps(client)), count)
        self.assertEqual(self.jumps(client)[0]["reason"], "jump")

    def acted(self):
        return self.lines.read_text().splitlines()

    def test_forward_by_hours(self):
        with self.start((6, 30)) as controller:
            client = controller.client()
            self.event(client, "Ignored", "08:00")
            self.event(client, "Always", "08:10", "always")
            self.event(client, "Later", "12:00")
            self.set(3)
            self.wait_for_jump(client, 1)
            self.assertIn("set forward by 108", self.jumps(client)[0]["text"])
            serving.until(lambda: self.acted(), "the action")
            self.assertEqual(self.rows(client, "fired", "missed"), [
                ("missed", "Ignored", "clock-jump", "2030-03-01"),
                ("fired", "Always", "caught-up", "2030-03-01")])
            today = client.get("/today")
            self.assertEqual([(each["description"], each["state"]) for each in
                              today["occurrences"]],
                             [("Ignored", "missed"), ("Always", "fired"), ("Later", "pending")])
            # Back again: what was acted on is not acted on twice, what was missed comes again.
            self.set(0)
            self.wait_for_jump(client, 2)
            today = client.get("/today")
            self.assertEqual([(each["description"], each["state"]) for each in
                              today["occurrences"]],
                             [("Ignored", "pending"), ("Always", "fired"), ("Later", "pending")])
            self.set(3)
            self.wait_for_jump(client, 3)
            time.sleep(2.5)
            self.assertEqual(len(self.acted()), 1)
            self.assertEqual([row for row in self.rows(client, "fired")],
                             [("fired", "Always", "caught-up", "2030-03-01")])
            self.assertEqual(controller.stop(), 0)

    def test_over_midnight_and_back(self):
        with self.start((22, 30)) as controller:
            client = controller.client()
            self.event(client, "Evening", "23:00", "always")
            self.event(client, "Morning", "00:30", "always")
            self.set(3)
            self.wait_for_jump(client, 1)
            serving.until(lambda: len(self.acted()) == 2, "both actions")
            # Begun in the order of their time; which program is faster is another matter.
            self.assertEqual(self.rows(client, "fired"), [
                ("fired", "Evening", "caught-up", "2030-03-01"),
                ("fired", "Morning", "caught-up", "2030-03-02")])
            self.assertEqual(sorted(self.acted()), ["Evening 2030-03-01T23:00:00+00:00",
                                                    "Morning 2030-03-02T00:30:00+00:00"])
            self.assertEqual(client.get("/today")["date"], "2030-03-02")
            self.set(0)
            self.wait_for_jump(client, 2)
            self.assertEqual(client.get("/today")["date"], "2030-03-01")
            self.assertEqual([each["state"] for each in client.get("/today")["occurrences"]
                              if each["description"] == "Evening"], ["fired"])
            self.set(3)
            self.wait_for_jump(client, 3)
            time.sleep(2.5)
            self.assertEqual(len(self.acted()), 2)

    def test_back_by_days_with_a_change_that_waits(self):
        with self.start((12, 30)) as controller:
            client = controller.client()
            self.event(client, "Noon", "12:00", "always")
            self.set(24 * 10)
            self.wait_for_jump(client, 1)
            serving.until(lambda: len(self.acted()) == 1, "the last of ten")
            self.add(client, "Another")
            self.set(-24 * 5)
            self.wait_for_jump(client, 2)
            self.assertEqual(client.get("/today")["date"], "2030-02-24")
            self.set(24 * 10)
            self.wait_for_jump(client, 3)
            time.sleep(2.5)
            self.assertEqual(len(self.acted()), len(set(self.acted())), self.acted())
            self.assertEqual(controller.stop(), 0)

    def test_waits_for_a_clock_that_can_be_right(self):
        with self.start((6, 30)) as controller:
            client = controller.client()
            self.event(client, "Porch", "07:00")
            self.assertEqual(controller.stop(), 0)
        self.hours = -24 * 365 * 20
        with self.launch() as controller:
            client = controller.client()
            self.assertEqual(client.ask("GET", "/healthz").status, 200)
            self.assertEqual(client.metric("vexalink_waiting"), 1)
            for path in ("/readyz", "/events", "/status", "/today", "/stream", "/project"):
                answer = client.ask("GET", path)
                self.assertEqual(answer.status, 503, path)
                self.assertRegex(answer.json()["detail"], "the clock says .*2010", path)
            self.assertEqual(client.ask("DELETE", "/events/1").status, 503)
            self.assertEqual(client.ask("POST", "/events", named("Two")).status, 503)
            self.set(0)
            serving.until(lambda: client.ask("GET", "/readyz").status == 200, "the scheduler")
            self.assertEqual(client.metric("vexalink_waiting"), 0)
            self.assertEqual([each["description"] for each in client.get("/events")["events"]],
                             ["Porch"])
            self.assertEqual(controller.stop(), 0)

    def test_while_it_was_down(self):
        with self.start((6, 30)) as controller:
            client = controller.client()
            self.event(client, "Ignored", "08:00")
            self.event(client, "Always", "08:10", "always")
            self.assertEqual(controller.stop(), 0)
        self.hours = 3
        for _ in range(2):
            with self.launch() as controller:
                client = controller.client()
                serving.until(lambda: self.acted(), "the action")
                self.assertEqual(self.rows(client, "fired", "missed"), [
                    ("missed", "Ignored", "down", "2030-03-01"),
                    ("fired", "Always", "caught-up", "2030-03-01")])
                self.assertEqual(len(self.acted()), 1)
                controller.kill()


class SlowHook(http.server.BaseHTTPRequestHandler):
    """Never answers."""

    def do_POST(self):
        self.server.asked.set()
        self.server.released.wait(60)

    def log_message(self, *_):
        pass


class EndTest(Folder):
    def test_a_stop_does_not_wait_for_a_slow_hook(self):
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), SlowHook)
        server.asked = threading.Event()
        server.released = threading.Event()
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        self.addCleanup(server.released.set)
        with self.serve().until_up() as controller:
            client = controller.client()
            added = self.add(client, "Hook", programming={"actions": [
                {"hook": {"url": f"http://127.0.0.1:{server.server_port}/", "timeout": 300}}]})
            answer = client.ask("POST", f"/events/{added['id']}/run")
            self.assertEqual(answer.status, 202, answer)
            self.assertTrue(server.asked.wait(30))
            begin = time.monotonic()
            self.assertEqual(controller.stop(), 0)
            self.assertLess(time.monotonic() - begin, 30)
            self.assertIn("everything is saved", controller.said())
        with self.serve().until_up() as again:
            rows = again.client().get("/journal?kind=action")["rows"]
            self.assertEqual([row["outcome"] for row in rows], ["cancelled"])

    def test_a_second_controller_is_refused_and_does_no_harm(self):
        with self.serve().until_up() as first:
            self.add(first.client(), "Before")
            second = serving.Controller(self.project, log=self.folder / "second")
            self.addCleanup(second.kill)
            self.assertEqual(second.wait(), 1)
            self.assertIn(f"process {first.pid}", second.said())
            self.add(first.client(), "Afterwards")
            self.assertEqual(first.stop(), 0)

    def test_stops_and_starts_lose_nothing(self):
        names = []
        for number in range(5):
            with self.serve().until_up() as controller:
                client = controller.client()
                self.assertEqual(self.names(client), names)
                names.append(f"Event {number}")
                self.add(client, names[-1])
                self.assertEqual(controller.stop(), 0)
            left = sorted(path.name for path in self.project.parent.iterdir())
            self.assertEqual(left, ["project.db"], "a clean stop leaves nothing beside it")


class TogetherTest(Folder):
    def test_changes_that_arrive_together_share_a_flush(self):
        changes = 40
        with self.serve().until_up() as controller:
            clients = [controller.client() for _ in range(changes)]
            for client in clients:
                self.assertEqual(client.ask("GET", "/healthz").status, 200)
            before = controller.client().metric("vexalink_saves_total")
            # All are there before the program reads the first of them.
            controller.signal(signal.SIGSTOP)
            answers = [None] * changes

            def change(number):
                answers[number] = clients[number].ask("POST", "/events", named(f"Event {number}"))
            threads = [threading.Thread(target=change, args=(n,)) for n in range(changes)]
            for thread in threads:
                thread.start()
            time.sleep(0.5)
            controller.signal(signal.SIGCONT)
            for thread in threads:
                thread.join()
            self.assertEqual([answer.status for answer in answers], [201] * changes)
            saves = controller.client().metric("vexalink_saves_total") - before
            self.assertLess(saves, changes / 4)
            self.assertGreaterEqual(saves, 1)
            controller.kill()
        with self.serve().until_up() as again:
            self.assertEqual(len(self.names(again.client())), changes)


if __name__ == "__main__":
    unittest.main()
