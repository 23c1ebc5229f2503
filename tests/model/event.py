"""One scheduled event: its fields, its XML element, its recurrence rule and its time of day.

Instants are plain integers (seconds since the epoch). `host` is whatever has `now` (the clock) and
`assert_write(file, line)`; assertion records are part of the behaviour and come in the order in which
the steps meet them.
"""

import math
from typing import Optional

import clib
import sun
from clib import SECONDS_PER_DAY, c_div, c_mod, int32, make_time, uint32
from xmltree import Node, parse

NEVER_TIME = 2**31 - 1 - SECONDS_PER_DAY
SOURCE_FILE = "vexalink_agent_scheduler/vxw/ScheduledEvent"

ONCE, DAILY, WEEKLY, MONTHLY, YEARLY = range(5)
CLOCK, SUNRISE, SUNSET = range(3)
LAST = 5

NO_DAY_LEFT = 10**15
"""Answer of `Event.barren_days`: nothing on any later day."""

_DAYS_PER_UNIT = {DAILY: 1, WEEKLY: 7, MONTHLY: 31, YEARLY: 366}
_MONTH_LENGTHS = (31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31)


def end_of_day(instant: int) -> int:
    """23:59:59 of the local day of `instant`."""
    return make_time(*clib.civil_day(instant), 23, 59, 59, -1)


def nth_day_of_month(month: int, weekday: int, year: int, period: int) -> int:
    """Local midnight of the `period`-th `weekday` (1 = Sunday) of the month, the last one for period 5; or 0.

    The walk goes in steps of 86400 s: once the clocks have gone back, an instant is 23:00 of the day
    before and one weekday is met twice. Kept: schedules written by older controllers rely on it.
    """
    if not 1 <= month <= 12:
        return 0
    days = 29 if month == 2 and sun.is_leap_year(year) else _MONTH_LENGTHS[month - 1]
    instant = make_time(year, month, 1, 0, 0, 0, -1)
    last = make_time(year, month, days, 23, 59, 59, -1)
    found = count = 0
    while instant <= last:
        here = clib.local(instant)
        if here and here.weekday == weekday:
            found = instant
            count += 1
            if count == period and period != LAST:
                break
        instant += SECONDS_PER_DAY
    return found


def calculate_event_time(host, date: int, offset: int, minutes: int, latitude: float, longitude: float) -> int:
    """The instant on the local day of `date` at `minutes` after local midnight, sunrise or sunset."""
    here = clib.local(date)
    # A date that cannot be converted counts as tm_year -1900, tm_mon -1, tm_mday 0.
    year, month, day = here[:3] if here else (0, 0, 0)
    if offset == CLOCK:
        return make_time(year, month, day, 0, minutes, 0, -1)
    if offset not in (SUNRISE, SUNSET):
        host.assert_write(SOURCE_FILE, 233)
        return date
    latitude, longitude = sun.fixup_lat_and_long(sun.single(latitude), sun.single(longitude))
    utc_minutes = sun.sun_minutes(sun.day_of_year(year, month, day), latitude, longitude, offset == SUNSET)
    if not math.isfinite(utc_minutes):
        return -1
    return sun_instant(host.now, (year, month, day), utc_minutes) + minutes * 60


def sun_instant(now: int, day: tuple, utc_minutes: float) -> int:
    """The instant of `utc_minutes` on the civil `day`, with the daylight-saving flag of `now`."""
    hour, minute, second = sun.split_minutes(utc_minutes)
    daylight_saving = 1 if clib.is_dst(now) else 0
    west = clib.seconds_west()
    hour = hour - c_div(west, 3600) + daylight_saving
    minute = minute - c_div(c_mod(west, 3600), 60)
    return make_time(*day, hour, minute, second, daylight_saving)


