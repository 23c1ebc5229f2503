#pragma once

#include "host/Export.h"

/// Tests of the present local time that other code in the controller may call by name. Each reads
/// the clock itself; ranges include both ends and do not wrap. 1 where the test holds, else 0.
/// Where the C library cannot convert the present moment, it counts as 0 in the ranges. From the
/// driver's thread only.

/// Whether now lies between two instants, in seconds since the epoch.
VX_API int CompareClockTime(int from, int to);
/// Whether today's weekday lies between two (1 = Sunday .. 7 = Saturday).
VX_API int CompareToday(int from, int to);
/// Whether today's day of the month lies between two.
VX_API int CompareDate(int from, int to);
/// Whether the present month lies between two (1..12).
VX_API int CompareMonth(int from, int to);
/// Whether the present (full) year lies between two.
VX_API int CompareYear(int from, int to);
/// Whether the present year is a leap year; 1 also where it is not known.
VX_API int CompareLeap();
/// Whether instant `t` is not later than today's sunset at a site in degrees; 0 where there is no
/// such time.
VX_API int CompareAstroClockTime(int t, double latitude, double longitude);
