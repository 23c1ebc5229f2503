#include "controller/api/OccurrenceTime.h"

#include <cstdlib>

#include "controller/LocalTimeText.h"
#include "controller/api/SunEstimate.h"

namespace controller {

namespace {

constexpr long kHalfDay = 43200;
constexpr long kDay = 86400;

std::tm LocalFields(std::time_t moment) {
  std::tm fields{};
  if (localtime_r(&moment, &fields) == nullptr) fields = {};
  return fields;
}

/// How many seconds it is from the local time of `moment` to `hour`:`minute`, the short way.
long SecondsTo(std::time_t moment, int hour, int minute) {
  const std::tm fields = LocalFields(moment);
  const long wanted = hour * 3600L + minute * 60L;
  const long seconds = wanted - (fields.tm_hour * 3600L + fields.tm_min * 60L);
  if (seconds > kHalfDay) return seconds - kDay;
  return seconds <= -kHalfDay ? seconds + kDay : seconds;
}

std::time_t WithoutSeconds(std::time_t moment) { return moment - LocalFields(moment).tm_sec; }

/// Where the event's own numbers put it; the scheduler's answer is near.
std::time_t Expected(const EventElement& event, const DayFields& day, const Place& place) {
  const auto base = static_cast<OffsetBase>(event.offset);
  if (base == OffsetBase::kSunrise || base == OffsetBase::kSunset) {
    return SunEstimate(day, base, place) + event.offset_minutes * 60L;
  }
  return LocalInstant(day, 0, base == OffsetBase::kClock ? event.offset_minutes : 0);
}

}  // namespace

std::time_t InstantNear(std::time_t near, int hour, int minute) {
  if (hour < 0 || minute < 0) return near;
  std::time_t found = WithoutSeconds(near) + SecondsTo(near, hour, minute);
  // Over a clock change the way is an hour longer or shorter.
  for (int round = 0; round < 2; ++round) {
    const long rest = SecondsTo(found, hour, minute);
    if (rest == 0) return found;
    found += rest;
  }
  return SecondsTo(found, hour, minute) == 0 ? found : near;
}

std::time_t OccurrenceTime(const EventElement& event, const DayFields& day, int hour, int minute,
                           const Place& place) {
  return InstantNear(Expected(event, day, place), hour, minute);
}

std::time_t OccurrenceTime(const EventElement& event, const NextOccurrence& answer,
                           const Place& place) {
  const auto base = static_cast<OffsetBase>(event.offset);
  const std::time_t first = LocalInstant(answer.day, answer.hour, answer.minute);
  if (base == OffsetBase::kClock) return first;
  // Of a time that comes twice that day the one near the sun's.
  const std::time_t near = Expected(event, answer.day, place);
  const std::time_t other = InstantNear(near, answer.hour, answer.minute);
  return LocalDay(other) == answer.day ? other : first;
}

}  // namespace controller
