#include "controller/api/CivilRule.h"

#include <algorithm>

#include "controller/LocalTimeText.h"
#include "controller/api/EventFields.h"
#include "controller/firing/DayCount.h"
#include "controller/json/ObjectReader.h"

namespace controller {

namespace {

/// How far the scheduler's count may be off, with one day to spare.
constexpr long kOff = 2;
/// How many days of a rule without long gaps are asked for at once.
constexpr long kStretch = 40;
/// The time value that stands for no end in the scheduler: 2038-01-18 03:14:07 UTC.
constexpr std::time_t kNever = 2147397247;

long DayIndex(const DayFields& day) { return DaysBetween({1970, 1, 1}, day); }
DayFields DayAt(long index) { return DaysAfter({1970, 1, 1}, index); }

/// Rounded down, also below 0.
long Divided(long number, long by) { return number / by - (number % by < 0 ? 1 : 0); }

long MonthIndex(const DayFields& day) { return day.year * 12L + day.month - 1; }

/// The week that begins with the Sunday on or before the day.
long WeekIndex(const DayFields& day) { return Divided(DayIndex(day) + 4, 7); }
DayFields FirstOfWeek(long week) { return DayAt(week * 7 - 4); }

/// The first multiple of `step` from `origin` on that is not below `least`.
long FirstFrom(long origin, long step, long least) {
  if (least <= origin) return origin;
  return origin + (least - origin + step - 1) / step * step;
}

std::optional<DaySpan> Within(const DaySpan& span, const DayFields& from) {
  return DaySpan{std::max(span.from, from), span.to};
}

}  // namespace

int WeekdayOf(const DayFields& day) {
  const long days = DayIndex(day) + 4;  // 1 January 1970 was a Thursday
  return static_cast<int>(days - Divided(days, 7) * 7) + 1;
}

DayFields CivilRule::LastDay() const {
  if (event_.frequency == 0) return event_.start;
  return event_.end ? *event_.end : LocalDay(kNever);
}

bool CivilRule::CountsDays() const { return controller::CountsDays(event_); }

bool CivilRule::MayDrift() const { return CountsDays() || IsByWeek(event_); }

bool CivilRule::OccursOn(const DayFields& day) const {
  if (day < event_.start || day > LastDay()) return false;
  switch (static_cast<RepeatKind>(event_.frequency)) {
    case RepeatKind::kOnce:
      return day == event_.start;
    case RepeatKind::kDaily:
      return DaysBetween(event_.start, day) % event_.rate == 0;
    case RepeatKind::kWeekly:
      return (WeekIndex(day) - WeekIndex(event_.start)) % event_.rate == 0 &&
             (event_.daymask & (1u << (WeekdayOf(day) - 1))) != 0;
    case RepeatKind::kMonthly:
      return (MonthIndex(day) - MonthIndex(event_.start)) % event_.rate == 0 && OccursByMonth(day);
    case RepeatKind::kYearly:
      return (day.year - event_.start.year) % event_.rate == 0 && day.month == event_.start.month &&
             OccursByMonth(day);
  }
  return false;
}

bool CivilRule::OccursBySeconds(const DayFields& day, std::time_t moment) const {
  if (!CountsDays()) return OccursOn(day);
  if (day < event_.start || day > LastDay()) return false;
  if (!CountComesOut(event_, moment)) return false;
  return Repeats(event_, RepeatKind::kDaily) ||
         (event_.daymask & (1u << (WeekdayOf(day) - 1))) != 0;
}

bool CivilRule::OccursByMonth(const DayFields& day) const {
  if (!IsByWeek(event_)) return day.day == event_.start.day;
  if (WeekdayOf(day) != event_.start_weekday) return false;
  if (event_.start_period == kLastWeek) return day.day + 7 > DaysOfMonth(day.year, day.month);
  return (day.day - 1) / 7 + 1 == event_.start_period;
}

std::optional<DaySpan> CivilRule::NextSpan(const DayFields& from) const {
  const DayFields first = std::max(from, event_.start);
  const DayFields last = LastDay();
  if (first > last) return std::nullopt;
  std::optional<DaySpan> span;
  switch (static_cast<RepeatKind>(event_.frequency)) {
    case RepeatKind::kOnce:
      span = DaySpan{event_.start, event_.start};
      break;
    case RepeatKind::kDaily:
      span = SpanOfDays(first);
      break;
    case RepeatKind::kWeekly:
      span = SpanOfWeeks(first);
      break;
    default:
      span = SpanOfMonths(first);
  }
  if (!span || span->from > last) return std::nullopt;
  return DaySpan{span->from, std::min(span->to, last)};
}

std::optional<DaySpan> CivilRule::SpanOfDays(const DayFields& from) const {
  if (event_.rate <= kStretch / 4) return DaySpan{from, DaysAfter(from, kStretch)};
  const long next = FirstFrom(DayIndex(event_.start), event_.rate, DayIndex(from) - kOff);
  return Within({DayAt(next - kOff), DayAt(next + kOff)}, from);
}

std::optional<DaySpan> CivilRule::SpanOfWeeks(const DayFields& from) const {
  if (event_.rate <= 2) return DaySpan{from, DaysAfter(from, kStretch)};
  const long week =
      FirstFrom(WeekIndex(event_.start), event_.rate, WeekIndex(DaysAfter(from, -kOff)));
  const DayFields sunday = FirstOfWeek(week);
  return Within({DaysAfter(sunday, -kOff), DaysAfter(sunday, 6 + kOff)}, from);
}

std::optional<DaySpan> CivilRule::SpanOfMonths(const DayFields& from) const {
  const bool yearly = Repeats(event_, RepeatKind::kYearly);
  const long step = event_.rate * (yearly ? 12L : 1L);
  long month = FirstFrom(MonthIndex(event_.start), step, MonthIndex(from));
  for (;; month += step) {
    const int year = static_cast<int>(month / 12);
    const int ofYear = static_cast<int>(month % 12) + 1;
    if (year > kLastDayOfAll.year) return std::nullopt;
    const int days = DaysOfMonth(year, ofYear);
    const DayFields last{year, ofYear, days};
    if (IsByWeek(event_)) {
      if (last >= from) return Within({{year, ofYear, 1}, last}, from);
      continue;
    }
    // Without its day, the 31st or 29 February, the month is passed over.
    const DayFields day{year, ofYear, event_.start.day};
    if (event_.start.day <= days && day >= from) return DaySpan{day, day};
  }
}

}  // namespace controller
