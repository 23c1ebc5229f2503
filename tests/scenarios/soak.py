#!/usr/bin/env python3
"""Writes a scenario of random actions, and plays it if asked.

    soak.py [--seed S] [--actions N] [--output FILE]
    soak.py [--seed S] [--actions N] --program PATH

The same seed gives the same scenario. Actions are of all kinds, with events, conditions and states
that are right, odd or broken; the table stays below a few hundred events and the day that is played
moves on, so that a long scenario is still a likely one. With --program it is played: the program must
accept every line, write one "done" line for each action and nothing but JSON objects, and say nothing
on standard error.
"""

import argparse
import datetime
import json
import os
import random
import subprocess
import sys
import tempfile
import time

INTERFACE_ID = "7C2E51A0-3B9D-4e06-A8F1-9D44B0C7E315"
EPOCH = datetime.datetime(1970, 1, 1)
MOST_EVENTS = 300  # then some are deleted

ODD_NUMBERS = ["0", "-1", "1", "7", "13", "31", "32", "366", "1439", "1440", "1441", "2147483647",
               "-2147483648", "99999999999999999999", "", " 12", "+3", "12abc", "abc", "0x10", "1.5"]
NAMES = ["Porch", "Garden & gate", "<Hall>", "", " ", "Küche", "\U0001f3e0", "a]]>b", "\"quoted\"",
         "hostcore_mediascan_event", "line\nline", "x" * 300]
BROKEN_XML = ["", " ", "event", "<event>", "<event></evnt>", "<event/><event/>", "<event a=1/>",
              "<event>&nbsp;</event>", "<event>&#0;</event>", "<event>\u0001</event>",
              "<!DOCTYPE event><event/>", "<event><![CDATA[x</event>", "<event/>x", "\ufeff<event/>",
              "<event><!-- -- --></event>", "<1/>", "<event>" + "<x>" * 300 + "</x>" * 300 + "</event>"]
COMPARATORS = ["BT", "EQ", "NE", "GT", "GE", "LT", "LE"]


def escape(text):
    return text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")


def element(name, content):
    return f"<{name}>{content}</{name}>"


