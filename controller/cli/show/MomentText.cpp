#include "controller/cli/show/MomentText.h"

#include "controller/cli/parse/DayText.h"

namespace controller::cli {

namespace {

constexpr std::size_t kDayLength = 10;
constexpr std::size_t kTimeBegin = 11;
constexpr std::size_t kMinutesLength = 5;
constexpr std::size_t kSecondsLength = 8;

bool HasForm(const std::string& moment) {
  return moment.size() >= kTimeBegin + kSecondsLength && moment[kDayLength] == 'T' &&
         !WeekdayOf(moment.substr(0, kDayLength)).empty();
}

std::string Text(const std::string& moment, std::size_t timeLength) {
  if (!HasForm(moment)) return moment;
  return LongDayText(moment.substr(0, kDayLength)) + ' ' + moment.substr(kTimeBegin, timeLength);
}

}  // namespace

std::string MomentText(const std::string& moment) { return Text(moment, kMinutesLength); }

std::string ExactMomentText(const std::string& moment) { return Text(moment, kSecondsLength); }

std::string ExactTimeText(const std::string& moment) {
  return HasForm(moment) ? moment.substr(kTimeBegin, kSecondsLength) : moment;
}

std::string LongDayText(const std::string& day) {
  const std::string weekday = WeekdayOf(day);
  return weekday.empty() ? day : weekday + ' ' + day;
}

}  // namespace controller::cli
