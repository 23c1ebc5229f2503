#!/usr/bin/env python3
"""The model against cases worked out by hand (calendar on paper, almanac for the sun).

    python3 -m unittest discover -s tests/model

No expected value comes from a run of the model.
"""

import io
import json
import math
import os
import unittest
from datetime import datetime, timedelta, timezone

import clib
import event as event_model
import generate
import sun
from conditions import COMPARISONS
from event import Event, nth_day_of_month
from scheduler_model import play_lines
from xmltree import parse, serialise

NEW_YORK = "EST5EDT,M3.2.0,M11.1.0"
BERLIN = "CET-1CEST,M3.5.0,M10.5.0/3"
AGENT = "vexalink_agent_scheduler/vxw/vexalink_agent_scheduler"
EVENT = "vexalink_agent_scheduler/vxw/ScheduledEvent"


def utc(text):
    """The instant of a civil time in UTC."""
    return int(datetime.fromisoformat(text).replace(tzinfo=timezone.utc).timestamp())


def instant(text):
    """The instant of a civil time in the zone that is set."""
    moment = datetime.fromisoformat(text)
    return clib.make_time(moment.year, moment.month, moment.day, moment.hour, moment.minute, moment.second, -1)


class Recorder:
    """A host for events alone."""

    def __init__(self, now=0):
        self.now = now
        self.lines = []

    def assert_write(self, _file, line):
        self.lines.append(line)


def element(repeat="", day=1, month=3, year=2024, period=0, weekday=0, minutes=420, offset=0, event_id=5, name="Porch"):
    return (f"<event><eventid>{event_id}</eventid><description>{name}</description><start><offset>{offset}</offset>"
            f"<offset_minutes>{minutes}</offset_minutes><start_date><start_day>{day}</start_day><start_month>{month}"
            f"</start_month><start_year>{year}</start_year><start_period>{period}</start_period><start_weekday>{weekday}"
            f"</start_weekday></start_date><randomize>0</randomize></start>{repeat}</event>")


def repeat(frequency, rate, mask=0, end=""):
    return f"<repeat><frequency>{frequency}</frequency><rate>{rate}</rate><daymask>{mask}</daymask>{end}</repeat>"


def end_date(year, month, day):
    return f"<end_date><end_month>{month}</end_month><end_day>{day}</end_day><end_year>{year}</end_year></end_date>"


def read(xml, host=None):
    return Event.from_xml(host or Recorder(), parse(xml), 0.0, 0.0)


def play(*actions):
    """The transcript of some actions, and the exit status with the complaint."""
    output, errors = io.StringIO(), io.StringIO()
    lines = [action if isinstance(action, str) else json.dumps(action) for action in actions]
    status = play_lines(lines, "test", output, errors)
    return [json.loads(line) for line in output.getvalue().splitlines()], status, errors.getvalue()


def at(text):
    return {"do": "clock", "at": text}


CREATE = {"do": "create"}
INITIALIZE = {"do": "initialize"}
PERSIST = {"do": "persist"}


def add(xml):
    return {"do": "command", "name": "ADD_EVENT", "params": {"EVENT_XML": xml}}


def modify(xml):
    return {"do": "command", "name": "MODIFY_EVENT", "params": {"EVENT_XML": xml}}


def interface(call, *arguments):
    return {"do": "interface", "call": call, "args": list(arguments)}


def condition(name, inner):
    return {"do": "condition", "name": name, "params": {"CONDITIONAL_XML": f"<c>{inner}</c>"}}


def done(lines, name):
    return [line for line in lines if line.get("done") == name]


def calls(lines, name):
    return [line for line in lines if line.get("call") == name]


class InZone(unittest.TestCase):
    zone = "UTC0"

    def setUp(self):
        before = os.environ.get("TZ", "")
        self.addCleanup(clib.set_zone, before)
        clib.set_zone(self.zone)


class Numbers(unittest.TestCase):
    def test_are_read_as_the_c_library_reads_them(self):
        for text, value in [("12abc", 12), (" -7", -7), ("+5", 5), ("abc", 0), ("", 0), ("- 4", 0), ("1.9", 1), ("0x10", 0),
                            ("99999999999999999999", 2**63 - 1), ("-99999999999999999999", -2**63)]:
            self.assertEqual(clib.strtol(text), value, text)
        for text, value in [("-1", 2**64 - 1), ("99999999999999999999", 2**64 - 1), ("-99999999999999999999", 2**64 - 1)]:
            self.assertEqual(clib.strtoul(text), value, text)
        self.assertEqual(clib.int32(2**63 - 1), -1)
        self.assertEqual(clib.strtod("abc"), 0.0)
        self.assertEqual(clib.strtod("47.1x"), 47.1)

    def test_division_truncates_toward_zero(self):
        self.assertEqual((clib.c_div(-19800, 3600), clib.c_mod(-19800, 3600)), (-5, -1800))
        self.assertEqual((clib.c_div(19800, 3600), clib.c_mod(19800, 3600)), (5, 1800))