class Generator:
    """Draws actions one after the other, and knows roughly what the agent holds."""

    def __init__(self, seed):
        self.random = random.Random(seed)
        self.now = int((datetime.datetime(2024, 2, 25, 12) - EPOCH).total_seconds())
        self.events = 0
        self.serial = 0
        self.kinds = [
            (14, self.add_event), (5, self.modify_event), (6, self.delete_event),
            (4, self.strange_command), (6, self.interface), (12, self.tick), (8, self.run),
            (6, self.clock), (3, self.variable), (6, self.request_event), (1, self.request_all),
            (4, self.request_occurrences), (4, self.request_sun), (2, self.strange_request),
            (14, self.condition), (4, self.compare), (1, self.persist), (1, self.query),
            (2, self.host), (1, self.seed_generator), (0.3, self.restart),
        ]

    # Values

    def chance(self, probability):
        return self.random.random() < probability

    def pick(self, values):
        return self.random.choice(values)

    def number(self, low, high):
        return self.pick(ODD_NUMBERS) if self.chance(0.06) else str(self.random.randint(low, high))

    def event_id(self):
        return self.number(0, self.serial + 3)

    def name(self):
        self.serial += 1
        return self.pick(NAMES) if self.chance(0.15) else f"event {self.serial}"

    def today(self):
        return EPOCH + datetime.timedelta(seconds=self.now)

    def date(self, prefix):
        day = self.today() + datetime.timedelta(days=self.random.randint(-40, 40))
        return "".join(element(f"{prefix}_{unit}", self.number(value, value))
                       for unit, value in (("day", day.day), ("month", day.month),
                                           ("year", day.year)) if not self.chance(0.02))

    def start(self):
        content = element("offset", self.number(0, 2))
        content += element("offset_minutes", self.number(0, 1439) if self.chance(0.7)
                           else self.number(-120, 120))
        date = self.date("start")
        if self.chance(0.3):
            date += element("start_period", self.number(0, 5))
            date += element("start_weekday", self.number(1, 7))
        if not self.chance(0.03):
            content += element("start_date", date)
        if self.chance(0.2):
            content += element("randomize", self.number(0, 20))
        return element("start", content)

    def repeat(self):
        if self.chance(0.25):
            return self.pick(["", "", "<repeat/>"])
        content = element("frequency", self.number(0, 4)) + element("rate", self.number(1, 4))
        content += element("daymask", self.number(0, 127))
        if self.chance(0.3):
            content += element("end_date", self.date("end"))
        return element("repeat", content)

    def event(self, event_id=None):
        if self.chance(0.05):
            return self.pick(BROKEN_XML)
        content = "" if event_id is None else element("eventid", event_id)
        content += element("description", escape(self.name()))
        if not self.chance(0.03):
            content += self.start()
        content += self.repeat()
        return element("evnt" if self.chance(0.02) else "event", content)

    # Actions

    def command(self, name, **params):
        return {"do": "command", "name": name, "params": params}

    def request(self, name, **params):
        return {"do": "request", "name": name, "params": params}

    def add_event(self):
        if self.events >= MOST_EVENTS:
            return self.delete_event()
        self.events += 1
        return self.command("ADD_EVENT",
                            EVENT_XML=self.event(self.event_id() if self.chance(0.05) else None))

    def modify_event(self):
        return self.command("MODIFY_EVENT", EVENT_XML=self.event(self.event_id()))

    def delete_event(self):
        self.events = max(0, self.events - 1)
        return self.command("DELETE_EVENT", EVENT_ID=self.event_id())

    def strange_command(self):
        return self.command(self.pick(["add_event", "REBOOT", "", "ADD_EVENT", "DELETE_EVENT"]),
                            **self.pick([{}, {"EVENT_XML": "", "EVENT_ID": ""}, {"X": "é"}]))

    def interface(self):
        call = self.pick(["AddDailyEvent", "AddEveryXDaysEvent", "AddDaysOfWeekEvent",
                          "DoesEventExist", "GetEventIdByDescription", "DeleteEvent", "GetDeviceId"])
        if call == "GetDeviceId":
            return {"do": "interface", "call": call}
        if call == "GetEventIdByDescription":
            args = [self.pick(NAMES) if self.chance(0.5) else f"event {self.serial - 5}"]
        elif call.startswith("Add"):
            args = [self.name(), self.random.randint(0, 30), self.random.randint(0, 1500)]
            if self.chance(0.05):
                args[1] = self.pick([0, -1, 4294967295, 71582789])
        else:
            args = [self.random.randint(0, self.serial + 3)]
        return {"do": "interface", "call": call, "args": args}

    def tick(self):
        action = {"do": "tick"}
        if self.chance(0.1):
            action["timer"] = self.random.randint(0, 5)
        return action

    def run(self):
        step = self.pick([1, 1, 60, 600, 3600])
        self.now += step * self.random.randint(1, 40)
        return {"do": "run", "until": self.now, "step": step}

    def clock(self):
        self.now += self.pick([0, 1, 59, 3599, 86400, self.random.randint(-90000, 200000)])
        if self.chance(0.01):  # another season
            self.now += self.random.randint(-40, 80) * 86400
        at = self.now
        if self.chance(0.3):
            at = self.today().strftime("%Y-%m-%dT%H:%M:%S")
        return {"do": "clock", "at": at}

    def variable(self):
        value = self.pick(["0", "48.2", "-33.9", "70", "-89.9", "180", "1e300", "nan", "-inf", "abc",
                           "", " 16.4 degrees", str(self.random.uniform(-180, 180))])
        return {"do": "variable", "device": self.pick([1, 1, 1, 2]),
                "variable": self.pick([1001, 1002, 1003]), "value": value}

    def request_event(self):
        return self.request("GET_EVENT", EVENT_ID=self.event_id())

    def request_all(self):
        return self.request("GET_ALL_EVENTS")

    def request_occurrences(self):
        first = self.today() + datetime.timedelta(days=self.random.randint(-10, 10))
        last = first + datetime.timedelta(days=self.random.randint(-1, 6))
        params = {}
        for side, day in (("FROM", first), ("TO", last)):
            params.update({f"{side}_YEAR": str(day.year), f"{side}_MONTH": str(day.month),
                           f"{side}_DAY": str(day.day)})
        if self.chance(0.05):
            params.pop(self.pick(["TO_YEAR", "FROM_DAY", "TO_MONTH"]))
        return self.request("GET_EVENT_OCCURENCES", **params)

    def request_sun(self):
        return self.request("GET_SUNRISE_SUNSET", DAY=self.number(1, 31), MONTH=self.number(1, 12),
                            YEAR=self.number(2020, 2030))

    def strange_request(self):
        return self.request(self.pick(["", "get_event", "GET_EVENT_OCCURRENCES", "ADD_EVENT"]))

    def condition_xml(self, name):
        if self.chance(0.06):
            return self.pick(BROKEN_XML)
        comparator = self.pick(COMPARATORS)
        if self.chance(0.05):
            comparator = self.pick(["", "eq", "XX"])
        content = element("comparator", comparator)
        listed = "".join(element("v", self.number(1, 31)) for _ in range(self.random.randint(0, 3)))
        if name == "IF_TIME":
            content += element("comp_time", self.number(0, 1440))
            content += element("offset_from", self.number(0, 1440))
            content += element("offset_to", self.number(0, 2880))
            if self.chance(0.5):
                content += element("type", self.pick(["Day", "Night", "Within", ""]))
                content += element("offset_type", self.pick(["1", "2", ""]))
                content += element("offset", self.pick(["Before", "After", ""]))
                content += element("offset_minutes", self.number(-90, 90))
        elif name == "IF_TODAY":
            mode = element("day_name", self.pick(["Day", "DayNum", "Day", "Week"]))
            content += element("day_current", mode + element("day_names", listed) +
                               element("cur_days", listed))
            content += element("day_between", mode + "".join(
                element(key, self.number(1, 31))
                for key in ("dayname_from", "dayname_to", "day_from", "day_to")))
        elif name == "IF_DATE":
            content += element("date_current", "".join(
                element(f"date_curr_{key}", self.number(low, high))
                for key, low, high in (("dd", 1, 31), ("mm", 1, 12), ("yy", 2023, 2026))))
            content += element("date_between", "".join(
                element(f"date_{side}_{key}", self.number(low, high)) for side in ("from", "to")
                for key, low, high in (("dd", 1, 31), ("mm", 1, 12), ("yy", 2023, 2026))))
        elif name == "IF_MONTH":
            content += element("month_current", element("month_names", listed))
            content += element("month_between", element("month_from", self.number(1, 12)) +
                               element("month_to", self.number(1, 12)))
        elif name == "IF_YEAR":
            content += element("year_current", element("year_curr", self.number(2023, 2026)))
            content += element("year_between", element("year_from", self.number(2023, 2026)) +
                               element("year_to", self.number(2023, 2026)))
        return element("cond", content)

    def condition(self):
        name = self.pick(["IF_TIME", "IF_TODAY", "IF_DATE", "IF_MONTH", "IF_YEAR", "IF_LEAP"])
        key = "TIME_XML" if self.chance(0.1) else "CONDITIONAL_XML"
        return {"do": "condition", "name": "IF_SNOW" if self.chance(0.02) else name,
                "params": {key: self.condition_xml(name)}}

    def compare(self):
        call = self.pick(["CompareClockTime", "CompareToday", "CompareDate", "CompareMonth",
                          "CompareYear", "CompareLeap", "CompareAstroClockTime"])
        if call == "CompareLeap":
            return {"do": "compare", "call": call}
        if call == "CompareAstroClockTime":
            return {"do": "compare", "call": call,
                    "args": [self.now % 2147483647, self.random.uniform(-90, 90),
                             self.random.uniform(-180, 180)]}
        low = self.now % 2147483647 if call == "CompareClockTime" else self.random.randint(-1, 31)
        return {"do": "compare", "call": call, "args": [low, low + self.random.randint(-2, 2)]}

    def persist(self):
        return {"do": "persist"}

    def query(self):
        return {"do": "query", "iid": self.pick([INTERFACE_ID, INTERFACE_ID.lower(), ""])}

    def host(self):
        call, result = self.pick([("RegisterBinding", 0), ("RegisterBinding", -1),
                                  ("CreateBindMessage", None), ("CreateBindMessage", True),
                                  ("RegisterQuery", 0), ("RegisterQuery", 1)])
        if self.chance(0.3):
            call, result = "VmRegisterListener", [{"device": 1, "variable": 1001, "value": "48.2"},
                                                  {"device": 1, "variable": 1002, "value": "16.4"}]
        return {"do": "host", "call": call, "result": result}

    def seed_generator(self):
        return {"do": "seed", "value": self.random.randint(0, 1000)}

    def state(self):
        events = "".join(event for event in (self.event(str(self.random.randint(0, 40)))
                                             for _ in range(self.random.randint(0, 30)))
                         if event not in BROKEN_XML)
        counter = element("current_id", self.number(0, 60))
        return self.pick([element("event_data", counter + element("events", events)),
                          element("events", events), element("schedule", events), None])

    def restart(self):
        self.events = 30
        return [{"do": "destroy"}, {"do": "create"},
                {"do": "initialize", "persisted": self.state()}]

    def actions(self, count):
        yield {"do": "clock", "at": self.now}
        yield {"do": "create"}
        yield {"do": "initialize"}
        made = 3
        weights = [weight for weight, _ in self.kinds]
        makers = [maker for _, maker in self.kinds]
        while made < count:
            action = self.random.choices(makers, weights)[0]()
            for single in action if isinstance(action, list) else [action]:
                made += 1
                yield single


