#include "controller/firing/DayListing.h"

#include <cstdlib>

#include "controller/LocalTimeText.h"

namespace controller {

namespace {

constexpr int kTypicalSunriseHour = 6;
constexpr int kTypicalSunsetHour = 18;
constexpr long kMinutesOfDay = 1440;

CommandMessage::Params SpanOf(const DayFields& day) {
  const std::string year = std::to_string(day.year);
  const std::string month = std::to_string(day.month);
  const std::string number = std::to_string(day.day);
  return {{"FROM_YEAR", year}, {"FROM_MONTH", month}, {"FROM_DAY", number},
          {"TO_YEAR", year},   {"TO_MONTH", month},   {"TO_DAY", number}};
}

}  // namespace

std::time_t PlannedInstant(const EventElement& event, const DayFields& day, int hour, int minute) {
  if (event.offset == static_cast<int>(OffsetBase::kClock)) {
    return LocalInstant(day, 0, event.offset_minutes);
  }
  // The sun's own time lies well inside the day, so of three days the nearest is meant.
  const bool rises = event.offset == static_cast<int>(OffsetBase::kSunrise);
  const std::time_t expected =
      LocalInstant(day, rises ? kTypicalSunriseHour : kTypicalSunsetHour, 0) +
      60L * event.offset_minutes;
  std::time_t nearest = LocalInstant(day, hour, minute);
  const long offDays = (expected - nearest) / 86400;
  for (long days = offDays - 1; days <= offDays + 1; ++days) {
    const std::time_t candidate = LocalInstant(DaysAfter(day, days), hour, minute);
    if (std::labs(candidate - expected) < std::labs(nearest - expected)) nearest = candidate;
  }
  return nearest;
}

std::optional<long> DrawnMinutes(std::time_t planned, long spread, int hour, int minute) {
  std::tm at{};
  if (localtime_r(&planned, &at) == nullptr) return std::nullopt;
  const long ahead =
      ((hour * 60 + minute - at.tm_hour * 60 - at.tm_min) % kMinutesOfDay + kMinutesOfDay) %
      kMinutesOfDay;
  std::optional<long> best;
  // A clock change inside the span moves it by an hour, or by half of one.
  for (const long shift : {0L, 60L, -60L, 30L, -30L}) {
    for (const long minutes : {ahead + shift, ahead + shift - kMinutesOfDay}) {
      const std::time_t due = planned + 60 * minutes;
      std::tm fields{};
      if (std::labs(minutes) > spread || localtime_r(&due, &fields) == nullptr) continue;
      if (fields.tm_hour != hour || fields.tm_min != minute) continue;
      if (!best || std::labs(minutes) < std::labs(*best)) best = minutes;
    }
  }
  return best;
}

std::vector<ListedOccurrence> ListDay(DriverInstance& scheduler, EventCatalog& catalog,
                                      const DayFields& day) {
  std::vector<ListedOccurrence> listed;
  const auto reply = scheduler.Request("GET_EVENT_OCCURENCES", SpanOf(day));
  if (!reply) return listed;
  for (const VxXML::INode* node = reply->GetFirstChild(); node; node = node->GetNextSibling()) {
    const unsigned long id = node->GetUnsigned("eventid");
    // A day of 25 hours is listed twice, from its beginning and from 23:00.
    if (!listed.empty() && id <= listed.back().event) break;
    const VxXML::INode* time = node->GetChild("event_time");
    const EventElement* event = catalog.Find(scheduler, id);
    if (time == nullptr || event == nullptr) continue;
    listed.push_back({id, PlannedInstant(*event, day, time->GetInt("hour"), time->GetInt("min"))});
  }
  return listed;
}

}  // namespace controller