class LocalTime(InZone):
    def test_out_of_range_fields_roll_over(self):
        self.assertEqual(clib.make_time(2024, 2, 30, 0, 0, 0, -1), utc("2024-03-01"))
        self.assertEqual(clib.make_time(2024, 1, 1, 0, 1440, 0, -1), utc("2024-01-02"))
        self.assertEqual(clib.make_time(2024, 3, 0, 0, 0, 0, -1), utc("2024-02-29"))

    def test_a_time_that_occurs_twice_is_the_first(self):
        clib.set_zone(NEW_YORK)  # clocks go back at 02:00 EDT = 06:00 UTC
        for _ in range(2):
            self.assertEqual(clib.make_time(2024, 11, 3, 1, 30, 0, -1), utc("2024-11-03T05:30:00"))
            clib.make_time(2024, 1, 3, 1, 30, 0, -1)
        clib.set_zone("<+1030>-10:30<+11>-11,M10.1.0,M4.1.0")  # half an hour back at 02:00 = 15:00 UTC
        self.assertEqual(clib.make_time(2024, 4, 7, 1, 45, 0, -1), utc("2024-04-06T14:45:00"))

    def test_a_time_in_the_gap_is_an_hour_later(self):
        clib.set_zone(NEW_YORK)
        self.assertEqual(clib.local(clib.make_time(2024, 3, 10, 2, 30, 0, -1))[:5], (2024, 3, 10, 3, 30))

    def test_a_value_without_local_time(self):
        self.assertEqual(clib.civil_day(10**17), (0, 0, 0))
        self.assertEqual(clib.hour_minute(10**17), (-1, -1))


class Xml(unittest.TestCase):
    def test_text_is_the_elements_own(self):
        root = parse("<a>x<!--c-->y<b>no</b><![CDATA[<z>]]>&amp;</a>")
        self.assertEqual(root.text, "xy<z>&")
        self.assertEqual([child.name for child in root.children], ["b"])

    def test_refused(self):
        for text in ["", " ", "<a>", "<!DOCTYPE a><a/>", "<a>&nbsp;</a>", "<a/><b/>", "<a>" * 257 + "</a>" * 257]:
            self.assertIsNone(parse(text), text[:20])
        self.assertIsNotNone(parse("<a>" * 256 + "</a>" * 256))

    def test_written_compactly(self):
        self.assertEqual(serialise(parse("<a>\n<b> 1 </b><c></c>\"&lt;&gt;&amp;'</a>")), "<a>\n\"&lt;&gt;&amp;'<b> 1 </b><c/></a>")

    def test_empty(self):
        for text, empty in [("<a/>", True), ("<a> \n</a>", True), ("<a><!--x--></a>", True), ("<a>x</a>", False), ("<a><b/></a>", False)]:
            self.assertEqual(parse(text).is_empty(), empty, text)


class Sun(unittest.TestCase):
    def test_no_sunrise_in_the_midnight_sun(self):
        self.assertTrue(math.isnan(sun.calc_sunrise_gmt(172, 80.0, 0.0)))
        self.assertTrue(math.isfinite(sun.find_next(172, 80.0, 0.0, sunset=False)))

    def test_sunset_at_the_origin_uses_the_previous_days_index(self):
        for day in (1, 100, 200, 366):
            self.assertEqual(sun.calc_sunset_gmt(day, 0.0, 0.0), sun._one_pass(day - 1, 0.0, 0.0, sunset=True))

    def test_agrees_with_the_almanac_within_a_few_minutes(self):
        # Berlin, 21 June: sunrise 02:43, sunset 19:33 UTC. New York, 21 December: 12:17 and 21:32 UTC.
        for day, place, sunrise, sunset in [(172, (52.52, 13.405), 163, 1173), (355, (40.71, -74.01), 737, 1292)]:
            place = [sun.single(value) for value in place]
            self.assertAlmostEqual(sun.calc_sunrise_gmt(day, *place), sunrise, delta=4)
            self.assertAlmostEqual(sun.calc_sunset_gmt(day, *place), sunset, delta=4)

    def test_searches_wrap_round_the_year(self):
        # In the polar night of 85 degrees north the sun next rises in March and last set in early October.
        next_rise = sun.find_next(366, 85.0, 0.0, sunset=False)
        self.assertEqual(next_rise, sun.find_next(1, 85.0, 0.0, sunset=False))
        recent_set = sun.find_recent(1, 85.0, 0.0, sunset=True)
        self.assertEqual(recent_set, sun.find_recent(365, 85.0, 0.0, sunset=True))
        self.assertTrue(math.isnan(sun.find_next(1, math.nan, 0.0, sunset=False)))

    def test_clamping(self):
        self.assertEqual(sun.fixup_lat_and_long(90.0, -200.0), (85.0, -175.0))
        self.assertEqual(sun.fixup_lat_and_long(85.0, 175.0), (85.0, 175.0))

    def test_leap_years(self):
        self.assertEqual([sun.is_leap_year(y) for y in (2000, 1900, 2024, 2023, 2100, 0, -4)], [True, False, True, False, False, True, True])

    def test_day_of_year(self):
        self.assertEqual([sun.day_of_year(*d) for d in [(2024, 1, 1), (2024, 12, 31), (2023, 12, 31), (2024, 3, 1), (0, 0, 0)]], [1, 366, 365, 61, 0])

    def test_far_western_sunset_is_beyond_midnight_utc(self):
        self.assertGreater(sun.calc_sunset_gmt(172, 40.0, -170.0), 1440)

    def test_splitting_truncates(self):
        self.assertEqual(sun.split_minutes(90.5), (1, 30, 30))
        self.assertEqual(sun.split_minutes(-90.5), (-1, -30, -30))


