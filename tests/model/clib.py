"""The C library, reached through ctypes: local time, number reading, rand(), and C's integer rules.

The controller answers calendar questions with its C library, so the model asks the very same functions;
what differs between the two programs is then never the time zone data. Everything here is stateless but
for the zone, which belongs to the process: change it with `set_zone` only, since answers are remembered.
"""

import ctypes
import os
import re
import time
from typing import NamedTuple, Optional

SECONDS_PER_DAY = 86400

# The global scope rather than libc.so.6: an executable may hold its own copy of `tzname`.
_LIBC = ctypes.CDLL(None)


class _Tm(ctypes.Structure):
    _fields_ = [(name, ctypes.c_int) for name in
                ("tm_sec", "tm_min", "tm_hour", "tm_mday", "tm_mon", "tm_year", "tm_wday", "tm_yday", "tm_isdst")]
    _fields_ += [("tm_gmtoff", ctypes.c_long), ("tm_zone", ctypes.c_char_p)]


_LIBC.localtime.argtypes = [ctypes.POINTER(ctypes.c_long)]
_LIBC.localtime.restype = ctypes.POINTER(_Tm)
_LIBC.mktime.argtypes = [ctypes.POINTER(_Tm)]
_LIBC.mktime.restype = ctypes.c_long
_LIBC.strtod.argtypes = [ctypes.c_char_p, ctypes.c_void_p]
_LIBC.strtod.restype = ctypes.c_double
_TZNAME = (ctypes.c_char_p * 2).in_dll(_LIBC, "tzname")
_TIMEZONE = ctypes.c_long.in_dll(_LIBC, "timezone")


class LocalTime(NamedTuple):
    """A broken-down local time: full year, month 1..12, weekday 1 = Sunday .. 7 = Saturday."""

    year: int
    month: int
    day: int
    hour: int
    minute: int
    second: int
    weekday: int
    isdst: int
    gmtoff: int


# Integers -------------------------------------------------------------------------------------------

def int32(value: int) -> int:
    """`value` narrowed to a signed 32-bit int."""
    return (value + 2**31) % 2**32 - 2**31


def uint32(value: int) -> int:
    """`value` narrowed to an unsigned 32-bit int."""
    return value % 2**32


def uint64(value: int) -> int:
    """`value` narrowed to an unsigned 64-bit long."""
    return value % 2**64


def c_div(a: int, b: int) -> int:
    """a / b, truncated toward zero as C does it."""
    quotient = abs(a) // abs(b)
    return quotient if (a < 0) == (b < 0) else -quotient


def c_mod(a: int, b: int) -> int:
    """a % b with the sign of `a`, as C does it."""
    return a - c_div(a, b) * b


_NUMBER = re.compile(r"[ \t\n\v\f\r]*([+-]?)([0-9]+)")


def strtol(text: str) -> int:
    """strtol(text, nullptr, 10): 0 without digits, saturated at 64 bits."""
    match = _NUMBER.match(text)
    if not match:
        return 0
    value = int(match[2])
    return max(-value, -2**63) if match[1] == "-" else min(value, 2**63 - 1)


def strtoul(text: str) -> int:
    """strtoul(text, nullptr, 10): a minus sign negates modulo 2^64; ULONG_MAX once the digits overflow."""
    match = _NUMBER.match(text)
    if not match:
        return 0
    value = int(match[2])
    if value >= 2**64:
        return 2**64 - 1
    return uint64(-value) if match[1] == "-" else value


def strtod(text: str) -> float:
    """strtod(text, nullptr), hexadecimal forms, "inf" and "nan" included."""
    return _LIBC.strtod(text.encode(), None)


def rand() -> int:
    """The C library's rand()."""
    return _LIBC.rand()


def srand(seed: int) -> None:
    """Seeds rand(), the value narrowed to unsigned int."""
    _LIBC.srand(ctypes.c_uint(uint32(seed)))


# Local time -----------------------------------------------------------------------------------------

