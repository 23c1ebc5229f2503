#pragma once

/// Weeks from the week of a start to the week of the day that lies `days` (0 or more) after it;
/// weeks begin on Sunday. `startWeekday` is 1 = Sunday .. 7 = Saturday, or 0 where it is not known.
inline long long WeeksSinceStart(long long days, int startWeekday) {
  return days / 7 + (startWeekday + days % 7 >= 8 ? 1 : 0);
}