class Event:
    """One scheduled event."""

    def __init__(self, host, latitude: float, longitude: float):
        self.host = host
        self.latitude = latitude
        self.longitude = longitude
        self.eventid = 0
        self.description = ""
        self.start = 0
        self.start_period = 0
        self.start_weekday = 0
        self.offset = CLOCK
        self.offset_minutes = 0
        self.randomize = 0
        self.frequency = ONCE
        self.rate = 0
        self.daymask = 0
        self.has_end_date = False
        self.end_date = 0
        self.fire_time = 0

    @classmethod
    def new_daily_event(cls, host, description, rate, minutes, latitude, longitude) -> "Event":
        event = cls(host, latitude, longitude)
        event.description = description
        event.frequency = DAILY
        event.rate = int32(rate)
        event.offset_minutes = int32(minutes)
        event.start = host.now  # the instant, not local midnight
        event.end_date = NEVER_TIME
        return event

    @classmethod
    def new_days_of_week_event(cls, host, description, daymask, minutes, latitude, longitude) -> "Event":
        event = cls.new_daily_event(host, description, 1, minutes, latitude, longitude)
        event.frequency = WEEKLY
        event.daymask = uint32(daymask)
        return event

    @classmethod
    def from_xml(cls, host, root: Node, latitude: float, longitude: float) -> "Event":
        event = cls(host, latitude, longitude)
        event._read(root)
        return event

    def _assert(self, line: int) -> None:
        self.host.assert_write(SOURCE_FILE, line)

    # XML ----------------------------------------------------------------------------------------

    def _read(self, root: Node) -> None:
        if root.name != "event":
            self._assert(55)
            return
        self.eventid = root.ulong_of("eventid")
        self.description = root.text_of("description")
        start = root.child("start")
        if start is None:
            self._assert(66)
        elif not start.is_empty():
            self._read_start(start)
        self._read_repeat(root.child("repeat"))

    def _read_start(self, start: Node) -> None:
        self.offset = start.int_of("offset")
        self.offset_minutes = start.int_of("offset_minutes")
        date = start.child("start_date")
        if date is None:
            self._assert(74)
        elif not date.is_empty():
            self._read_start_date(date)
        self.randomize = start.int_of("randomize")

    def _read_start_date(self, date: Node) -> None:
        day = date.int_of("start_day")
        month = date.int_of("start_month")
        year = date.int_of("start_year")
        self.start_weekday = date.int_of("start_weekday")
        self.start_period = date.int_of("start_period")
        if self.start_period != 0:
            day = clib.civil_day(nth_day_of_month(month, self.start_weekday, year, self.start_period))[2]
        self.start = make_time(year, month, day, 0, 0, 0, -1)

    def _read_repeat(self, repeat: Optional[Node]) -> None:
        if repeat is None or repeat.is_empty():
            self.frequency = ONCE
            self.rate = 0
            self.end_date = end_of_day(NEVER_TIME)
            return
        self.frequency = repeat.int_of("frequency")
        self.rate = repeat.int_of("rate")
        if self.rate < 1 and not (self.frequency == ONCE and self.rate == 0):
            self._assert(146)
        self.daymask = repeat.uint_of("daymask") if self.frequency == WEEKLY else 0
        end = repeat.child("end_date")
        if end is None or end.is_empty():
            self.end_date = end_of_day(NEVER_TIME)
            return
        self.has_end_date = True
        self.end_date = make_time(end.int_of("end_year"), end.int_of("end_month"), end.int_of("end_day"),
                                  23, 59, 59, -1)

    def to_xml(self) -> Node:
        root = Node("event")
        root.add("eventid", self.eventid)
        root.add("buttonbindingid", self.eventid)
        root.add("description", self.description)
        self._write_start(root.add("start"))
        occurrence = self.next_occurrence()
        if occurrence is not None:
            self._write_next_occurrence(root.add("next_occurence"), occurrence)
        if self.frequency != ONCE:
            self._write_repeat(root.add("repeat"))
        return root

    def _write_start(self, start: Node) -> None:
        start.add("offset", self.offset)
        start.add("offset_minutes", self.offset_minutes)
        year, month, day = clib.civil_day(self.start)
        date = start.add("start_date")
        date.add("start_day", day)
        date.add("start_month", month)
        date.add("start_year", year)
        date.add("start_period", self.start_period)
        date.add("start_weekday", self.start_weekday)
        start.add("randomize", self.randomize)

    def _write_next_occurrence(self, node: Node, occurrence: int) -> None:
        write_time(node, clib.civil_day(occurrence), occurrence)
        node.add("timezone", clib.timezone_name(self.host.now))

    def _write_repeat(self, repeat: Node) -> None:
        repeat.add("frequency", self.frequency)
        repeat.add("rate", self.rate)
        repeat.add("daymask", self.daymask)
        if self.has_end_date:
            year, month, day = clib.civil_day(self.end_date)
            end = repeat.add("end_date")
            end.add("end_month", month)
            end.add("end_day", day)
            end.add("end_year", year)

    # Recurrence ---------------------------------------------------------------------------------

    def occurs_on_date(self, date: int) -> bool:
        """Whether the event happens on the local day of `date`."""
        if date < self.start or date > self.end_date:
            return False
        if self.frequency == ONCE:
            return clib.civil_day(self.start) == clib.civil_day(date)
        rule = {DAILY: self._occurs_daily, WEEKLY: self._occurs_weekly,
                MONTHLY: self._occurs_monthly, YEARLY: self._occurs_yearly}.get(self.frequency)
        return rule(date) if rule else False

    def _days_since_start(self, date: int) -> int:
        # Seconds / 86400, not civil days: just after a change to daylight-saving time a local midnight
        # counts one day short.
        return c_div(date - self.start, SECONDS_PER_DAY)

    def _occurs_daily(self, date: int) -> bool:
        if self.rate == 0:
            self._assert(363)
        days = self._days_since_start(date)
        if days < 0:
            self._assert(368)
        return self.rate != 0 and days % self.rate == 0

    def _weeks_since_start(self, days: int) -> int:
        first = clib.local(self.start)
        weekday = first.weekday if first else 0
        return c_div(days, 7) + (1 if weekday + c_mod(days, 7) >= 8 else 0)

    def _occurs_weekly(self, date: int) -> bool:
        if self.rate == 0:
            self._assert(379)
        days = self._days_since_start(date)
        if days < 0:
            self._assert(384)
        if self.rate == 0 or self._weeks_since_start(days) % self.rate != 0:
            return False
        here = clib.local(date)
        return here is not None and bool(self.daymask >> (here.weekday - 1) & 1)

    def _occurs_monthly(self, date: int) -> bool:
        if self.rate == 0:
            self._assert(405)
            return False
        start_year, start_month, start_day = clib.civil_day(self.start)
        year, month, day = clib.civil_day(date)
        if ((year - start_year) * 12 + month - start_month) % self.rate != 0:
            return False
        if self.start_period == 0:
            return start_day == day
        return self._is_nth_day(date, month, year)

    def _occurs_yearly(self, date: int) -> bool:
        if self.rate == 0:
            self._assert(427)
            return False
        start_year, start_month, start_day = clib.civil_day(self.start)
        year, month, day = clib.civil_day(date)
        if (year - start_year) % self.rate != 0:
            return False
        if self.start_period == 0:
            return (start_month, start_day) == (month, day)
        return self._is_nth_day(date, start_month, year)

    def _is_nth_day(self, date: int, month: int, year: int) -> bool:
        nth = nth_day_of_month(month, self.start_weekday, year, self.start_period)
        return clib.civil_day(nth) == clib.civil_day(date)

    def event_time(self, date: int) -> int:
        """The instant at which the event fires on the local day of `date`, its random spread left out."""
        return calculate_event_time(self.host, date, self.offset, self.offset_minutes, self.latitude, self.longitude)

    def next_occurrence(self) -> Optional[int]:
        """The instant of the next occurrence, or None."""
        now = self.host.now
        if self.frequency == ONCE:
            instant = self.event_time(self.start)
            return instant if instant > now else None
        if self.end_date <= now or self.frequency not in _DAYS_PER_UNIT:
            return None
        day = max(now, self.start)
        days_left = self.rate * _DAYS_PER_UNIT[self.frequency] + 1
        while days_left > 0 and day <= self.end_date:
            barren = self.barren_days(day)
            if barren:
                days_left -= barren
                day += barren * SECONDS_PER_DAY
                continue
            if self.occurs_on_date(day):
                instant = self.event_time(day)
                if instant >= now:
                    return instant
            days_left -= 1
            day += SECONDS_PER_DAY
        return None

    def barren_days(self, date: int) -> int:
        """How many steps of 86400 s from `date` on surely hold neither an occurrence nor an assertion record.

        0 means that `date` itself is to be looked at. Only there to keep long walks short; it errs on
        the low side.
        """
        if date > self.end_date or self.frequency not in range(5):
            return NO_DAY_LEFT
        if date < self.start:
            return -((date - self.start) // SECONDS_PER_DAY)
        if self.frequency == ONCE:
            return NO_DAY_LEFT if date > self.start + 3 * SECONDS_PER_DAY else 0
        rate = abs(self.rate)
        if rate <= 1:
            return 0
        days = self._days_since_start(date)
        if self.frequency == DAILY:
            return -days % rate
        if self.frequency == WEEKLY:
            return self._barren_days_weekly(days, rate)
        here, first = clib.local(date), clib.local(self.start)
        if here is None or first is None:
            return 0
        # Two days of margin for steps of 86400 s that are not civil days.
        if self.frequency == MONTHLY:
            months_to_go = -((here.year - first.year) * 12 + here.month - first.month) % rate
            return max(0, (months_to_go - 1) * 28 - 2)
        years_to_go = -(here.year - first.year) % rate
        return max(0, (years_to_go - 1) * 365 - 2)

    def _barren_days_weekly(self, days: int, rate: int) -> int:
        weeks_to_go = -self._weeks_since_start(days) % rate
        return max(0, (weeks_to_go - 1) * 7)


def write_time(node: Node, day: tuple, instant: int) -> None:
    """The five values of a civil `day` and the local time of `instant`."""
    hour, minute = clib.hour_minute(instant)
    for name, value in zip(("year", "month", "day", "hour", "min"), (*day, hour, minute)):
        node.add(name, value)


def parse_event(host, text: str, latitude: float, longitude: float) -> Optional[Event]:
    """The event that `text` holds, or None when the text is not XML."""
    root = parse(text)
    return None if root is None else Event.from_xml(host, root, latitude, longitude)