class NthDayOfMonth(InZone):
    def test_counts_weekdays(self):
        for expected, arguments in [("2024-02-22", (2, 5, 2024, 4)), ("2024-02-29", (2, 5, 2024, 5)), ("2024-05-27", (5, 2, 2024, 5)),
                                    ("2024-03-03", (3, 1, 2024, 1)), ("2024-02-29", (2, 5, 2024, 6)), ("2024-02-29", (2, 5, 2024, -1))]:
            self.assertEqual(nth_day_of_month(*arguments), utc(expected), expected)

    def test_nothing_found(self):
        for arguments in [(13, 1, 2024, 1), (0, 1, 2024, 1), (2, 8, 2024, 1), (2, 0, 2024, 5)]:
            self.assertEqual(nth_day_of_month(*arguments), 0)

    def test_counts_the_clock_change_day_twice(self):
        # 3 November 2024 is a Sunday of 25 hours: its midnight and its 23:00 are both met.
        clib.set_zone(NEW_YORK)
        self.assertEqual(nth_day_of_month(11, 1, 2024, 2), instant("2024-11-03T23:00:00"))
        self.assertEqual(nth_day_of_month(11, 1, 2024, 3), instant("2024-11-10T23:00:00"))


class EventElement(InZone):
    def test_without_repeat_is_once_and_never_ends(self):
        event = read(element())
        self.assertEqual((event.frequency, event.rate, event.has_end_date), (0, 0, False))
        self.assertEqual(event.end_date, utc("2038-01-18T23:59:59"))
        clib.set_zone(NEW_YORK)  # 03:14:07 UTC is still the 17th there
        self.assertEqual(read(element()).end_date, instant("2038-01-17T23:59:59"))

    def test_start_by_week_overrules_the_day(self):
        self.assertEqual(read(element(day=3, month=5, period=5, weekday=2)).start, utc("2024-05-27"))

    def test_start_by_week_in_no_month_reads_the_day_of_the_epoch(self):
        self.assertEqual(read(element(day=3, month=13, period=1, weekday=2)).start, utc("2025-01-01"))
        clib.set_zone(NEW_YORK)  # where the epoch falls on 31 December
        self.assertEqual(read(element(day=3, month=13, period=1, weekday=2)).start, instant("2025-01-31"))

    def test_assertion_records(self):
        for xml, lines in [("<other/>", [55]), ("<event/>", [66]), ("<event><start/></event>", []),
                           ("<event><start>x</start></event>", [74]), ("<event><start><start_date/></start></event>", []),
                           (element(repeat(1, 0)), [146]), (element(repeat(1, -1)), [146]), (element(repeat(0, 0)), []),
                           (element(repeat(0, -1)), [146]), (element("<repeat/>"), [])]:
            host = Recorder()
            read(xml, host)
            self.assertEqual(host.lines, lines, xml)

    def test_daymask_of_a_daily_event_reads_as_0_and_is_written(self):
        event = read(element(repeat(1, 1, 34)))
        self.assertEqual(event.daymask, 0)
        self.assertIn("<daymask>0</daymask>", serialise(event.to_xml()))

    def test_once_is_written_without_repeat(self):
        self.assertNotIn("<repeat>", serialise(read(element(repeat(0, 3, end=end_date(2025, 1, 1)))).to_xml()))

    def test_written_form(self):
        host = Recorder(utc("2024-03-01T08:00:00"))
        text = serialise(read(element(repeat(2, 1, 0x22, end_date(2024, 12, 31)), name="A &amp; B"), host).to_xml())
        # 1 March 2024 is a Friday; its 07:00 has passed, so Monday the 4th is next.
        self.assertEqual(text, (
            "<event><eventid>5</eventid><buttonbindingid>5</buttonbindingid><description>A &amp; B</description><start><offset>0</offset>"
            "<offset_minutes>420</offset_minutes><start_date><start_day>1</start_day><start_month>3</start_month><start_year>2024</start_year>"
            "<start_period>0</start_period><start_weekday>0</start_weekday></start_date><randomize>0</randomize></start>"
            "<next_occurence><year>2024</year><month>3</month><day>4</day><hour>7</hour><min>0</min><timezone>UTC</timezone></next_occurence>"
            "<repeat><frequency>2</frequency><rate>1</rate><daymask>34</daymask><end_date><end_month>12</end_month><end_day>31</end_day>"
            "<end_year>2024</end_year></end_date></repeat></event>"))


