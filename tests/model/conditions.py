"""Programming conditions and the exported comparison functions: tests of the current local time."""

import math
import operator
from typing import Dict, List

import clib
import sun
from clib import make_time
from event import CLOCK, SUNRISE, SUNSET, sun_instant
from xmltree import Node, parse

_COMPARATORS = {"EQ": operator.eq, "NE": operator.ne, "GT": operator.gt,
                "GE": operator.ge, "LT": operator.lt, "LE": operator.le}
_NOTHING = Node("")


def compare(comparator: str, left, right) -> bool:
    """`left comparator right`; False for an unknown comparator."""
    operation = _COMPARATORS.get(comparator)
    return operation(left, right) if operation else False


def compare_with_list(comparator: str, current: int, entries: List[int]) -> bool:
    """The current value against a list: NE holds against all entries, the others against some entry."""
    if comparator == "NE":
        return all(current != entry for entry in entries)
    return any(compare(comparator, current, entry) for entry in entries)


def _entries(parent: Node, name: str) -> List[int]:
    node = parent.child(name)
    return [child.as_int() for child in node.children] if node else []


class Condition:
    """One evaluation: the current local time, read once, and the condition's document."""

    def __init__(self, agent, root: Node):
        self.agent = agent
        self.root = root
        self.now = agent.host.now
        here = clib.local(self.now)
        self.year, self.month, self.day = clib.civil_day(self.now)
        self.weekday = here.weekday if here else 0
        self.comparator = root.text_of("comparator")

    def _section(self, name: str) -> Node:
        return self.root.child(name) or _NOTHING

    def _is_missing(self, name: str) -> bool:
        node = self.root.child(name)
        return node is None or node.is_empty()

    def if_year(self) -> bool:
        if self.comparator == "BT":
            between = self._section("year_between")
            first, last = between.int_of("year_from"), between.int_of("year_to")
            return first > 0 and last > 0 and first <= self.year <= last
        current = self.root.child("year_current")
        if current is None:
            return False
        value = current.child("year_curr")
        text = value.text if value is not None else current.attributes.get("year_curr", "")
        return compare(self.comparator, self.year, clib.int32(clib.strtol(text)))

    def if_month(self) -> bool:
        if self.comparator == "BT":
            between = self._section("month_between")
            first, last = between.int_of("month_from"), between.int_of("month_to")
            if first <= 0 or last <= 0:
                return False
            if last < first:
                return self.month >= first or self.month <= last
            return first <= self.month <= last
        current = self.root.child("month_current")
        if current is None:
            return False
        return compare_with_list(self.comparator, self.month, _entries(current, "month_names"))

    def if_today(self) -> bool:
        if self.comparator == "":
            return False
        between = self.comparator == "BT"
        section = self._section("day_between" if between else "day_current")
        modes = {"Day": (self.weekday, "dayname_from", "dayname_to", "day_names"),
                 "DayNum": (self.day, "day_from", "day_to", "cur_days")}
        mode = modes.get(section.text_of("day_name"))
        if mode is None:
            return False
        current, first, last, entries = mode
        if between:
            return section.int_of(first) <= current <= section.int_of(last)
        return compare_with_list(self.comparator, current, _entries(section, entries))

    def if_date(self) -> bool:
        today = make_time(self.year, self.month, self.day, 0, 0, 0, -1)
        if self.comparator == "BT":
            section = self._section("date_between")
            first, last = (make_time(section.int_of(f"date_{end}_yy"), section.int_of(f"date_{end}_mm"),
                                     section.int_of(f"date_{end}_dd"), 0, 0, 0, -1) for end in ("from", "to"))
            return first <= today <= last
        section = self._section("date_current")
        year, month, day = (section.int_of(f"date_curr_{field}") for field in ("yy", "mm", "dd"))
        if min(year, month, day) <= 0:
            return False
        return compare(self.comparator, today, make_time(year, month, day, 0, 0, 0, -1))

    def if_leap(self) -> bool:
        return sun.is_leap_year(self.year)

    def if_time(self) -> bool:
        return self._clock_test() or self._sun_test()

    def _clock_test(self) -> bool:
        time_today = self.agent.event_time_today
        if self.comparator == "BT":
            offset_to = self.root.int_of("offset_to")
            if offset_to > 1440:
                offset_to -= 1440
            first = time_today(CLOCK, self.root.int_of("offset_from"))
            last = time_today(CLOCK, offset_to)
            if last < first:
                return self.now >= first or self.now <= last
            return first <= self.now <= last
        minutes = self.root.int_of("comp_time")
        if self.comparator not in _COMPARATORS or minutes < 1:
            return False
        target = time_today(CLOCK, minutes)
        if self.comparator in ("EQ", "NE"):
            return compare(self.comparator, clib.hour_minute(self.now), clib.hour_minute(target))
        return compare(self.comparator, self.now, target)

    def _sun_test(self) -> bool:
        kind = self.root.text_of("type")
        time_today = self.agent.event_time_today
        if kind in ("Day", "Night"):
            sunrise, sunset = time_today(SUNRISE, 0), time_today(SUNSET, 0)
            if kind == "Day":
                return sunrise <= self.now <= sunset
            return self.now < sunrise or self.now > sunset
        if kind != "Within":
            return False
        if self._is_missing("offset_type"):
            return False
        base = SUNRISE if self.root.text_of("offset_type") == "1" else SUNSET
        sign = 0 if self._is_missing("offset") else -1 if self.root.text_of("offset") == "Before" else 1
        one = time_today(base, 0)
        other = time_today(base, clib.int32(sign * self.root.int_of("offset_minutes")))
        return min(one, other) <= self.now <= max(one, other)


