#pragma once

#include <string>
#include <vector>

#include "controller/EventElement.h"

namespace controller {

// What the fields of an event may hold, for its reading and its writing alike.

constexpr int kMinutesPerDay = 1440;
constexpr int kLeastClockMinutes = -kMinutesPerDay;
constexpr int kMostClockMinutes = 2 * kMinutesPerDay;
constexpr int kMostSunMinutes = kMinutesPerDay;
constexpr int kMostSpread = 720;
constexpr int kMostEvery = 1000000;
constexpr std::size_t kMostDescription = 200;
constexpr int kLastWeek = 5;
constexpr unsigned kAllWeekdays = 0x7F;
constexpr DayFields kFirstStart{1970, 1, 2};
constexpr DayFields kLastDayOfAll{9999, 12, 31};

/// The scheduler keeps events of this description to itself: they never reach its persisted state.
constexpr const char* kNeverPersisted = "hostcore_mediascan_event";

inline const std::vector<std::string> kBaseNames = {"clock", "sunrise", "sunset"};
/// The first is repeat kind 1.
inline const std::vector<std::string> kUnitNames = {"day", "week", "month", "year"};
/// The first is bit 0, and weekday 1.
inline const std::vector<std::string> kWeekdayNames = {"sun", "mon", "tue", "wed",
                                                       "thu", "fri", "sat"};

inline bool Repeats(const EventElement& event, RepeatKind kind) {
  return event.frequency == static_cast<int>(kind);
}

/// Whether the event is by week of the month: only months and years can be.
inline bool IsByWeek(const EventElement& event) {
  return event.start_period != 0 &&
         (Repeats(event, RepeatKind::kMonthly) || Repeats(event, RepeatKind::kYearly));
}

}  // namespace controller
