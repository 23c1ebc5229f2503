#!/usr/bin/env python3
"""Kills a controller at random moments while it is changed and while its events fire.

  tests/trust/kill_loop.py [--rounds N] [--seed N] [--keep FOLDER]

A round: a controller is started, what it holds is compared with what was acknowledged, then four
clients change it until it gets SIGKILL. A change that was answered 2xx must be there; one that was
not answered is there whole or not at all, an event with its programming. Each start is in a time
zone of its own in which a minute is about to begin: mostly the same minute of the same day again,
so that whatever fires comes up many times over. After 250 rounds comes another project. What the events do is to append a line to a file:
none may stand there twice for one day, and each has its row in the journal.

  VEXALINK_PROGRAM=build/release/bin/vexalink tests/trust/kill_loop.py --rounds 1000
"""

import argparse
import collections
import datetime
import http.client
import json
import pathlib
import random
import sqlite3
import subprocess
import sys
import tempfile
import threading
import time
import xml.etree.ElementTree

import serving

CLIENTS = 4
MOST_EVENTS = 12  # of one client
ROUNDS_OF_A_PROJECT = 250  # a journal keeps 100,000 rows; all of them are wanted at the end
BREAKS = (OSError, http.client.HTTPException)


def plain(event):
    """What an event is, without what is worked out."""
    return {key: value for key, value in event.items() if key not in ("id", "next", "programming")}


def programming_of(text, lines, policy):
    """Appends "event planned" to the file, in one write."""
    return {"enabled": True, "catch_up": {"policy": policy, "minutes": 10} if policy == "within"
            else {"policy": policy},
            "actions": [{"command": {"argv": [
                "/bin/sh", "-c", f'echo "$0 $1 {text}" >> "{lines}"', "{event}", "{planned}"]}}]}


class Known:
    """What one client has been told of its own events, and what it was not told the end of."""

    def __init__(self, name, lines, chance):
        self.name = name
        self.lines = lines
        self.chance = chance
        self.events = {}       # id: event and programming
        self.deleted = {}
        self.unsure = None     # (id or None, before, after): one of both is what is there
        self.project = ""
        self.unsure_project = None
        self.count = 0
        self.acknowledged = collections.Counter()  # (id, reason)
        self.begun = collections.Counter()

    def fresh(self, minute):
        self.count += 1
        at = self.chance.choice([minute, minute, minute, f"{self.chance.randrange(24):02d}:00"])
        event = {"description": f"{self.name} {self.count}", "start": "2026-01-01",
                 "time": {"base": "clock", "at": at},
                 "repeat": {"unit": "day", "every": 1}}
        policy = self.chance.choice(["ignore", "within", "always"])
        return event, programming_of(f"{self.name}.{self.count}", self.lines, policy)

    def change(self, client, minute):
        """Asks for one change; what breaks the connection goes up, with `unsure` telling why."""
        kinds = ["add"] * 3 if len(self.events) < MOST_EVENTS else ["delete"]
        if self.events:
            kinds += ["put", "put", "patch", "programming", "programming", "delete"]
        if self.deleted:
            kinds += ["restore", "restore"]
        if self.name == "a":
            kinds.append("project")
        getattr(self, "do_" + self.chance.choice(kinds))(client, minute)

    def ask(self, client, method, path, body, unsure, reason):
        event = unsure[0]
        self.unsure = unsure
        self.begun[event, reason] += 1
        answer = client.ask(method, path, body)
        if answer.status not in (200, 201, 202, 204):
            raise AssertionError(f"{method} {path} {body}: {answer}")
        self.unsure = None
        self.acknowledged[event, reason] += 1
        return answer

    def do_add(self, client, minute):
        event, programming = self.fresh(minute)
        answer = self.ask(client, "POST", "/events", event | {"programming": programming},
                          (None, None, (event, programming)), "added")
        added = answer.json()["id"]
        self.acknowledged[added, "added"] += 1
        self.events[added] = (event, programming)

    def do_put(self, client, minute):
        number = self.chance.choice(sorted(self.events))
        event, programming = self.events[number]
        new, _ = self.fresh(minute)
        self.ask(client, "PUT", f"/events/{number}", new,
                 (number, (event, programming), (new, programming)), "modified")
        self.events[number] = (new, programming)

    def do_patch(self, client, minute):
        number = self.chance.choice(sorted(self.events))
        event, programming = self.events[number]
        time_of_day = {"base": "clock", "at": self.chance.choice([minute, "03:17"])}
        new = event | {"time": time_of_day}
        self.ask(client, "PATCH", f"/events/{number}", {"time": time_of_day},
                 (number, (event, programming), (new, programming)), "modified")
        self.events[number] = (new, programming)

    def do_programming(self, client, minute):
        number = self.chance.choice(sorted(self.events))
        event, before = self.events[number]
        _, programming = self.fresh(minute)
        self.ask(client, "PUT", f"/events/{number}/programming", programming,
                 (number, (event, before), (event, programming)), "programming")
        self.events[number] = (event, programming)

    def do_delete(self, client, _):
        number = self.chance.choice(sorted(self.events))
        before = self.events[number]
        self.ask(client, "DELETE", f"/events/{number}", None, (number, before, None), "deleted")
        self.deleted[number] = self.events.pop(number)

    def do_restore(self, client, _):
        number = self.chance.choice(sorted(self.deleted))
        before = self.deleted[number]
        self.ask(client, "POST", f"/events/{number}/restore", None, (number, None, before),
                 "restored")
        self.events[number] = self.deleted.pop(number)

    def do_project(self, client, _):
        self.count += 1
        name = f"House {self.count}"
        self.unsure_project = (self.project, name)
        answer = client.ask("PATCH", "/project", {"name": name})
        if answer.status != 200:
            raise AssertionError(answer)
        self.project = name
        self.unsure_project = None


