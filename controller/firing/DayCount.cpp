#include "controller/firing/DayCount.h"

#include "controller/LocalTimeText.h"

namespace controller {

namespace {

bool Repeats(const EventElement& event, RepeatKind kind) {
  return event.frequency == static_cast<int>(kind);
}

/// Days after the Sunday on or before.
long DaysIntoWeek(const DayFields& day) {
  const long days = DaysBetween({1970, 1, 1}, day) + 4;  // 1 January 1970 was a Thursday
  return (days % 7 + 7) % 7;
}

}  // namespace

bool CountsDays(const EventElement& event) {
  return event.rate > 1 &&
         (Repeats(event, RepeatKind::kDaily) || Repeats(event, RepeatKind::kWeekly));
}

bool CountComesOut(const EventElement& event, std::time_t moment) {
  const long days = (moment - LocalInstant(event.start, 0, 0)) / 86400;
  if (Repeats(event, RepeatKind::kDaily)) return days % event.rate == 0;
  // Weeks begin on Sunday: how many Sundays the days have come past.
  return (days + DaysIntoWeek(event.start)) / 7 % event.rate == 0;
}

}  // namespace controller
