#pragma once

/// Sunrise and sunset in two passes, each worked out from its series in single precision; nothing
/// is shared between passes, days or places. Minutes after 00:00 UTC, degrees, NaN where there is
/// none.
namespace plain {

float Sun(bool sunrise, int dayOfYear, float latitude, float longitude);

/// On this day or the nearest later (`step` 1) or earlier (-1) one that has it.
float FindSun(bool sunrise, int step, int dayOfYear, float latitude, float longitude);

}  // namespace plain