_local_memo = {}
_mktime_memo = {}
_MEMO_LIMIT = 300_000


def set_zone(zone: str) -> None:
    """Makes `zone` the process's time zone."""
    os.environ["TZ"] = zone
    time.tzset()
    _local_memo.clear()
    _mktime_memo.clear()


def _convert(instant: int) -> Optional[LocalTime]:
    if not -2**63 <= instant < 2**63:
        return None
    answer = _LIBC.localtime(ctypes.byref(ctypes.c_long(instant)))
    if not answer:
        return None
    tm = answer.contents
    return LocalTime(int32(tm.tm_year + 1900), tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec,
                     tm.tm_wday + 1, tm.tm_isdst, tm.tm_gmtoff)


def local(instant: int) -> Optional[LocalTime]:
    """localtime(instant), or None where the C library cannot convert it."""
    if instant not in _local_memo:
        if len(_local_memo) > _MEMO_LIMIT:
            _local_memo.clear()
        _local_memo[instant] = _convert(instant)
    return _local_memo[instant]


def civil_day(instant: int) -> tuple:
    """(year, month, day) of `instant` in local time; (0, 0, 0) where it cannot be converted."""
    answer = local(instant)
    return answer[:3] if answer else (0, 0, 0)


def hour_minute(instant: int) -> tuple:
    """(hour, minute) of `instant` in local time; (-1, -1) where it cannot be converted."""
    answer = local(instant)
    return (answer.hour, answer.minute) if answer else (-1, -1)


def is_dst(instant: int) -> bool:
    """Whether daylight-saving time is in force at `instant`."""
    answer = local(instant)
    return answer is not None and answer.isdst == 1


def timezone_name(now: int) -> str:
    """The name of the zone in force at `now`, as tzname gives it."""
    # Never from the memo: the conversion itself is what sets tzname.
    answer = _convert(now)
    name = _TZNAME[1 if answer and answer.isdst == 1 else 0]
    return (name or b"").decode("utf-8", "replace")


def seconds_west() -> int:
    """The C library's `timezone`, after tzset()."""
    _LIBC.tzset()
    return _TIMEZONE.value


def make_time(year: int, month: int, day: int, hour: int, minute: int, second: int, isdst: int) -> int:
    """mktime of a full year and a month 1..12; out-of-range fields roll over; -1 on failure.

    With `isdst` -1, a local time that occurs twice is the first of its two instants.
    """
    fields = (year, month, day, hour, minute, second, isdst)
    if fields not in _mktime_memo:
        if len(_mktime_memo) > _MEMO_LIMIT:
            _mktime_memo.clear()
        answer = _mktime(fields)
        _mktime_memo[fields] = _first_of_two(answer) if isdst == -1 else answer
    return _mktime_memo[fields]


def _mktime(fields: tuple) -> int:
    year, month, day, hour, minute, second, isdst = fields
    tm = _Tm()
    tm.tm_year = int32(year - 1900)
    tm.tm_mon = int32(month - 1)
    tm.tm_mday = int32(day)
    tm.tm_hour = int32(hour)
    tm.tm_min = int32(minute)
    tm.tm_sec = int32(second)
    tm.tm_isdst = isdst
    return _LIBC.mktime(ctypes.byref(tm))


def _first_of_two(instant: int) -> int:
    """The earliest instant within the three hours before `instant` that shows the same local fields."""
    here = _convert(instant)
    if here is None:
        return instant
    # An earlier instant shows the same fields exactly where the offset was larger by the difference,
    # so it is enough to try the offsets in force during the three hours.
    offsets = {_convert(instant - back).gmtoff for back in range(0, 3 * 3600 + 1, 600)}
    for offset in sorted(offsets, reverse=True):
        earlier = instant - (offset - here.gmtoff)
        if instant - 3 * 3600 <= earlier < instant and _convert(earlier)[:6] == here[:6]:
            return earlier
    return instant
