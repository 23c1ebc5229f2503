#include "controller/api/DayList.h"

#include <algorithm>
#include <map>
#include <utility>

#include "controller/LocalTimeText.h"
#include "controller/api/CivilRule.h"

namespace controller {

namespace {

std::vector<ListedTime> Ask(DriverInstance& scheduler, const DaySpan& days) {
  const auto reply =
      scheduler.Request("GET_EVENT_OCCURENCES", {{"FROM_YEAR", std::to_string(days.from.year)},
                                                 {"FROM_MONTH", std::to_string(days.from.month)},
                                                 {"FROM_DAY", std::to_string(days.from.day)},
                                                 {"TO_YEAR", std::to_string(days.to.year)},
                                                 {"TO_MONTH", std::to_string(days.to.month)},
                                                 {"TO_DAY", std::to_string(days.to.day)}});
  std::vector<ListedTime> listed;
  const VxXML::INode* node = reply ? reply->GetFirstChild() : nullptr;
  for (; node != nullptr; node = node->GetNextSibling()) {
    const VxXML::INode* time = node->GetChild("event_time");
    if (time == nullptr) continue;
    listed.push_back({node->GetUnsigned("eventid"),
                      {time->GetInt("year"), time->GetInt("month"), time->GetInt("day")},
                      time->GetInt("hour"),
                      time->GetInt("min")});
  }
  return listed;
}

bool IsLongerThan24Hours(const DayFields& day) {
  return LocalInstant(DaysAfter(day, 1), 0, 0) - LocalInstant(day, 0, 0) > 86400;
}

/// A day of 25 hours is looked at twice, at its beginning and 24 hours later. Most events are then
/// listed twice; one that counts days may come by one of the two looks alone, and counts only if
/// that was the first.
void SettleLongDay(std::vector<ListedTime>& listed, const DayFields& day,
                   const EventLookup& eventOf) {
  std::map<unsigned long, int> looks;
  for (const ListedTime& time : listed) {
    if (time.day == day) ++looks[time.event];
  }
  std::map<unsigned long, bool> seen;
  const auto isNot = [&](const ListedTime& time) {
    if (time.day != day) return false;
    if (std::exchange(seen[time.event], true)) return true;
    return looks[time.event] == 1 &&
           !CivilRule(eventOf(time.event)).OccursBySeconds(day, LocalInstant(day, 0, 0));
  };
  listed.erase(std::remove_if(listed.begin(), listed.end(), isNot), listed.end());
}

}  // namespace

std::vector<ListedTime> ListDays(DriverInstance& scheduler, const AskedSpan& span,
                                 const EventLookup& eventOf) {
  std::vector<ListedTime> listed = Ask(scheduler, span.asked);
  const auto isOutside = [&span](const ListedTime& time) {
    return time.day < span.counts.from || time.day > span.counts.to;
  };
  listed.erase(std::remove_if(listed.begin(), listed.end(), isOutside), listed.end());
  if (IsLongerThan24Hours(span.counts.to)) SettleLongDay(listed, span.counts.to, eventOf);
  return listed;
}

}  // namespace controller
