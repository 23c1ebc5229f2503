"""Sunrise and sunset in single precision: the NOAA approximation cut to its first two harmonics.

All results are minutes after 00:00 UTC as float32 values, NaN where the sun does not rise or set.
Every operation is rounded to float32, in the order the formulas are written in, so that the answers
equal those of `float` arithmetic in C++ bit for bit.
"""

import ctypes
import math
from functools import lru_cache

_LIBM = ctypes.CDLL("libm.so.6")
for _name in ("cosf", "tanf", "acosf"):
    _function = getattr(_LIBM, _name)
    _function.argtypes = [ctypes.c_float]
    _function.restype = ctypes.c_float
_LIBM.sincosf.argtypes = [ctypes.c_float, ctypes.POINTER(ctypes.c_float), ctypes.POINTER(ctypes.c_float)]
_LIBM.sincosf.restype = None

DAYS_BEFORE_MONTH = (0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334)
LATITUDE_LIMIT = 85.0
LONGITUDE_LIMIT = 175.0
NORTHERN_RECENT_DAYS = range(80, 267)
SOUTHERN_NEXT_DAYS = range(83, 264)


def single(value: float) -> float:
    """`value` rounded to float32."""
    return ctypes.c_float(value).value


_RADIANS_PER_DAY = single(0.017214207)
_PI = single(3.1415927)
_COS_ZENITH = single(-0.014538058)
_DECLINATION = [single(x) for x in (0.006918, 0.399912, 0.070257, 0.006758, 0.000907)]
_EQUATION_OF_TIME = [single(x) for x in (7.5e-5, 0.001868, 0.032077, 0.014615, 0.040849)]
_EQUATION_OF_TIME_SCALE = single(229.18)


def is_leap_year(year: int) -> bool:
    return (year % 4 == 0 and year % 100 != 0) or year % 400 == 0


def day_of_year(year: int, month: int, day: int) -> int:
    """1 for 1 January; a year that could not be converted (month and day 0 as well) gives 0."""
    days = day + (DAYS_BEFORE_MONTH[month - 1] if month >= 1 else 0)
    return days + 1 if month > 2 and is_leap_year(year) else days


def _sincos(angle: float):
    sine, cosine = ctypes.c_float(), ctypes.c_float()
    _LIBM.sincosf(angle, ctypes.byref(sine), ctypes.byref(cosine))
    return sine.value, cosine.value


def _declination_and_equation_of_time(day_index: int):
    gamma = single(_RADIANS_PER_DAY * single(day_index))
    sin1, cos1 = _sincos(gamma)
    sin2, cos2 = _sincos(single(2.0 * gamma))
    k0, k1, k2, k3, k4 = _DECLINATION
    declination = single(k0 - single(k1 * cos1))
    declination = single(declination + single(k2 * sin1))
    declination = single(declination - single(k3 * cos2))
    declination = single(declination + single(k4 * sin2))
    k0, k1, k2, k3, k4 = _EQUATION_OF_TIME
    equation = single(k0 + single(k1 * cos1))
    equation = single(equation - single(k2 * sin1))
    equation = single(equation - single(k3 * cos2))
    equation = single(equation - single(k4 * sin2))
    return declination, single(_EQUATION_OF_TIME_SCALE * equation)


def _one_pass(day_index: int, latitude: float, longitude: float, sunset: bool) -> float:
    declination, equation_of_time = _declination_and_equation_of_time(day_index)
    phi = single(single(latitude * _PI) / 180.0)
    first = single(_COS_ZENITH / single(_LIBM.cosf(phi) * _LIBM.cosf(declination)))
    second = single(_LIBM.tanf(phi) * _LIBM.tanf(declination))
    hour_angle = _LIBM.acosf(single(first - second))
    if sunset:
        hour_angle = -hour_angle
    degrees = single(single(hour_angle * 180.0) / _PI)
    minutes = single(single(-longitude - degrees) * 4.0)
    return single(single(minutes + 720.0) - equation_of_time)


@lru_cache(maxsize=None)
def _calc(day: int, latitude: float, longitude: float, sunset: bool) -> float:
    provisional = _one_pass(day if sunset else day - 1, latitude, longitude, sunset)
    if not math.isfinite(provisional):
        return math.nan
    whole_days = int(int(provisional) / 60)
    whole_days = int(whole_days / 24)
    return _one_pass(day - 1 + whole_days, latitude, longitude, sunset)


def calc_sunrise_gmt(day: int, latitude: float, longitude: float) -> float:
    return _calc(day, latitude, longitude, sunset=False)


def calc_sunset_gmt(day: int, latitude: float, longitude: float) -> float:
    return _calc(day, latitude, longitude, sunset=True)


def find_next(day: int, latitude: float, longitude: float, sunset: bool) -> float:
    """The first sun event on `day` or later; day 366 is tried in every year, then comes day 1."""
    for _ in range(367):
        minutes = _calc(day, latitude, longitude, sunset)
        if math.isfinite(minutes):
            return minutes
        day = 1 if day == 366 else day + 1
    return math.nan


def find_recent(day: int, latitude: float, longitude: float, sunset: bool) -> float:
    """The last sun event on `day` or earlier; before day 1 comes day 365."""
    for _ in range(367):
        minutes = _calc(day, latitude, longitude, sunset)
        if math.isfinite(minutes):
            return minutes
        day = 365 if day == 1 else day - 1
    return math.nan


def fixup_lat_and_long(latitude: float, longitude: float):
    """Both clamped to what the formulas stand; NaN stays NaN."""
    if latitude > LATITUDE_LIMIT:
        latitude = LATITUDE_LIMIT
    elif latitude < -LATITUDE_LIMIT:
        latitude = -LATITUDE_LIMIT
    if longitude > LONGITUDE_LIMIT:
        longitude = LONGITUDE_LIMIT
    elif longitude < -LONGITUDE_LIMIT:
        longitude = -LONGITUDE_LIMIT
    return latitude, longitude


def sun_minutes(day: int, latitude: float, longitude: float, sunset: bool) -> float:
    """The sun event of `day`; where there is none, that of the nearest day on the season's side.

    The search begins on `day` itself, so asking for it only where the plain answer is missing gives
    what asking for it everywhere beyond the polar circles gives.
    """
    minutes = _calc(day, latitude, longitude, sunset)
    if math.isfinite(minutes):
        return minutes
    if latitude > 0:
        find = find_recent if day in NORTHERN_RECENT_DAYS else find_next
    elif latitude < 0:
        find = find_next if day in SOUTHERN_NEXT_DAYS else find_recent
    else:
        return math.nan
    return find(day, latitude, longitude, sunset)


def split_minutes(minutes: float):
    """Hours, minutes and seconds of `minutes`, each truncated toward zero in single precision."""
    hours = single(minutes / 60.0)
    hour = int(hours)
    minute_part = single(single(hours - hour) * 60.0)
    minute = int(minute_part)
    second = int(single(single(minute_part - minute) * 60.0))
    return hour, minute, second
