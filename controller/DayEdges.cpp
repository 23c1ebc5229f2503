#include "controller/DayEdges.h"

#include <chrono>
#include <string>

#include "controller/LocalTimeText.h"

namespace controller {

namespace {

// Zones have left out whole days, so the search begins more than one before.
constexpr std::time_t kFarBefore = 50 * 3600;
constexpr std::time_t kStep = 900;

}  // namespace

std::time_t FirstSecondOf(const DayFields& day) {
  std::time_t before = LocalInstant(day, 0, 0) - kFarBefore;
  before -= ((before % kStep) + kStep) % kStep;
  while (LocalDay(before + kStep) < day) before += kStep;
  std::time_t after = before + kStep;
  while (after - before > 1) {
    const std::time_t middle = before + (after - before) / 2;
    (LocalDay(middle) < day ? before : after) = middle;
  }
  return after;
}

long OffsetAt(std::time_t moment) {
  std::tm fields{};
  return localtime_r(&moment, &fields) == nullptr ? 0 : fields.tm_gmtoff;
}

std::string NamedDay(const DayFields& day) {
  static constexpr const char* kNames[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  const std::chrono::sys_days date = std::chrono::year(day.year) /
                                     std::chrono::month(static_cast<unsigned>(day.month)) /
                                     std::chrono::day(static_cast<unsigned>(day.day));
  return std::string(kNames[std::chrono::weekday(date).c_encoding()]) + ' ' + DayText(day);
}

}  // namespace controller
