#pragma once

#include <ctime>
#include <optional>

#include "controller/EventElement.h"
#include "controller/api/ClockChanges.h"

namespace controller {

/// An event's rule as people read it, in civil days: what its days are if nothing but the calendar
/// counts. The scheduler counts in 86,400 s and may come a day off; where it does is what this is
/// compared with, and where to ask it is what this tells.
class CivilRule {
 public:
  /// The event must be a well-formed one, see `IsOdd`, with the start that the scheduler answers.
  explicit CivilRule(const EventElement& event) : event_(event) {}

  bool OccursOn(const DayFields& day) const;
  /// Whether it occurs on the civil day `day` when days are counted as the scheduler does, in
  /// 86,400 s from the start's midnight to `moment`. For rules that count days; of others it is
  /// what `OccursOn` says.
  bool OccursBySeconds(const DayFields& day, std::time_t moment) const;

  /// The next days, from `from` on, among which the scheduler may have an occurrence, a day or two
  /// off included; nothing where none can come. Not long, so that there are not many occurrences
  /// in it.
  std::optional<DaySpan> NextSpan(const DayFields& from) const;

  /// The last day on which the event may occur: its own, or the end of the scheduler's calendar,
  /// which an event that repeats without an end has instead.
  DayFields LastDay() const;
  /// Whether it is the end of the scheduler's calendar that ends the event.
  bool EndsWithCalendar() const { return event_.frequency != 0 && !event_.end; }

  /// Whether it comes every so many days or weeks, for which days have to be counted.
  bool CountsDays() const;
  /// Whether the scheduler's counting may put it on another day at all.
  bool MayDrift() const;

 private:
  bool OccursByMonth(const DayFields& day) const;
  std::optional<DaySpan> SpanOfDays(const DayFields& from) const;
  std::optional<DaySpan> SpanOfWeeks(const DayFields& from) const;
  std::optional<DaySpan> SpanOfMonths(const DayFields& from) const;

  const EventElement& event_;
};

/// 1 = Sunday .. 7 = Saturday.
int WeekdayOf(const DayFields& day);

}  // namespace controller
