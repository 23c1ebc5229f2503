#include "controller/EventChecks.h"

namespace controller {

namespace {

constexpr int kMinutesPerDay = 1440;
constexpr unsigned kAllWeekdays = 0x7F;
constexpr int kLastPeriod = 5;
// The scheduler's calendar ends with the largest 32-bit time, in every zone after this day.
constexpr DayFields kLastDay{2038, 1, 17};

void Note(Findings& findings, std::string text) {
  Add(findings, Finding::Kind::kNote, std::move(text));
}

void CheckTimeOfDay(const EventElement& event, Findings& findings) {
  const std::string minutes = std::to_string(event.offset_minutes);
  if (event.offset < 0 || event.offset > 2) {
    return Note(findings,
                "offset is " + std::to_string(event.offset) +
                    ", so its time cannot be worked out; give 0 (clock), 1 (sunrise) or 2 "
                    "(sunset)");
  }
  const bool clock = event.offset == 0;
  if (clock && (event.offset_minutes < 0 || event.offset_minutes >= kMinutesPerDay)) {
    Note(findings, "offset_minutes is " + minutes +
                       ", a time on another day; give 0 (00:00) to 1439 (23:59)");
  }
  if (!clock &&
      (event.offset_minutes <= -kMinutesPerDay || event.offset_minutes >= kMinutesPerDay)) {
    Note(findings, "offset_minutes is " + minutes + ", more than a day away from the sun's time");
  }
}

void CheckRate(const EventElement& event, Findings& findings) {
  if (event.rate >= 1) return;
  Note(findings, "rate is " + std::to_string(event.rate) +
                     (event.rate == 0 ? ", so it never occurs" : ", which is no interval") +
                     "; give 1 or more");
}

void CheckWeeks(const EventElement& event, Findings& findings) {
  if ((event.daymask & kAllWeekdays) == 0) {
    Note(findings, "daymask is " + std::to_string(event.daymask) +
                       " and names no weekday, so it never occurs; give the sum of 1 (Sunday), 2 "
                       "(Monday) ... 64 (Saturday)");
  } else if ((event.daymask & ~kAllWeekdays) != 0) {
    Note(findings, "daymask is " + std::to_string(event.daymask) +
                       "; only its lowest seven bits are weekdays");
  }
}

void CheckWeekOfMonth(const EventElement& event, Findings& findings) {
  if (event.start_period == 0) return;
  if (event.start_period < 0 || event.start_period > kLastPeriod) {
    Note(findings, "start_period is " + std::to_string(event.start_period) +
                       "; give 0 (by day of month), 1 to 4, or 5 (the last)");
  }
  if (event.start_weekday < 1 || event.start_weekday > 7) {
    Note(findings, "start_weekday is " + std::to_string(event.start_weekday) +
                       ", no weekday; give 1 (Sunday) to 7 (Saturday)");
  }
}

void CheckRepeat(const EventElement& event, Findings& findings) {
  switch (static_cast<RepeatKind>(event.frequency)) {
    case RepeatKind::kOnce:
      return;
    case RepeatKind::kWeekly:
      CheckWeeks(event, findings);
      break;
    case RepeatKind::kDaily:
    case RepeatKind::kMonthly:
    case RepeatKind::kYearly:
      break;
    default:
      return Note(findings,
                  "frequency is " + std::to_string(event.frequency) +
                      ", so it never occurs; give 1 (daily), 2 (weekly), 3 (monthly) or 4 "
                      "(yearly)");
  }
  CheckRate(event, findings);
}

void CheckSpan(const EventElement& event, Findings& findings) {
  if (event.end && *event.end < event.start) {
    Note(findings, "it ends on " + DayText(*event.end) + ", before it starts on " +
                       DayText(event.start) + ", so it never occurs");
  }
  if (event.start > kLastDay) {
    Note(findings, "it starts on " + DayText(event.start) + "; the scheduler's calendar ends on " +
                       DayText(kLastDay));
  }
}

}  // namespace

void CheckMeaning(const EventElement& stored, Findings& findings) {
  if (stored.description.empty()) Note(findings, "it has no description");
  if (stored.eventid > 0x7FFFFFFF) {
    Note(findings, "eventid is beyond 2147483647, which not everything that uses events can hold");
  }
  CheckTimeOfDay(stored, findings);
  CheckWeekOfMonth(stored, findings);
  CheckRepeat(stored, findings);
  CheckSpan(stored, findings);
}

}  // namespace controller
