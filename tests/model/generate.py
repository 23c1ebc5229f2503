#!/usr/bin/env python3
"""Writes random scenarios: nasty, readable, and the same for the same seed.

    generate.py --seed N [--count K] [--zone Z] [--out DIR]

Without --out the scenarios go to standard output. The first line of each is `# TZ=<zone>`. Spans and
ranges are chosen so that the model needs less than about two seconds for one scenario.
"""

import argparse
import io
import json
import os
import random
import sys
from datetime import datetime, timedelta
from xml.sax.saxutils import escape

# Zones with days on which their clocks change (or do something else that is odd).
ZONES = {
    "UTC": ["2024-02-29", "1970-01-01", "2038-01-18", "2000-02-29"],
    "America/New_York": ["2024-03-10", "2024-11-03", "2023-11-05", "2006-04-02", "2037-11-01"],
    "Europe/Berlin": ["2024-03-31", "2024-10-27", "2023-03-26", "1980-04-06"],
    "Australia/Lord_Howe": ["2024-04-07", "2024-10-06", "2023-10-01"],
    "Asia/Kolkata": ["2024-06-21", "2024-12-31"],
    "America/Sao_Paulo": ["2018-02-18", "2018-11-04", "2017-10-15", "2019-02-17"],
    "Asia/Beirut": ["2024-03-31", "2024-10-27", "2022-03-27", "2023-03-30"],
    "Africa/Casablanca": ["2024-03-10", "2024-04-14", "2023-03-19", "2018-10-28"],
    "Pacific/Apia": ["2021-04-04", "2020-09-27", "2024-02-29"],
    "Europe/Dublin": ["2024-03-31", "2024-10-27", "1971-10-31"],
    "Pacific/Chatham": ["2024-04-07", "2024-09-29"],
    "America/St_Johns": ["2024-03-10", "2024-11-03", "2006-10-29", "2010-03-14"],
    "Antarctica/Troll": ["2024-03-31", "2024-10-27"],
    "EST5EDT,M3.2.0,M11.1.0": ["2024-03-10", "2024-11-03", "2039-03-13"],
    "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0": ["2024-04-07", "2024-10-06", "2040-10-07"],
    "UTC0": ["2024-02-28", "2100-02-28"],
    "CET-1CEST,M3.5.0,M10.5.0/3": ["2024-03-31", "2024-10-27"],
}

PLACES = [("0", "0"), ("52.5", "13.4"), ("40.7", "-74.0"), ("-33.9", "151.2"), ("65.73", "25"), ("66.4", "25.7"),
          ("66.5", "-20"), ("70", "25"), ("-70", "0"), ("-66.4", "110"), ("78.2", "15.6"), ("85", "175"),
          ("-85", "-175"), ("89", "-179"), ("-90", "180"), ("66.0", "-170"), ("28.6", "77.2"), ("-17.5", "-149.6"),
          ("-43.9", "-176.5"), ("64.1", "-21.9"), ("-31.55", "159.08"), ("68.4", "17.4")]
ODD_VALUES = ["abc", "", " 47.1x", "1e400", "-1e300", "nan", "inf", "0x1p5", "+12.5", "47,1", "1e1"]

NAMES = ["Porch", "porch", "Garden", "Käse & <Brot>", "", "hostcore_mediascan_event", "日本 🌅", " spaced  out ",
         'a "quoted" one', "Ev]]>il", "Alarm", "Blinds", "Pump", "Lamp 1", "Lamp 2", "Lamp 3", "x" * 120]

ODD_INTEGERS = ["", "abc", " 12", "12abc", "+5", "-1", "007", "0", "99999999999999999999", "-99999999999999999999",
                "4294967296", "4294967298", "2147483647", "1.9", "0x10", "\n3\n", "- 4", "1000000"]

INTERFACE_ID = "7C2E51A0-3B9D-4e06-A8F1-9D44B0C7E315"


def tag(name, *content):
    inner = "".join(content)
    return f"<{name}>{inner}</{name}>" if inner else f"<{name}/>"


