#pragma once

#include "vexalink_agent_scheduler/vxw/VxTime.h"

/// A civil day of the local calendar as recurrence rules see it. All fields are 0 where the instant
/// it was asked for cannot be converted.
struct CivilDay {
  long long days = 0;  ///< since 1970-01-01
  int year = 0;        ///< full year
  signed char month = 0;
  signed char day = 0;
  signed char weekday = 0;  ///< 1 = Sunday .. 7 = Saturday

  /// The local day of an instant.
  static CivilDay Of(VxTime instant);

  bool IsKnown() const { return month != 0; }
  /// Months since January of year 0.
  long long Months() const { return year * 12LL + month - 1; }
  /// The same date; of two unknown ones too.
  bool IsSameDate(const CivilDay& other) const {
    return year == other.year && month == other.month && day == other.day;
  }
};