class Recurrence(InZone):
    def days(self, xml, first, count):
        event = read(xml)
        start = datetime.fromisoformat(first)
        moments = [start + timedelta(days=n) for n in range(count)]
        return [f"{m:%m-%d}" for m in moments if event.occurs_on_date(utc(m.isoformat()))]

    def test_daily(self):
        self.assertEqual(self.days(element(repeat(1, 2)), "2024-02-28", 8), ["03-01", "03-03", "03-05"])

    def test_weeks_run_from_sunday(self):
        xml = element(repeat(2, 2, 0x22), day=6)  # Wednesday; Mondays and Fridays of every second week
        self.assertEqual(self.days(xml, "2024-03-04", 30), ["03-08", "03-18", "03-22", "04-01"])

    def test_monthly_by_day_skips_short_months(self):
        self.assertEqual(self.days(element(repeat(3, 1), day=31, month=1), "2024-01-01", 152), ["01-31", "03-31", "05-31"])

    def test_monthly_on_the_last_friday(self):
        self.assertEqual(self.days(element(repeat(3, 2), month=1, period=5, weekday=6), "2024-01-01", 160), ["01-26", "03-29", "05-31"])

    def test_yearly_on_29_february(self):
        event = read(element(repeat(4, 1), day=29, month=2))
        self.assertEqual([y for y in range(2024, 2034) if any(
            event.occurs_on_date(utc(f"{y}-02-28T12:00:00") + n * 86400) for n in range(2))], [2024, 2028, 2032])

    def test_not_after_the_end(self):
        self.assertEqual(self.days(element(repeat(1, 1, end=end_date(2024, 3, 3))), "2024-02-28", 10), ["03-01", "03-02", "03-03"])

    def test_rate_0_occurs_never_and_leaves_a_record(self):
        for frequency, line in [(1, 363), (2, 379), (3, 405), (4, 427)]:
            host = Recorder()
            event = read(element(repeat(frequency, 0, 127)), host)
            host.lines.clear()
            self.assertFalse(event.occurs_on_date(event.start))
            self.assertFalse(event.occurs_on_date(event.start - 1))
            self.assertEqual(host.lines, [line])

    def test_midnight_after_the_change_to_summer_time_counts_a_day_short(self):
        clib.set_zone(NEW_YORK)
        event = read(element(repeat(1, 2), day=10))  # the day of 23 hours
        self.assertTrue(event.occurs_on_date(instant("2024-03-11")))
        self.assertFalse(event.occurs_on_date(instant("2024-03-12")))
        self.assertTrue(event.occurs_on_date(instant("2024-03-12T01:00:00")))

    def test_next_occurrence(self):
        for why, now, xml, expected in [
                ("once, later today", "2024-03-01T06:59:59", element(), "2024-03-01T07:00:00"),
                ("once, at this very moment", "2024-03-01T07:00:00", element(), None),
                ("daily, at this very moment", "2024-03-01T07:00:00", element(repeat(1, 1)), "2024-03-01T07:00:00"),
                ("daily, passed today", "2024-03-01T07:00:01", element(repeat(1, 1)), "2024-03-02T07:00:00"),
                ("not begun", "2023-03-01T07:00:01", element(repeat(1, 5)), "2024-03-01T07:00:00"),
                ("negative rate", "2024-03-01T06:00:00", element(repeat(1, -1)), None),
                ("over", "2024-03-04T06:00:00", element(repeat(1, 1, end=end_date(2024, 3, 3))), None),
                ("unknown kind", "2024-03-01T06:00:00", element(repeat(9, 1)), None),
                ("every million days, far end", "2024-03-01T08:00:00", element(repeat(1, 1000000, end=end_date(9999, 1, 1))), "4762-01-27T07:00:00"),
                ("leap day after eight years is beyond the search", "2096-03-01", element(repeat(4, 1, end=end_date(9999, 1, 1)), day=29, month=2), None)]:
            event = read(xml, Recorder(utc(now)))
            self.assertEqual(event.next_occurrence(), expected and utc(expected), why)

    def test_skipping_never_skips_an_occurrence(self):
        for seed in range(40):
            rng = generate.random.Random(seed)
            xml = element(repeat(rng.randint(1, 4), rng.choice([1, 2, 3, 5, 9, -2]), rng.randrange(128)), day=rng.randint(1, 31),
                          period=rng.choice([0, 0, 2, 5]), weekday=rng.randint(1, 7))
            clib.set_zone(rng.choice(["UTC0", NEW_YORK, BERLIN]))
            event = read(xml)
            date = event.start - 3 * 86400
            for _ in range(400):
                skipped = [date + n * 86400 for n in range(min(event.barren_days(date), 1000))]
                self.assertFalse(any(event.occurs_on_date(day) for day in skipped), xml)
                date += 86400


class EventTime(InZone):
    def clock(self, minutes, day="2024-03-01T12:34:56"):
        return event_model.calculate_event_time(Recorder(), instant(day), 0, minutes, 0.0, 0.0)

    def test_clock_time_rolls(self):
        for minutes, expected in [(1439, "2024-03-01T23:59"), (1440, "2024-03-02"), (-1, "2024-02-29T23:59"), (0, "2024-03-01")]:
            self.assertEqual(self.clock(minutes), utc(expected))

    def test_clock_time_on_the_day_of_the_change(self):
        clib.set_zone(NEW_YORK)
        self.assertEqual(self.clock(420, "2024-03-10"), utc("2024-03-10T11:00:00"))
        self.assertEqual(self.clock(90, "2024-11-03"), utc("2024-11-03T05:30:00"))

    def test_unknown_offset_returns_the_date(self):
        host = Recorder()
        self.assertEqual(event_model.calculate_event_time(host, 12345, 3, 60, 0.0, 0.0), 12345)
        self.assertEqual(host.lines, [233])

    def test_minutes_shift_the_sun_event(self):
        host = Recorder(utc("2024-03-01"))
        sunrise, earlier = (event_model.calculate_event_time(host, host.now, 1, m, 52.5, 13.4) for m in (0, -30))
        self.assertEqual(sunrise - earlier, 1800)

    def test_places_are_clamped(self):
        host = Recorder(utc("2024-03-21"))
        one, other = (event_model.calculate_event_time(host, host.now, 1, 0, *place) for place in [(89.0, -179.0), (85.0, -175.0)])
        self.assertEqual(one, other)

    def test_half_hour_zone(self):
        host = Recorder(utc("2024-06-21T12:00:00"))
        in_utc = event_model.calculate_event_time(host, host.now, 2, 0, 28.6, 77.2)
        clib.set_zone("IST-5:30")
        self.assertEqual(event_model.calculate_event_time(host, host.now, 2, 0, 28.6, 77.2), in_utc)

    def test_no_finite_sun_time(self):
        host = Recorder(utc("2024-06-21"))
        self.assertEqual(event_model.calculate_event_time(host, host.now, 1, 30, math.nan, 0.0), -1)


