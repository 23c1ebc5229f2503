#pragma once

#include <compare>
#include <optional>
#include <string>

#include "host/VxXml.h"

namespace controller {

/// The base of an event's time of day.
enum class OffsetBase : int { kClock = 0, kSunrise = 1, kSunset = 2 };
/// How an event repeats.
enum class RepeatKind : int { kOnce = 0, kDaily = 1, kWeekly = 2, kMonthly = 3, kYearly = 4 };

/// A civil day as the element writes it; nothing says that there is such a day.
struct DayFields {
  int year = 0;
  int month = 0;
  int day = 0;

  auto operator<=>(const DayFields&) const = default;
};

/// The scheduler's "event" element, as the scheduler reads it: what is missing is 0, and of several
/// children with one name the first counts. Fields have the element's names and units.
struct EventElement {
  unsigned long eventid = 0;
  std::string description;
  int offset = 0;
  /// Minutes after local midnight, or after sunrise or sunset.
  int offset_minutes = 0;
  DayFields start;
  int start_period = 0;
  /// 1 = Sunday .. 7 = Saturday.
  int start_weekday = 0;
  /// The random spread in minutes.
  int randomize = 0;
  int frequency = 0;
  int rate = 0;
  /// Bit 0 = Sunday .. bit 6 = Saturday.
  unsigned daymask = 0;
  std::optional<DayFields> end;

  bool operator==(const EventElement&) const = default;
};

EventElement ReadEventElement(const VxXML::INode& event);

/// The element that reads as `event`; without "eventid" where that is 0.
vx::auto_com<VxXML::INode> MakeEventElement(const EventElement& event);

/// When an event comes next, local time to the minute, from the scheduler's answers.
struct NextOccurrence {
  DayFields day;
  int hour = 0;
  int minute = 0;

  auto operator<=>(const NextOccurrence&) const = default;
};

/// The event's "next_occurence", or nothing where it does not come again.
std::optional<NextOccurrence> ReadNextOccurrence(const VxXML::INode& event);

/// "2024-03-06"
std::string DayText(const DayFields& day);
/// "2024-03-06 07:05"
std::string NextOccurrenceText(const NextOccurrence& next);

}  // namespace controller