class Scenario:
    """One scenario being written; `clock` follows where the scenario's clock stands, as local time."""

    def __init__(self, seed, zone=None):
        self.rng = random.Random(seed)
        self.seed = seed
        self.zone = zone or self.rng.choice(list(ZONES))
        self.odd_days = [datetime.fromisoformat(day) for day in ZONES.get(zone or self.zone, ZONES["UTC"])]
        self.lines = [f"# TZ={self.zone}"]
        self.clock = datetime(1970, 1, 1)
        self.far_end_dates = False  # then no listing may reach far
        self.ticks_left = 25_000

    # Helpers ------------------------------------------------------------------------------------

    def chance(self, probability):
        return self.rng.random() < probability

    def emit(self, **action):
        self.lines.append(json.dumps(action, ensure_ascii=False))

    def note(self, text):
        self.lines.append("# " + text)

    def set_clock(self, moment):
        self.clock = moment
        self.emit(do="clock", at=moment.isoformat(timespec="seconds"))

    def any_moment(self):
        day = self.rng.choice(self.odd_days) + timedelta(days=self.rng.choice([0, 0, 0, -1, 1, -8, 20, 150, -200]))
        return day + timedelta(seconds=self.rng.choice([0, 1, 86399, self.rng.randrange(86400), 3600 * 6]))

    def a_day_near(self, moment, spread=40):
        return moment + timedelta(days=self.rng.randint(-spread, spread))

    # Event elements -----------------------------------------------------------------------------

    def integer(self, *usual):
        """One of the usual numbers, now and then a very odd one."""
        return self.rng.choice(ODD_INTEGERS) if self.chance(0.03) else str(self.rng.choice(usual))

    def leaf(self, name, text):
        """A leaf; now and then with comments, instructions, CDATA, references or children in it."""
        text = escape(text)
        if self.chance(0.95):
            return tag(name, text)
        middle = len(text) // 2 if text.isalnum() else 0
        return self.rng.choice([
            tag(name, text[:middle], "<!-- c -->", text[middle:]),
            tag(name, text, "<?pi x?>"),
            tag(name, f"<![CDATA[{text}]]>") if text.isalnum() else tag(name, text),
            tag(name, "".join(f"&#{ord(c)};" for c in text)) if text.isalnum() else tag(name, text),
            tag(name, text[:middle], "<b>9</b>", text[middle:]),
            tag(name, " ", text, " "),
            tag(name, text, "&#13;&#9;&#10;x"),
            tag(name, text) + tag(name, "7"),
            tag(name, "7") + tag(name, text),
            tag(name + "x", text),
            "",
        ])

    def order(self, parts):
        if self.chance(0.05):
            self.rng.shuffle(parts)
        if self.chance(0.04) and parts:
            parts.pop(self.rng.randrange(len(parts)))
        if self.chance(0.05):
            parts.insert(self.rng.randint(0, len(parts)), self.rng.choice(["<!--x-->", "<?p?>", "<other>5</other>", "\n  ", "5"]))
        return "".join(parts)

    def group(self, name, parts):
        if self.chance(0.02):
            return self.rng.choice(["", f"<{name}/>", f"<{name}> \n</{name}>", f"<{name}>x</{name}>",
                                    f"<{name}><!--nothing--></{name}>"])
        return tag(name, self.order(parts))

    def start_date(self):
        pick = self.rng.random()
        if pick < 0.7:
            day = self.a_day_near(self.clock)
        elif pick < 0.85:
            day = self.clock
        else:
            day = self.a_day_near(self.rng.choice(self.odd_days), 3)
        number, month, year = day.day, day.month, day.year
        if self.chance(0.12):
            number = self.rng.choice([0, 29, 30, 31, 32, -5, 400])
        if self.chance(0.05):
            month = self.rng.choice([0, 13, -1, 2, 25])
        if self.chance(0.04):
            year = self.rng.choice([0, -1, 1900, 1969, 1970, 2037, 2038, 2039, 9999])
        period = self.rng.choice([0] * 8 + [1, 2, 3, 4, 5, 5] + ([6, -1, 7, 100] if self.chance(0.2) else []))
        weekday = self.rng.choice([0, 8, -1]) if self.chance(0.06) else self.rng.randint(1, 7)
        return self.group("start_date", [
            self.leaf("start_day", self.integer(number)), self.leaf("start_month", self.integer(month)),
            self.leaf("start_year", self.integer(year)), self.leaf("start_period", self.integer(period)),
            self.leaf("start_weekday", self.integer(weekday))])

    def minutes(self, offset):
        if offset in (1, 2):
            return self.rng.choice([0, 0, -30, 30, 15, -90, 600, -2000, 3])
        now = self.clock.hour * 60 + self.clock.minute
        return self.rng.choice([now, now + 1, now + 2, now + 5, now - 1, now + 60, 0, 1, 90, 120, 125, 150, 420, 720,
                                1080, 1439, 1440, 1441, 1500, 2880, -1, -60, 100000, -100000]
                               if self.chance(0.6) else [self.rng.randrange(1440)])

    def start(self):
        offset = self.rng.choice([0] * 6 + [1, 2, 1, 2] + ([3, -1, 7] if self.chance(0.2) else []))
        randomize = self.rng.choice([0] * 6 + [5, 1, 30, 700, -3])
        return self.group("start", [
            self.leaf("offset", self.integer(offset)),
            self.leaf("offset_minutes", self.integer(self.minutes(offset))),
            self.start_date(),
            self.leaf("randomize", self.integer(randomize))])

    def end_date(self):
        pick = self.rng.random()
        if pick < 0.45:
            return ""
        day = self.a_day_near(self.clock, 90)
        year = day.year
        if pick > 0.9:
            year = self.rng.choice([2037, 2038, 2039, 9999, 2100, 1970, 0])
            self.far_end_dates = self.far_end_dates or year > 2038
        number = self.rng.choice([0, 31, 32]) if self.chance(0.08) else day.day
        month = self.rng.choice([0, 13]) if self.chance(0.04) else day.month
        # No odd numbers for the year: an end in year two thousand million makes every listing endless.
        return self.group("end_date", [
            self.leaf("end_month", self.integer(month)), self.leaf("end_day", self.integer(number)),
            self.leaf("end_year", str(year))])

    def repeat(self):
        if self.chance(0.15):
            return ""
        frequency = self.rng.choice([1, 1, 2, 2, 2, 3, 3, 4, 4] + ([0, 5, -1, 77] if self.chance(0.3) else []))
        rate = self.rng.choice([1, 1, 1, 1, 2, 2, 3, 4, 7, 12] + ([0, -1, -2, 100, 1000000, 2000000000, 2147483647]
                                                               if self.chance(0.35) else []))
        mask = self.rng.choice([0x22, 0x7f, 0x41, 1, 64, 0, self.rng.randrange(128), self.rng.randrange(128), 128, 4294967295])
        return self.group("repeat", [
            self.leaf("frequency", self.integer(frequency)), self.leaf("rate", self.integer(rate)),
            self.leaf("daymask", self.integer(mask)), self.end_date()])

    def event_xml(self, event_id=None, name=None):
        parts = []
        if event_id is not None:
            parts.append(self.leaf("eventid", str(event_id)))
            if self.chance(0.4):
                parts.append(tag("buttonbindingid", str(self.rng.randint(0, 50))))
        parts.append(self.leaf("description", self.rng.choice(NAMES) if name is None else name))
        parts.append(self.start())
        if self.chance(0.1):
            parts.append(tag("next_occurence", tag("year", "1999")))
        parts.append(self.repeat())
        xml = tag("event", self.order(parts))
        if self.chance(0.02):
            return self.broken_xml(xml)
        if self.chance(0.03):
            return self.rng.choice(['<?xml version="1.0"?>', '<?xml version="1.0" encoding="ISO-8859-1"?>',
                                    "<!-- before -->", "\n"]) + xml if not xml.startswith("<?") else xml
        return xml

    def broken_xml(self, xml):
        depth = self.rng.choice([255, 256, 257, 300])
        return self.rng.choice([
            "", "   ", xml[:-3], xml + "<event/>", xml.replace("<event>", "<Event>").replace("</event>", "</Event>"),
            xml.replace("<event>", "<events>").replace("</event>", "</events>"), "<!DOCTYPE event>" + xml,
            xml.replace("</event>", "&nbsp;</event>"), "text", "<event/>", "<event></event>", "<event attr='1'/>",
            xml.replace("</event>", "<a>" * depth + "</a>" * depth + "</event>"),
            "<e:event xmlns:e='u'>" + xml + "</e:event>", '<event xmlns="urn:x"' + xml[6:]])

    def an_id(self):
        return self.rng.choice([1, 1, 2, 2, 3, 4, 5, 6, 7, 42] + ([0, 99, 1000000, 4294967297] if self.chance(0.3) else []))

    # Steps --------------------------------------------------------------------------------------

    def step_add(self):
        self.emit(do="command", name="ADD_EVENT",
                  params={"EVENT_XML": self.event_xml(self.an_id() if self.chance(0.15) else None)})

    def step_modify(self):
        self.emit(do="command", name="MODIFY_EVENT",
                  params={"EVENT_XML": self.event_xml(self.an_id() if self.chance(0.95) else None)})

    def step_delete(self):
        text = str(self.an_id())
        if self.chance(0.2):
            text = self.rng.choice([text + "abc", " " + text, "abc", "-1", "", "99999999999999999999", "+2"])
        self.emit(do="command", name="DELETE_EVENT", params={"EVENT_ID": text} if self.chance(0.95) else {})

    def step_odd_command(self):
        name = self.rng.choice(["add_event", "ADD_EVENT", "MODIFY_EVENT", "DELETE_EVENT", "", "OTHER", "ADD_EVENT "])
        self.emit(do="command", name=name, params=self.rng.choice([{}, {"EVENT_XML": ""}, {"X": "1"}]))

    def step_get(self):
        if self.chance(0.4):
            self.emit(do="request", name="GET_ALL_EVENTS")
        else:
            self.emit(do="request", name="GET_EVENT", params={"EVENT_ID": str(self.an_id())})

    def step_odd_request(self):
        self.emit(do="request", name=self.rng.choice(["get_event", "GET_EVENT", "GET_SUNRISE_SUNSET", "NOPE", ""]))

    def step_occurrences(self):
        first = self.a_day_near(self.clock if self.chance(0.7) else self.rng.choice(self.odd_days), 10)
        length = self.rng.choice([0, 1, 3, 8, 15, 35, 35, 70, 200, -1, -20])
        if self.chance(0.08):
            length = 800
        last = first + timedelta(days=length)
        params = {"FROM_YEAR": str(first.year), "FROM_MONTH": str(first.month), "FROM_DAY": str(first.day),
                  "TO_YEAR": str(last.year), "TO_MONTH": str(last.month), "TO_DAY": str(last.day)}
        if self.chance(0.05):
            params["FROM_" + self.rng.choice(["DAY", "MONTH"])] = self.rng.choice(["0", "-3", "15x", "40", ""])
        if self.chance(0.04):
            del params["FROM_" + self.rng.choice(["DAY", "MONTH"])]
        if self.chance(0.04) and not self.far_end_dates:
            params["TO_YEAR"] = self.rng.choice(["9999", "2040", "99999999"])
        if self.chance(0.03):
            params["FROM_YEAR"] = str(first.year - 20)
        if self.chance(0.02):
            params.update(FROM_YEAR="-1", TO_YEAR="0")
        self.emit(do="request", name="GET_EVENT_OCCURENCES", params=params)

    def step_sun_request(self):
        day = self.a_day_near(self.clock, 200)
        params = {"DAY": str(day.day), "MONTH": str(day.month), "YEAR": str(day.year)}
        if self.chance(0.1):
            params[self.rng.choice(list(params))] = self.rng.choice(["0", "-1", "366", "abc", "13", ""])
        self.emit(do="request", name="GET_SUNRISE_SUNSET", params=params)

    def step_place(self):
        latitude, longitude = self.rng.choice(PLACES)
        if self.chance(0.1):
            latitude = self.rng.choice(ODD_VALUES)
        if self.chance(0.07):
            longitude = self.rng.choice(ODD_VALUES)
        self.emit(do="variable", device=1, variable=1001, value=latitude)
        if self.chance(0.9):
            self.emit(do="variable", device=1, variable=1002, value=longitude)
        if self.chance(0.2):
            self.emit(do="variable", device=self.rng.choice([1, 2]), variable=self.rng.choice([1000, 1001, 1003]), value="12")

    def step_tick(self):
        if self.chance(0.2):
            self.emit(do="tick", timer=self.rng.choice([0, 1, 2, 3, 99]))
        else:
            self.emit(do="tick")

    def step_run(self):
        step, longest = self.rng.choice([(1, 300), (1, 3600), (7, 7200), (60, 86400), (60, 2 * 86400), (600, 5 * 86400),
                                         (3600, 30 * 86400), (7200, 200 * 86400), (86400, 500 * 86400), (90000, 86400 * 40)])
        seconds = self.rng.choice([longest, self.rng.randint(1, longest), self.rng.randint(1, min(longest, 300))])
        if seconds // step > self.ticks_left:
            return
        self.ticks_left -= seconds // step
        self.clock += timedelta(seconds=seconds)
        action = {"do": "run", "until": self.clock.isoformat(timespec="seconds")}
        if step != 1 or self.chance(0.3):
            action["step"] = step
        self.emit(**action)

    def step_clock(self):
        pick = self.rng.random()
        if pick < 0.35:
            self.set_clock(self.clock + timedelta(seconds=self.rng.choice([1, 59, 3600, 86400, 31 * 86400])))
        elif pick < 0.6:
            self.note("the clock is set back")
            self.set_clock(self.clock - timedelta(days=self.rng.choice([0, 1, 5, 20, 40, 366]), seconds=self.rng.choice([1, 3600])))
        elif pick < 0.9:
            self.set_clock(self.any_moment())
        else:
            self.clock = self.any_moment()
            self.emit(do="clock", at=int((self.clock - datetime(1970, 1, 1)).total_seconds()))
        if self.chance(0.7):
            self.emit(do="tick")

    def step_broken_clock(self):
        """A clock so far ahead that no local time exists; what falls back to 0 then shows."""
        self.note("no local time exists at this instant")
        self.emit(do="clock", at=self.rng.choice([10**17, -10**17]))
        for _ in range(self.rng.randint(1, 5)):
            self.rng.choice([self.step_condition, self.step_compare, self.step_tick])()
        self.set_clock(self.clock)

    def step_midnight(self):
        """The seconds around the next midnight."""
        midnight = (self.clock + timedelta(days=1)).replace(hour=0, minute=0, second=0)
        self.set_clock(midnight - timedelta(seconds=self.rng.choice([2, 30, 3600])))
        self.clock = midnight + timedelta(seconds=self.rng.choice([0, 1, 5, 3600]))
        self.ticks_left -= 7200
        self.emit(do="run", until=self.clock.isoformat(timespec="seconds"))

    def step_clock_change_night(self):
        """A night in which the clocks change (or a plain one)."""
        day = self.rng.choice(self.odd_days)
        self.note("a night over " + day.date().isoformat())
        self.set_clock(day - timedelta(hours=self.rng.choice([1, 3, 26])))
        if self.chance(0.6):
            self.step_add()
        if self.chance(0.6):
            self.step_add()
        self.clock = day + timedelta(hours=self.rng.choice([4, 8, 30]))
        self.ticks_left -= 2000
        self.emit(do="run", until=self.clock.isoformat(timespec="seconds"), step=self.rng.choice([60, 97, 300]))

    def step_interface(self):
        odd = [0, 1, 2, 5, 7, 30, 59, 60, 127, 450, 1439, 1440] + ([100000, 71582789, 2147483647, 4294967295]
                                                                  if self.chance(0.25) else [])
        name = self.rng.choice(NAMES)
        pick = self.rng.randrange(7)
        if pick == 0:
            self.emit(do="interface", call="AddDailyEvent", args=[name, self.rng.choice([0, 6, 7, 23, 24] + odd[-1:]), self.rng.choice(odd)])
        elif pick == 1:
            self.emit(do="interface", call="AddEveryXDaysEvent", args=[name, self.rng.choice(odd), self.rng.choice(odd)])
        elif pick == 2:
            self.emit(do="interface", call="AddDaysOfWeekEvent", args=[name, self.rng.choice(odd), self.rng.choice(odd)])
        elif pick == 3:
            self.emit(do="interface", call="DoesEventExist", args=[self.an_id()])
        elif pick == 4:
            self.emit(do="interface", call="GetEventIdByDescription", args=[name])
        elif pick == 5:
            self.emit(do="interface", call="DeleteEvent", args=[self.an_id()])
        else:
            self.emit(do="interface", call="GetDeviceId", args=[])

    def step_query(self):
        self.emit(do="query", iid=self.rng.choice([INTERFACE_ID, INTERFACE_ID.lower(), "", INTERFACE_ID + " "]))

    def step_persist(self):
        self.emit(do="persist")

    def step_seed(self):
        self.emit(do="seed", value=self.rng.choice([0, 1, 42, self.rng.randrange(2**31), 4294967295]))

    def step_host(self):
        pick = self.rng.randrange(4)
        if pick == 0:
            self.emit(do="host", call="RegisterBinding", result=self.rng.choice([0, -1, 5, -2147483648]))
        elif pick == 1:
            self.emit(do="host", call="RegisterQuery", result=self.rng.choice([0, 1, 2, -1]))
        elif pick == 2:
            self.emit(do="host", call="CreateBindMessage", result=self.rng.choice([None, True]))
        else:
            self.emit(do="host", call="VmRegisterListener", result=self.listener_values())

    def listener_values(self):
        latitude, longitude = self.rng.choice(PLACES)
        values = [{"device": 1, "variable": 1001, "value": latitude}, {"device": 1, "variable": 1002, "value": longitude},
                  {"device": 2, "variable": 1001, "value": "9"}, {"device": 1, "variable": 1001, "value": "abc"}]
        return values[:self.rng.randint(0, 4)]

    def step_restart(self):
        self.emit(do="destroy")
        if self.chance(0.3):
            self.step_host()
        self.emit(do="create")
        if self.chance(0.15):
            self.step_interface()
            self.emit(do="tick")
        if self.chance(0.9):
            self.initialize()

    def step_initialize_again(self):
        self.initialize()

    # Conditions ---------------------------------------------------------------------------------

    def near(self, value, spread=2):
        return str(value + self.rng.randint(-spread, spread)) if self.chance(0.93) else self.integer(0)

    def list_of(self, *values):
        return [self.leaf(self.rng.choice(["v", "entry", "day"]), self.near(self.rng.choice(values), 1))
                for _ in range(self.rng.choice([0, 1, 1, 2, 3]))]

    def step_condition(self):
        kind = self.rng.choice(["IF_TIME", "IF_TIME", "IF_TIME", "IF_TODAY", "IF_DATE", "IF_MONTH", "IF_YEAR", "IF_LEAP"])
        comparator = self.rng.choice(["BT", "BT", "EQ", "NE", "GT", "GE", "LT", "LE"])
        if self.chance(0.06):
            comparator = self.rng.choice(["", "eq", "XX", "BT "])
        parts = [self.leaf("comparator", comparator)]
        parts += getattr(self, "condition_" + kind.lower())()
        xml = tag(self.rng.choice(["conditional", "x", "event"]), self.order(parts))
        if self.chance(0.04):
            xml = self.broken_xml(xml)
        params = {"CONDITIONAL_XML": xml}
        if self.chance(0.1):
            params = self.rng.choice([{"TIME_XML": xml}, {"CONDITIONAL_XML": "", "TIME_XML": xml}, {},
                                      {"CONDITIONAL_XML": " ", "TIME_XML": xml}, {"CONDITIONAL_XML": xml, "TIME_XML": "<x"}])
        if self.chance(0.03):
            kind = self.rng.choice(["if_time", "IF_NOTHING", ""])
        self.emit(do="condition", name=kind, params=params)

    def condition_if_time(self):
        now = self.clock.hour * 60 + self.clock.minute
        near = lambda: self.rng.choice([self.near(now, 1), self.near(now, 1), self.near(now, 300), "0", "1440", "1441", "-5", "1560", "3000", "1"])
        parts = [self.leaf("comp_time", near()), self.leaf("offset_from", near()), self.leaf("offset_to", near())]
        if self.chance(0.6):
            parts.append(self.leaf("type", self.rng.choice(["Day", "Night", "Within", "Within", "Within", "", "day"])))
            if self.chance(0.9):
                parts.append(self.leaf("offset_type", self.rng.choice(["1", "2", "2", "x", "01", "", " "])))
            if self.chance(0.9):
                parts.append(self.leaf("offset", self.rng.choice(["Before", "After", "before", "", " "])))
            parts.append(self.leaf("offset_minutes", self.integer(30, 300, 600, 720, -60, 0, 1440)))
        return parts

    def condition_if_today(self):
        weekday, day = self.clock.isoweekday() % 7 + 1, self.clock.day
        mode = self.rng.choice(["Day", "Day", "DayNum", "DayNum", "", "daynum"])
        between = [self.leaf("day_name", mode), self.leaf("dayname_from", self.near(weekday)), self.leaf("dayname_to", self.near(weekday)),
                   self.leaf("day_from", self.near(day)), self.leaf("day_to", self.near(day))]
        current = [self.leaf("day_name", mode), self.group("day_names", self.list_of(weekday, 1, 7)),
                   self.group("cur_days", self.list_of(day, 31))]
        return [self.group("day_between", between), self.group("day_current", current)]

    def date_leaves(self, prefix):
        day = self.a_day_near(self.clock, self.rng.choice([0, 1, 400]))
        return [self.leaf(prefix + "dd", self.integer(day.day, day.day, day.day, 0, 32)), self.leaf(prefix + "mm", self.integer(day.month)),
                self.leaf(prefix + "yy", self.integer(day.year))]

    def condition_if_date(self):
        return [self.group("date_between", self.date_leaves("date_from_") + self.date_leaves("date_to_")),
                self.group("date_current", self.date_leaves("date_curr_"))]

    def condition_if_month(self):
        month = self.clock.month
        return [self.group("month_between", [self.leaf("month_from", self.near(month, 3)), self.leaf("month_to", self.near(month, 3))]),
                self.group("month_current", [self.group("month_names", self.list_of(month, 1, 12))])]

    def condition_if_year(self):
        year = self.clock.year
        current = self.group("year_current", [self.leaf("year_curr", self.near(year, 1))])
        if self.chance(0.15):
            current = self.rng.choice([f'<year_current year_curr="{year}"/>', f'<year_current year_curr="{year}"><year_curr/></year_current>',
                                       f'<year_current year_curr=" {year}x">{year}</year_current>'])
        return [self.group("year_between", [self.leaf("year_from", self.near(year)), self.leaf("year_to", self.near(year))]), current]

    def condition_if_leap(self):
        return []

    def step_compare(self):
        now = int((self.clock - datetime(1970, 1, 1)).total_seconds())
        name = self.rng.choice(["CompareClockTime", "CompareToday", "CompareDate", "CompareMonth", "CompareYear", "CompareLeap",
                                "CompareAstroClockTime", "CompareAstroClockTime"])
        centre, spread = {"CompareClockTime": (now, 90000), "CompareToday": (self.clock.isoweekday() % 7 + 1, 2),
                          "CompareDate": (self.clock.day, 3), "CompareMonth": (self.clock.month, 2),
                          "CompareYear": (self.clock.year, 2)}.get(name, (0, 0))
        arguments = [centre + self.rng.randint(-spread, spread) for _ in range(2)]
        if name == "CompareLeap":
            arguments = []
        if name == "CompareAstroClockTime":
            latitude, longitude = self.rng.choice(PLACES)
            arguments = [now + self.rng.randint(-50000, 50000), float(latitude), float(longitude)]
        if all(-2**31 < argument < 2**31 for argument in arguments):
            self.emit(do="compare", call=name, args=arguments)

    # Whole scenarios ----------------------------------------------------------------------------

    def persisted(self):
        events = []
        for number in range(self.rng.randint(0, 6)):
            event_id = number + 1 if self.chance(0.8) else self.an_id()
            xml = self.event_xml(event_id, None if self.chance(0.5) else f"Stored {number}")
            # What is no XML on its own cannot stand inside.
            if xml.startswith("<event") and "<!DOCTYPE" not in xml and self.is_well_formed(xml):
                if self.chance(0.05):
                    xml = self.rng.choice(["<evt>" + xml[7:-8] + "</evt>", "<!-- nothing -->", "<event/>", "text", xml.replace("<event>", '<event a="&lt;1&quot;">', 1)])
                events.append(xml)
        inside = "".join(events)
        if not self.is_well_formed(tag("events", inside)):
            inside = ""
        if self.chance(0.15):
            return tag("events", inside)
        if self.chance(0.03):
            return tag(self.rng.choice(["event", "other", "Event_data"]), inside)
        parts = [tag("current_id", self.integer(0, 1, 3, 7, 50))] if self.chance(0.9) else []
        if self.chance(0.95):
            parts.append(tag("events", inside))
        self.rng.shuffle(parts)
        return tag("event_data", *parts)

    @staticmethod
    def is_well_formed(xml):
        from xmltree import parse
        return parse(tag("event_data", xml)) is not None

    def initialize(self):
        action = {"do": "initialize"}
        if self.chance(0.6):
            action["persisted"] = self.persisted()
        elif self.chance(0.2):
            action["persisted"] = None
        if self.chance(0.1):
            action["config"] = "<config><a>1</a></config>"
        self.emit(**action)

    THEMES = {
        "table": {"add": 6, "modify": 3, "delete": 3, "get": 3, "occurrences": 1, "persist": 1, "odd_command": 1, "odd_request": 1},
        "recurrence": {"add": 5, "occurrences": 6, "modify": 1, "get": 2, "clock": 2},
        "schedule": {"add": 4, "run": 4, "midnight": 2, "clock": 3, "tick": 2, "delete": 1, "modify": 1, "seed": 1, "place": 1},
        "clock changes": {"clock_change_night": 4, "occurrences": 2, "run": 1, "get": 1, "condition": 1, "sun_request": 1},
        "sun": {"place": 4, "sun_request": 4, "add": 2, "get": 2, "clock": 3, "condition": 2, "compare": 2, "run": 1},
        "conditions": {"condition": 24, "clock": 6, "place": 2, "broken_clock": 1},
        "compare": {"compare": 18, "clock": 6, "condition": 3, "broken_clock": 1},
        "interface": {"interface": 8, "run": 2, "get": 1, "query": 1, "persist": 1, "clock": 1},
        "host": {"host": 3, "restart": 2, "initialize_again": 2, "add": 3, "run": 2, "persist": 1, "tick": 1, "query": 1},
        "persisted": {"initialize_again": 3, "get": 2, "persist": 2, "run": 1, "occurrences": 1, "add": 1, "modify": 1, "clock": 1},
    }

    def build(self):
        theme = self.rng.choice([*self.THEMES, "mixed", "mixed"])
        self.note(f"seed {self.seed}: {theme}")
        weights = self.THEMES.get(theme) or {name: 1 for steps in self.THEMES.values() for name in steps}
        self.opening()
        for _ in range(self.rng.randint(4, 22)):
            getattr(self, "step_" + self.rng.choices(list(weights), list(weights.values()))[0])()
        self.closing()
        return "\n".join(self.lines) + "\n"

    def opening(self):
        if self.chance(0.95):
            self.set_clock(self.any_moment())
        if self.chance(0.3):
            self.step_seed()
        if self.chance(0.15):
            self.step_host()
        self.emit(do="create")
        if self.chance(0.1):
            self.rng.choice([self.step_interface, self.step_tick, self.step_place, self.step_add, self.step_persist])()
        if self.chance(0.3):
            self.step_place()
        self.initialize()
        if self.chance(0.3):
            self.step_place()

    def closing(self):
        pick = self.rng.random()
        if pick < 0.12:
            self.note("what was persisted is given back")
            self.feed_back()
        elif pick < 0.5:
            self.emit(do="persist")
        if self.chance(0.4):
            self.emit(do="destroy")
            if self.chance(0.2):
                self.step_tick()  # bad input: there is no agent
        elif self.chance(0.07):
            self.lines.append(self.rng.choice([
                '{"do":"create"}', '{"do":"nothing"}', "{", "[]", '{"do":"clock"}', '{"do":"clock","at":"7pm"}', '{"do":"run","until":0,"step":0}',
                '{"do":"initialize","persisted":"<a>"}', '{"do":"command","params":{}}', '{"do":"variable","device":1,"variable":"x","value":"1"}',
                '{"do":"seed"}', '{"do":"command","name":"X","params":{"A":1}}', '{"do":"compare","call":"CompareNothing","args":[]}',
                '{"do":"interface","call":"AddDailyEvent","args":["x",1]}', '{"do":"initialize","config":"<a"}', '{"at":1}']))
            self.emit(do="persist")

    def feed_back(self):
        """Asks for the state and starts a new agent with it; the model says what the state is."""
        import clib
        from scheduler_model import play_lines
        self.emit(do="persist")
        transcript = io.StringIO()
        before = os.environ.get("TZ")
        clib.set_zone(self.zone)
        play_lines(self.lines, "-", transcript, io.StringIO())
        if before is not None:
            clib.set_zone(before)
        lines = transcript.getvalue().splitlines()
        state = json.loads(lines[-1]).get("state") if lines else None
        if state is None:
            return
        self.emit(do="destroy")
        self.emit(do="create")
        self.emit(do="initialize", persisted=state)
        self.emit(do="request", name="GET_ALL_EVENTS")
        self.step_run()
        self.emit(do="persist")


def generate(seed, zone=None):
    """The text of the scenario with this seed."""
    return Scenario(seed, zone).build()


def main(arguments):
    parser = argparse.ArgumentParser(description="Writes random scenarios.")
    parser.add_argument("--seed", type=int, required=True)
    parser.add_argument("--count", type=int, default=1)
    parser.add_argument("--zone")
    parser.add_argument("--out")
    options = parser.parse_args(arguments)
    sys.stdout.reconfigure(encoding="utf-8")
    for seed in range(options.seed, options.seed + options.count):
        text = generate(seed, options.zone)
        if options.out is None:
            sys.stdout.write(text)
            continue
        os.makedirs(options.out, exist_ok=True)
        with open(os.path.join(options.out, f"{seed}.jsonl"), "w", encoding="utf-8") as file:
            file.write(text)


if __name__ == "__main__":
    main(sys.argv[1:])