class Agent(InZone):
    def test_example(self):
        lines, status, _ = play(at("2024-03-06T06:59:58"), CREATE, INITIALIZE, interface("AddDailyEvent", "Porch", 7, 0),
                                {"do": "run", "until": "2024-03-06T07:00:01"})
        self.assertEqual(status, 0)
        self.assertEqual(lines, [
            {"done": "clock", "now": utc("2024-03-06T06:59:58")},
            {"call": "RegisterQuery", "iid": "7C2E51A0-3B9D-4e06-A8F1-9D44B0C7E315", "result": 1}, {"done": "create"},
            {"call": "VmRegisterListener", "device": 1, "variable": 1001}, {"call": "VmRegisterListener", "device": 1, "variable": 1002},
            {"call": "AddTimer", "interval": 1000, "second": 17, "result": 1}, {"done": "initialize", "result": 0},
            {"done": "interface", "result": 1},
            {"call": "FireEvent", "event": 1}, {"call": "LogMessage", "level": 7, "text": "Scheduler Event 1, Porch"},
            {"call": "CreateBindMessage"},
            {"call": "SendBoundCall", "binding": 1, "command": "DO_PUSH", "argument": 1},
            {"call": "SendBoundCall", "binding": 1, "command": "DO_CLICK", "argument": 1},
            {"done": "run", "ticks": 3}])

    def test_empty_state(self):
        lines, _, _ = play(CREATE, PERSIST)
        self.assertEqual(lines[-1]["state"], "<event_data><current_id>0</current_id><events/></event_data>")

    def current_id(self, persisted):
        lines, _, _ = play(at("2024-03-01T12:00:00"), CREATE, {"do": "initialize", "persisted": persisted}, interface("AddDailyEvent", "next", 1, 0))
        self.assertEqual(calls(lines, "AddTimer")[0]["result"], 1)
        return lines[-1]["result"] - 1

    def test_current_id_is_never_below_a_loaded_id(self):
        def events(*ids):
            return "<events>" + "".join(element(event_id=n, name=f"e{n}") for n in ids) + "</events>"
        self.assertEqual(self.current_id(f"<event_data><current_id>3</current_id>{events(2, 7)}</event_data>"), 7)
        self.assertEqual(self.current_id(f"<event_data><current_id>3</current_id>{events(1, 2)}</event_data>"), 3)
        self.assertEqual(self.current_id(events(4, 2)), 4)
        self.assertEqual(self.current_id("<other>" + events(4) + "</other>"), 0)

    def test_misnamed_child_leaves_a_record(self):
        for persisted, line in [("<event_data><events><evt/></events></event_data>", 346), ("<events><evt/></events>", 374)]:
            lines, _, _ = play(CREATE, {"do": "initialize", "persisted": persisted})
            self.assertEqual([(c["file"], c["line"]) for c in calls(lines, "AssertWrite")], [(AGENT, line), (EVENT, 55)])

    def test_mediascan_event_is_not_persisted_but_kept(self):
        lines, _, _ = play(at("2024-03-01T06:59:59"), CREATE, INITIALIZE, add(element(repeat(1, 1), name="hostcore_mediascan_event", event_id=0)),
                           PERSIST, {"do": "request", "name": "GET_EVENT", "params": {"EVENT_ID": "1"}}, at("2024-03-01T07:00:00"), {"do": "tick"})
        self.assertIn("<events/>", done(lines, "persist")[0]["state"])
        self.assertIn("hostcore_mediascan_event", done(lines, "request")[0]["reply"])
        self.assertEqual(len(calls(lines, "FireEvent")), 1)

    def test_descriptions_are_unique_for_new_ids(self):
        lines, _, _ = play(at("2024-03-01T12:00:00"), CREATE, INITIALIZE, interface("AddDailyEvent", "Porch", 7, 0), interface("AddDailyEvent", "Porch", 8, 0),
                           interface("AddDailyEvent", "porch", 8, 0), interface("GetEventIdByDescription", "Porch"))
        self.assertEqual([line["result"] for line in done(lines, "interface")], [1, 0, 2, 1])

    def test_given_id_is_kept_only_by_a_duplicate(self):
        lines, _, _ = play(at("2024-03-01T12:00:00"), CREATE, INITIALIZE, add(element(event_id=42)), add(element(event_id=42)),
                           interface("DoesEventExist", 1), interface("DoesEventExist", 42))
        self.assertEqual([c["line"] for c in calls(lines, "AssertWrite")], [107, 107])
        self.assertEqual([c["id"] for c in calls(lines, "RegisterBinding")], [1, 42])
        self.assertEqual([line["result"] for line in done(lines, "interface")], [True, True])

    def test_taken_id_keeps_the_old_record_and_schedules_the_new(self):
        persisted = "<events>" + element(repeat(1, 1), event_id=3, name="old", minutes=600) + element(repeat(1, 1), event_id=3, name="new", minutes=700) + "</events>"
        # The list is built afresh after loading, so the second record shows only when added later: as a duplicate.
        lines, _, _ = play(at("2024-03-01T09:00:00"), CREATE, {"do": "initialize", "persisted": persisted},
                           add(element(repeat(1, 1), event_id=3, name="old", minutes=650)), {"do": "run", "until": "2024-03-01T12:00:00", "step": 60})
        self.assertEqual([c["line"] for c in calls(lines, "AssertWrite")], [116, 107, 116])
        self.assertEqual([c["text"] for c in calls(lines, "LogMessage")], ["Scheduler Event 3, old", "Scheduler Event 3, old"])

    def test_negative_binding_result(self):
        lines, _, _ = play(at("2024-03-01T12:00:00"), {"do": "host", "call": "RegisterBinding", "result": -1}, CREATE, INITIALIZE, add(element(event_id=0)))
        self.assertEqual([c["line"] for c in calls(lines, "AssertWrite")], [133])
        self.assertEqual(calls(lines, "RegisterBindingClass"), [])
        self.assertEqual(len(calls(lines, "ConSendDataToUI")), 1)

    def test_modify(self):
        lines, _, _ = play(at("2024-03-01T12:00:00"), CREATE, INITIALIZE, modify("<event/>"), modify(element(event_id=9)), modify("<x><eventid>9</eventid></x>"),
                           modify("<x"))
        sent = [c["xml"] for c in calls(lines, "ConSendDataToUI")]
        self.assertEqual(len(sent), 2)
        self.assertTrue(sent[0].startswith("<event_modified><event><eventid>9</eventid>"))
        self.assertEqual(sent[1], "<event_modified/>")
        self.assertEqual(len(calls(lines, "DmInvalidateState")), 4)

    def test_delete(self):
        def delete(**params):
            return {"do": "command", "name": "DELETE_EVENT", "params": params}
        lines, _, _ = play(CREATE, INITIALIZE, delete(EVENT_ID="12abc"), delete(), {"do": "command", "name": "add_event"})
        self.assertEqual(lines[6:], [
            {"call": "ConSendDataToUI", "xml": "<event_deleted><eventid>12</eventid></event_deleted>"}, {"call": "DmInvalidateState"},
            {"call": "EmRemoveByOwner", "owner": 12, "kind": 3}, {"done": "command", "result": 0}, {"call": "DmInvalidateState"},
            {"call": "EmRemoveByOwner", "owner": 0, "kind": 3}, {"done": "command", "result": 0}, {"done": "command", "result": 0}])

    def test_day_change(self):
        def trace(first, second):
            lines, _, _ = play(at(first), CREATE, INITIALIZE, interface("AddDailyEvent", "Porch", 7, 5), at(second), {"do": "tick"})
            return [c["text"] for c in calls(lines, "LogMessage") if c["text"].startswith("SCHEDULE")]
        wanted = ["SCHEDULE_TRACE:  For: 3/11/2024", "SCHEDULE_TRACE:  Event: 1 (Porch) will fire at 7:5"]
        self.assertEqual(trace("2024-03-10T23:59:59", "2024-03-11T00:00:00"), wanted)
        self.assertEqual(trace("2024-03-10T12:00:00", "2024-02-15T12:00:00"), ["SCHEDULE_TRACE:  For: 2/15/2024"])
        self.assertEqual(trace("2024-03-10T12:00:00", "2024-02-09T12:00:00"), [])

    def test_tick_before_initialize_has_the_agents_timer_id(self):
        lines, _, _ = play(at("2024-03-10T12:00:00"), CREATE, {"do": "tick"})
        self.assertEqual([c["text"] for c in calls(lines, "LogMessage")], ["SCHEDULE_TRACE:  For: 3/10/2024"])

    def test_passed_events_wait_for_the_next_day_then_fire_late(self):
        early = element(repeat(1, 1), minutes=1, event_id=0)
        lines, _, _ = play(at("2024-03-01T12:00:00"), CREATE, INITIALIZE, add(early), {"do": "tick"}, at("2024-03-02T08:00:00"), {"do": "tick"}, {"do": "tick"})
        self.assertEqual([line.get("text") or line.get("done") for line in lines if "text" in line or line.get("done") == "tick"],
                         ["tick", "SCHEDULE_TRACE:  For: 3/2/2024", "SCHEDULE_TRACE:  Event: 1 (Porch) will fire at 0:1", "tick",
                          "Scheduler Event 1, Porch", "tick"])

    def occurrences(self, first, last, *events):
        keys = ("YEAR", "MONTH", "DAY")
        params = {f"{end}_{key}": part for end, day in (("FROM", first), ("TO", last)) for key, part in zip(keys, day.split("-"))}
        lines, _, _ = play(at("2024-01-01T12:00:00"), CREATE, INITIALIZE, *[add(xml) for xml in events],
                           {"do": "request", "name": "GET_EVENT_OCCURENCES", "params": params})
        root = parse(lines[-1]["reply"])
        return [(e.ulong_of("eventid"), e.child("event_time").int_of("day"), e.child("event_time").int_of("hour")) for e in root.children]

    def test_occurrences_in_id_order(self):
        late, early = (element(repeat(1, 1), event_id=0, name=n, minutes=m) for n, m in (("a", 600), ("b", 300)))
        self.assertEqual(self.occurrences("2024-03-05", "2024-03-06", late, early), [(1, 5, 10), (2, 5, 5), (1, 6, 10), (2, 6, 5)])
        self.assertEqual(self.occurrences("2024-03-06", "2024-03-05", late), [])
        self.assertEqual(len(self.occurrences("2024-03-05", "9999-12-31", element(repeat(1, 1, end=end_date(2024, 3, 9)), event_id=0))), 5)

    def test_the_long_day_is_listed_twice(self):
        clib.set_zone(NEW_YORK)
        days = [day for _, day, _ in self.occurrences("2024-11-02", "2024-11-04", element(repeat(1, 1), event_id=0))]
        self.assertEqual(days, [2, 3, 3, 4])

    def test_destroying(self):
        lines, _, _ = play(CREATE, INITIALIZE, {"do": "destroy"}, CREATE, {"do": "destroy"}, {"do": "host", "call": "RegisterQuery", "result": 0}, CREATE,
                           {"do": "initialize"}, {"do": "destroy"})
        self.assertEqual([c["timer"] for c in calls(lines, "KillTimer")], [1, 2])
        self.assertEqual(len(calls(lines, "UnregisterQuery")), 2)
        self.assertEqual(len(calls(lines, "VmUnregisterListener")), 6)

    def test_bad_input(self):
        for line in ["{", "[]", '{"do":"nothing"}', '{"do":"tick"}', '{"do":"clock"}', '{"do":"clock","at":"7pm"}', '{"do":"run","until":1}']:
            lines, status, errors = play("# comment", at(0), line, at(1))
            self.assertEqual((status, len(lines)), (2, 1), line)
            self.assertRegex(errors, r"^test:3: \S.*\n$")
        for line in [CREATE, {"do": "initialize", "persisted": "<a>"}, {"do": "run", "until": 5, "step": 0}]:
            self.assertEqual(play(CREATE, line)[1], 2)