_KINDS = {"IF_TIME": Condition.if_time, "IF_TODAY": Condition.if_today, "IF_DATE": Condition.if_date,
          "IF_MONTH": Condition.if_month, "IF_YEAR": Condition.if_year, "IF_LEAP": Condition.if_leap}


def test_condition(agent, name: str, params: Dict[str, str]) -> bool:
    """Whether the condition holds now; False, with a log line, when its text does not parse."""
    text = params.get("CONDITIONAL_XML", "") or params.get("TIME_XML", "")
    root = parse(text)
    if root is None:
        agent.host.log_message("Unable to parse conditional in scheduler: " + text)
        return False
    kind = _KINDS.get(name)
    return kind(Condition(agent, root)) if kind else False


# Exported comparison functions ----------------------------------------------------------------------

def _between(first: int, current: int, last: int) -> int:
    return int(first <= current <= last)


def compare_clock_time(now: int, first: int, last: int) -> int:
    return _between(first, now, last)


def compare_today(now: int, first: int, last: int) -> int:
    here = clib.local(now)
    return _between(first, here.weekday if here else 0, last)


def compare_date(now: int, first: int, last: int) -> int:
    return _between(first, clib.civil_day(now)[2], last)


def compare_month(now: int, first: int, last: int) -> int:
    return _between(first, clib.civil_day(now)[1], last)


def compare_year(now: int, first: int, last: int) -> int:
    return _between(first, clib.civil_day(now)[0], last)


def compare_leap(now: int) -> int:
    here = clib.local(now)
    return int(here is None or sun.is_leap_year(here.year))


def compare_astro_clock_time(now: int, instant: int, latitude: float, longitude: float) -> int:
    """1 when `instant` is at or before today's sunset at the site."""
    day = clib.civil_day(now)
    latitude, longitude = sun.fixup_lat_and_long(sun.single(latitude), sun.single(longitude))
    minutes = sun.sun_minutes(sun.day_of_year(*day), latitude, longitude, sunset=True)
    if not math.isfinite(minutes):
        return 0
    return int(instant <= sun_instant(now, day, minutes))


COMPARISONS = {
    "CompareClockTime": (compare_clock_time, (int, int)),
    "CompareToday": (compare_today, (int, int)),
    "CompareDate": (compare_date, (int, int)),
    "CompareMonth": (compare_month, (int, int)),
    "CompareYear": (compare_year, (int, int)),
    "CompareLeap": (compare_leap, ()),
    "CompareAstroClockTime": (compare_astro_clock_time, (int, float, float)),
}
"""Each function by its exported name, with the types of its arguments after the current instant."""
