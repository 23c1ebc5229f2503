#pragma once

#include <compare>
#include <ctime>

/// An instant: seconds since 1970-01-01 00:00:00 UTC, read through the local calendar. Every field
/// is derived when asked for, so it follows the time zone that is then in force. Copied by value.
/// From the driver's thread only: the C library's conversions share one buffer.
class VxTime {
 public:
  /// The epoch.
  constexpr VxTime() = default;
  constexpr explicit VxTime(std::time_t seconds) : seconds_(seconds) {}
  /// From local fields: full year, month from 1, day of month, time of day; `isdst` 1 or 0 forces
  /// daylight-saving or standard time, -1 lets the calendar decide (of a time that occurs twice,
  /// the first). Fields out of range roll over: day 0 is the last of the month before, minute 1440
  /// is midnight of the next day. -1 seconds where there is no such instant.
  VxTime(int year, int month, int day, int hour, int minute, int second, int isdst);

  /// The present instant.
  static VxTime GetCurrentTime() { return VxTime(std::time(nullptr)); }

  /// Local fields, copied into `out`; answers `out`, or null (and `out` untouched) where the C
  /// library cannot convert the instant. With a null `out` the answer is the C library's own
  /// buffer, which the next conversion overwrites.
  std::tm* GetLocalTm(std::tm* out) const;

  /// Full year, month 1..12 and day of month 1..31; 0 where the instant cannot be converted.
  int GetYear() const;
  int GetMonth() const;
  int GetDay() const;
  /// Hour 0..23 and minute 0..59; -1 where the instant cannot be converted.
  int GetHour() const;
  int GetMinute() const;

  /// Seconds since the epoch.
  constexpr std::time_t Seconds() const { return seconds_; }

  friend constexpr auto operator<=>(VxTime, VxTime) = default;

 private:
  std::time_t seconds_ = 0;
};

/// A civil day: two are equal when the local dates of their instants are, whatever the time of day.
struct YMD {
  YMD(VxTime instant) : time(instant) {}
  bool operator==(YMD other) const;

  VxTime time;
};