class Conditions(InZone):
    def holds(self, moment, name, inner):
        lines, _, _ = play(at(moment), CREATE, condition(name, inner))
        return lines[-1]["result"]

    def test_month_wraps(self):
        inner = "<comparator>BT</comparator><month_between><month_from>11</month_from><month_to>2</month_to></month_between>"
        for month, expected in [(11, True), (12, True), (1, True), (2, True), (3, False), (6, False), (10, False)]:
            self.assertEqual(self.holds(f"2024-{month:02}-15T12:00:00", "IF_MONTH", inner), expected, month)

    def test_lists(self):
        def month(comparator, *entries):
            items = "".join(f"<m>{n}</m>" for n in entries)
            return self.holds("2024-04-15T12:00:00", "IF_MONTH", f"<comparator>{comparator}</comparator><month_current><month_names>{items}</month_names></month_current>")
        rows = [("EQ", (1, 4), True), ("NE", (1, 4), False), ("NE", (), True), ("EQ", (), False), ("GT", (3,), True), ("GT", (4,), False),
                ("GE", (4,), True), ("LT", (5, 1), True), ("LT", (4,), False), ("LE", (4,), True), ("LE", (), False), ("XX", (4,), False)]
        for comparator, entries, expected in rows:
            self.assertEqual(month(comparator, *entries), expected, (comparator, entries))

    def test_weekdays(self):
        inner = "<comparator>EQ</comparator><day_current><day_name>Day</day_name><day_names><d>1</d><d>7</d></day_names></day_current>"
        # 3 March 2024 is a Sunday.
        self.assertEqual([self.holds(f"2024-03-{d:02}T12:00:00", "IF_TODAY", inner) for d in range(3, 10)], [True] + [False] * 5 + [True])
        inner = "<comparator>BT</comparator><day_between><day_name>Day</day_name><dayname_from>6</dayname_from><dayname_to>2</dayname_to></day_between>"
        self.assertFalse(any(self.holds(f"2024-03-{d:02}T12:00:00", "IF_TODAY", inner) for d in range(3, 10)))

    def test_years(self):
        def between(first, last):
            return f"<comparator>BT</comparator><year_between><year_from>{first}</year_from><year_to>{last}</year_to></year_between>"
        for first, last, expected in [(0, 2030, False), (2024, 2024, True), (2025, 2030, False), (2025, 2023, False)]:
            self.assertEqual(self.holds("2024-03-01T12:00:00", "IF_YEAR", between(first, last)), expected)
        for current, expected in [("<year_current year_curr='2024'/>", True), ("<year_current><year_curr>2024</year_curr></year_current>", True),
                                  ("<year_current year_curr='2024'><year_curr/></year_current>", False), ("", False)]:
            self.assertEqual(self.holds("2024-03-01T12:00:00", "IF_YEAR", "<comparator>EQ</comparator>" + current), expected, current)

    def test_times(self):
        span = "<comparator>BT</comparator><offset_from>1320</offset_from><offset_to>1560</offset_to>"
        for moment, expected in [("23:30:00", True), ("01:59:00", True), ("02:00:00", True), ("02:00:01", False), ("12:00:00", False), ("22:00:00", True)]:
            self.assertEqual(self.holds("2024-03-01T" + moment, "IF_TIME", span), expected, moment)

        def one(comparator, minutes):
            return f"<comparator>{comparator}</comparator><comp_time>{minutes}</comp_time>"
        for moment, inner, expected in [("00:00:00", one("EQ", 0), False), ("10:00:59", one("EQ", 600), True), ("10:01:00", one("EQ", 600), False),
                                        ("10:00:00", one("GE", 600), True), ("09:59:59", one("GE", 600), False), ("10:00:01", one("LE", 600), False),
                                        ("10:00:01", one("GT", 600), True), ("12:00:00", one("NE", 600), True), ("12:00:00", one("NE", 0), False)]:
            self.assertEqual(self.holds("2024-03-01T" + moment, "IF_TIME", inner), expected, (moment, inner))

    def test_sun(self):
        # At 0, 0 the sun rises about 06:10 and sets about 18:15 UTC in early March.
        for moment, kind, expected in [("03:00:00", "Night", True), ("22:00:00", "Night", True), ("12:00:00", "Night", False), ("12:00:00", "Day", True)]:
            self.assertEqual(self.holds("2024-03-01T" + moment, "IF_TIME", f"<type>{kind}</type>"), expected, (moment, kind))
        within = "<type>Within</type><offset_type>2</offset_type><offset>{}</offset><offset_minutes>120</offset_minutes>"
        for moment, side, expected in [("17:00:00", "Before", True), ("15:00:00", "Before", False), ("19:00:00", "Before", False),
                                       ("19:00:00", "After", True), ("17:00:00", "After", False), ("17:00:00", "", False)]:
            self.assertEqual(self.holds("2024-03-01T" + moment, "IF_TIME", within.format(side)), expected, (moment, side))

    def test_dates(self):
        def date(comparator, day, month, year):
            return (f"<comparator>{comparator}</comparator><date_current><date_curr_dd>{day}</date_curr_dd><date_curr_mm>{month}</date_curr_mm>"
                    f"<date_curr_yy>{year}</date_curr_yy></date_current>")
        for inner, expected in [(date("EQ", 1, 3, 2024), True), (date("EQ", 30, 2, 2024), True), (date("EQ", 0, 3, 2024), False),
                                (date("NE", 0, 3, 2024), False), (date("GT", 29, 2, 2024), True), (date("LT", 1, 3, 2024), False)]:
            self.assertEqual(self.holds("2024-03-01T12:00:00", "IF_DATE", inner), expected, inner)

    def test_parameters_and_failures(self):
        lines, _, _ = play(at("2024-03-01T12:00:00"), CREATE,
                           {"do": "condition", "name": "IF_LEAP", "params": {"CONDITIONAL_XML": "", "TIME_XML": "<x/>"}},
                           {"do": "condition", "name": "IF_LEAP", "params": {"CONDITIONAL_XML": "<x"}}, {"do": "condition", "name": "IF_NONE", "params": {}})
        self.assertEqual([line["result"] for line in done(lines, "condition")], [True, False, False])
        self.assertEqual([c["text"] for c in calls(lines, "LogMessage")], ["Unable to parse conditional in scheduler: <x", "Unable to parse conditional in scheduler: "])


