#include "controller/simulate/SimulatedSpan.h"

#include <ctime>

#include "controller/Failure.h"
#include "controller/LocalTimeText.h"
#include "controller/Printable.h"
#include "controller/json/ObjectReader.h"

namespace controller {

namespace {

constexpr long kWeek = 7;
constexpr int kMostYears = 10;
// The scheduler begins on the day before the first, and what falls past midnight comes on the days
// after the last.
constexpr DayFields kFirstDay{1970, 1, 2};
constexpr DayFields kLastDay{9999, 12, 25};

DayFields Day(const char* option, const std::string& text) {
  const auto day = ReadDay(text);
  if (day && *day >= kFirstDay && *day <= kLastDay) return *day;
  throw Failure(std::string(option) + " is " + Quoted(text) +
                    (day ? "; give a day from " + DayText(kFirstDay) + " to " + DayText(kLastDay)
                         : "; give a day that the calendar has, 2026-11-21 for example"),
                ExitStatus::kBadInput);
}

}  // namespace

long SimulatedSpan::Days() const { return DaysBetween(from, to) + 1; }

SimulatedSpan ReadSpan(const std::optional<std::string>& from,
                       const std::optional<std::string>& to) {
  SimulatedSpan span;
  span.from = from ? Day("--from", *from) : LocalDay(std::time(nullptr));
  span.to = to ? Day("--to", *to) : DaysAfter(span.from, kWeek - 1);
  if (span.to < span.from) {
    throw Failure("--to is " + DayText(span.to) + ", which is before --from, " +
                      DayText(span.from) + "; give the same day or a later one",
                  ExitStatus::kBadInput);
  }
  DayFields last = span.from;
  last.year += kMostYears;
  if (span.to >= last) {
    throw Failure("--from " + DayText(span.from) + " --to " + DayText(span.to) + " is " +
                      std::to_string(span.Days()) + " days; give " + std::to_string(kMostYears) +
                      " years at most",
                  ExitStatus::kBadInput);
  }
  return span;
}

}  // namespace controller