def write(out, seed, count):
    for action in Generator(seed).actions(count):
        out.write(json.dumps(action, ensure_ascii=False) + "\n")


def check_transcript(transcript, scenario):
    """None, or what is wrong."""
    with open(scenario, encoding="utf-8") as lines:
        wanted = [json.loads(line)["do"] for line in lines]
    done = []
    with open(transcript, encoding="utf-8") as lines:
        for number, text in enumerate(lines, 1):
            line = json.loads(text)
            if ("call" in line) == ("done" in line):
                return f"transcript line {number} is neither a call nor an action: {text}"
            if "done" in line:
                done.append(line["done"])
    return None if done == wanted else f"{len(done)} of {len(wanted)} actions were done"


def play(program, seed, count):
    with tempfile.TemporaryDirectory() as folder:
        scenario = os.path.join(folder, "soak.jsonl")
        transcript = os.path.join(folder, "soak.transcript.jsonl")
        with open(scenario, "w", encoding="utf-8") as out:
            write(out, seed, count)
        begun = time.monotonic()
        with open(transcript, "wb") as out:
            result = subprocess.run([program, "play", scenario], stdout=out, stderr=subprocess.PIPE,
                                    check=False)
        seconds = time.monotonic() - begun
        if result.returncode != 0 or result.stderr:
            print(f"exit status {result.returncode}: {result.stderr.decode('utf-8', 'replace')}")
            return 1
        wrong = check_transcript(transcript, scenario)
        print(wrong or f"{count} actions of seed {seed} played in {seconds:.1f} s, "
              f"{os.path.getsize(transcript)} bytes of transcript")
        return 1 if wrong else 0


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--seed", type=int, default=1, help="which scenario (default 1)")
    parser.add_argument("--actions", type=int, default=20000, help="how long (default 20000)")
    parser.add_argument("--output", help="the file to write; standard output without it")
    parser.add_argument("--program", help="the program vexalink: play the scenario instead")
    arguments = parser.parse_args()
    if arguments.program:
        return play(arguments.program, arguments.seed, arguments.actions)
    if arguments.output:
        with open(arguments.output, "w", encoding="utf-8") as out:
            write(out, arguments.seed, arguments.actions)
    else:
        write(sys.stdout, arguments.seed, arguments.actions)
    return 0


if __name__ == "__main__":
    sys.exit(main())