class Comparators(InZone):
    def call(self, moment, name, *arguments):
        return COMPARISONS[name][0](moment if isinstance(moment, int) else utc(moment), *arguments)

    def test_ranges(self):
        self.assertEqual([self.call(f"2024-03-{d:02}", "CompareToday", 2, 6) for d in range(3, 10)], [0, 1, 1, 1, 1, 1, 0])
        self.assertEqual([self.call(f"2024-03-{d:02}", "CompareToday", 6, 2) for d in range(3, 10)], [0] * 7)
        now = utc("2024-03-05T12:00:00")
        self.assertEqual(self.call(now, "CompareClockTime", now, now), 1)
        self.assertEqual(self.call(now, "CompareClockTime", now + 1, now), 0)
        self.assertEqual([self.call(now, "CompareYear", 2024, 2024), self.call(now, "CompareMonth", 3, 3), self.call(now, "CompareDate", 5, 5)], [1, 1, 1])

    def test_leap(self):
        self.assertEqual([self.call(f"{year}-06-01", "CompareLeap") for year in (2000, 2100, 2024, 2023)], [1, 0, 1, 0])
        self.assertEqual(self.call(10**17, "CompareLeap"), 1)

    def test_sunset(self):
        now = utc("2024-06-21T12:00:00")  # Berlin: sunset 19:33 UTC
        self.assertEqual(self.call(now, "CompareAstroClockTime", utc("2024-06-21T19:28:00"), 52.52, 13.405), 1)
        self.assertEqual(self.call(now, "CompareAstroClockTime", utc("2024-06-21T19:38:00"), 52.52, 13.405), 0)
        self.assertEqual(self.call(now, "CompareAstroClockTime", 0, math.nan, 0.0), 0)


class Generator(unittest.TestCase):
    def test_is_deterministic(self):
        for seed in range(5):
            self.assertEqual(generate.generate(seed), generate.generate(seed))

    def test_names_its_zone_first(self):
        self.assertTrue(generate.generate(1, "UTC0").startswith("# TZ=UTC0\n"))


if __name__ == "__main__":
    unittest.main()