class Held:
    """What a controller holds."""

    def __init__(self, client):
        self.project = client.get("/project")["name"]
        self.events = {}
        for event in client.get("/events")["events"]:
            programming = client.get(f"/events/{event['id']}/programming")
            self.events[event["id"]] = (plain(event), programming)
        answer = client.ask("GET", "/project/export")
        exported = xml.etree.ElementTree.fromstring(answer.body)
        ids = sorted(int(each.findtext("eventid")) for each in exported.iter("event"))
        if ids != sorted(self.events):
            raise AssertionError(f"exported are {ids}, listed {sorted(self.events)}")

    def same(self, number, wanted):
        """Whether this event is as it was asked for; `wanted` None: not there."""
        there = self.events.get(number)
        if wanted is None or there is None:
            return wanted is None and there is None
        event, programming = wanted
        if any(there[0]["time"].get(key) != value for key, value in event["time"].items()):
            return False
        if any(there[0].get(key) != event[key] for key in ("description", "start", "repeat")):
            return False
        return all(there[1].get(key) == programming[key] for key in ("enabled",)) and [
            action["command"]["argv"] for action in there[1]["actions"]] == [
            action["command"]["argv"] for action in programming["actions"]] and (
            there[1]["catch_up"]["policy"] == programming["catch_up"]["policy"])


def settle_unsure(known, held):
    """What was not answered: it is there or not, nothing between, and that is what counts now."""
    number, before, after = known.unsure
    if number is None:
        wanted = after[0]["description"]
        number = next((each for each, (event, _) in held.events.items()
                       if event["description"] == wanted), None)
        if number is None:
            known.unsure = None
            return
    if held.same(number, after):
        there = after
    elif held.same(number, before):
        there = before
    else:
        raise AssertionError(f"event {number} is neither {before} nor {after} but "
                             f"{held.events.get(number)}")
    gone = known.events.pop(number, None) or known.deleted.pop(number, None)
    if there is not None:
        known.events[number] = there
    elif gone is not None:
        known.deleted[number] = gone
    known.unsure = None


def compare(clients, held):
    for known in clients:
        if known.unsure is not None:
            settle_unsure(known, held)
        for number, wanted in known.events.items():
            if not held.same(number, wanted):
                raise AssertionError(f"event {number} was acknowledged as {wanted}, and is "
                                     f"{held.events.get(number)}")
    every = {number for known in clients for number in known.events}
    if every != set(held.events):
        raise AssertionError(f"there are {sorted(held.events)}, acknowledged are {sorted(every)}")
    first = clients[0]
    if held.project not in (first.unsure_project or (first.project,)):
        raise AssertionError(f"the name is {held.project!r}, and not {first.project!r} or of "
                             f"{first.unsure_project}")
    first.project = held.project
    first.unsure_project = None


class Loop:
    def __init__(self, folder, seed):
        self.seed = seed
        self.chance = random.Random(seed)
        self.project = folder / "project.db"
        self.lines = folder / "lines"
        self.lines.touch()
        self.clients = [Known("abcd"[n], self.lines, random.Random(seed * 10 + n))
                        for n in range(CLIENTS)]
        self.counts = collections.Counter()
        self.faults = []

    def work(self, known, controller, minute):
        try:
            client = controller.client()
            while True:
                known.change(client, minute)
                self.counts["changes"] += 1
                time.sleep(known.chance.choice([0, 0, 0.002, 0.02]))
        except BREAKS:
            self.counts["cut off"] += known.unsure is not None
        except Exception as fault:  # told by the main thread
            self.faults.append(fault)

    def round(self):
        ahead = self.chance.choice([1, 2, 2])
        zone = serving.minute_zone(ahead)
        begin = time.time()
        shift = int(zone.rsplit(":", 1)[1])
        local = datetime.datetime.fromtimestamp(begin + shift + ahead + 0.5, datetime.timezone.utc)
        minute = local.strftime("%H:%M")
        with serving.Controller(self.project, zone) as controller:
            killer = threading.Timer(self.moment(begin, shift), controller.process.kill)
            killer.start()
            try:
                self.change_until_killed(controller, minute, killer)
            finally:
                killer.cancel()

    def moment(self, begin, shift):
        """When to kill: anywhere, or about when the minute begins and its events fire."""
        to_minute = -(begin + shift) % 60
        if self.chance.random() < 0.5 and to_minute < 3:
            return max(0.0, to_minute + self.chance.uniform(0.0, 0.15))
        return self.chance.uniform(0.0, 2.2)

    def change_until_killed(self, controller, minute, killer):
        try:
            controller.until_up()
            held = Held(controller.client())
        except (AssertionError, *BREAKS) as fault:
            if controller.wait(10) != -9:
                raise AssertionError(f"it did not start: {controller.said()}") from fault
            self.counts["killed while starting"] += 1
            return
        compare(self.clients, held)
        self.counts["compared"] += 1
        threads = [threading.Thread(target=self.work, args=(known, controller, minute))
                   for known in self.clients]
        for thread in threads:
            thread.start()
        killer.join()
        for thread in threads:
            thread.join()
        if self.faults:
            raise self.faults[0]
        if controller.wait() != -9:
            raise AssertionError(f"it ended by itself: {controller.said()}")

    def finish(self):
        with serving.Controller(self.project) as controller:
            controller.until_up()
            compare(self.clients, Held(controller.client()))
            if controller.stop() != 0:
                raise AssertionError(controller.said())
        time.sleep(0.5)  # for what was started last
        self.check_lines()
        self.check_journal()

    def check_lines(self):
        database = sqlite3.connect(self.project)
        fired = {tuple(row) for row in database.execute(
            "SELECT event, date FROM journal WHERE kind = 'fired'")}
        twice = database.execute("SELECT event, date, count(*) FROM journal WHERE kind = 'fired' "
                                 "GROUP BY event, date HAVING count(*) > 1").fetchall()
        if twice:
            raise AssertionError(f"fired twice (event, day, times): {twice}")
        acted = collections.Counter()
        for line in self.lines.read_text().splitlines():
            event, planned, _ = line.split(" ")
            day = int(planned[:10].replace("-", ""))
            acted[int(event), day] += 1
            if (int(event), day) not in fired:
                raise AssertionError(f"acted on without a row of the journal: {line}")
        more = {key: count for key, count in acted.items() if count > 1}
        if more:
            raise AssertionError(f"acted on twice: {more}")
        self.counts["acted on"] = len(acted)
        self.counts["fired"] = len(fired)
        self.counts["held"] = database.execute(
            "SELECT count(*) FROM journal WHERE kind = 'held'").fetchone()[0]
        self.counts["missed"] = database.execute(
            "SELECT count(*) FROM journal WHERE kind = 'missed'").fetchone()[0]
        self.counts["caught up"] = database.execute(
            "SELECT count(*) FROM journal WHERE reason = 'caught-up'").fetchone()[0]
        if database.execute("PRAGMA integrity_check").fetchone() != ("ok",):
            raise AssertionError("the project is damaged")
        database.close()

    def check_journal(self):
        """Every change that was acknowledged has its row, and none has one that was not asked."""
        database = sqlite3.connect(self.project)
        rows = collections.Counter(
            (event, reason) for event, reason in database.execute(
                "SELECT event, reason FROM journal WHERE kind = 'change' AND event IS NOT NULL"))
        for known in self.clients:
            for (event, reason), count in known.acknowledged.items():
                if event is None:
                    continue
                most = count if reason == "added" else known.begun[event, reason]
                if not count <= rows[event, reason] <= most:
                    raise AssertionError(f"event {event} was {reason} {count} times (asked for "
                                         f"{most} times), the journal says {rows[event, reason]}")
        if database.execute("SELECT count(*) FROM journal").fetchone()[0] >= 100000:
            raise AssertionError("the journal has dropped rows; give fewer --rounds")
        database.close()


def live(loop, rounds):
    print(f"seed {loop.seed}", flush=True)
    for number in range(1, rounds + 1):
        try:
            loop.round()
        except Exception:
            print(f"round {number} of seed {loop.seed}:", file=sys.stderr)
            raise
        if number % 50 == 0:
            print(f"{number} rounds, {dict(loop.counts)}", flush=True)
    loop.finish()
    return collections.Counter(loop.counts)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--rounds", type=int, default=1000)
    parser.add_argument("--seed", type=int, default=int(time.time()))
    parser.add_argument("--keep", type=pathlib.Path, help="an empty folder; kept")
    options = parser.parse_args()
    counts = collections.Counter()
    with tempfile.TemporaryDirectory() as temporary:
        for begin in range(0, options.rounds, ROUNDS_OF_A_PROJECT):
            folder = (options.keep or pathlib.Path(temporary)) / str(begin)
            folder.mkdir(parents=True, exist_ok=True)
            rounds = min(ROUNDS_OF_A_PROJECT, options.rounds - begin)
            counts += live(Loop(folder, options.seed + begin), rounds)
    print(f"{options.rounds} rounds, {dict(counts)}", flush=True)
    # A loop in which nothing happens proves nothing.
    for what in ("changes", "compared", "cut off", "acted on"):
        if not counts[what]:
            print(f"no {what} in all these rounds", file=sys.stderr)
            return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
