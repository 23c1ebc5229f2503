#include "controller/api/NextTimes.h"

#include <utility>

#include "controller/LocalTimeText.h"
#include "controller/api/CivilRule.h"
#include "controller/api/EventJson.h"
#include "controller/api/EventProbe.h"
#include "controller/api/OccurrenceTime.h"

namespace controller {

namespace {

/// More than there are events in any house; those that are gone are forgotten with the rest.
constexpr std::size_t kMostKnown = 100000;

long OffsetAt(std::time_t moment) {
  std::tm fields{};
  return localtime_r(&moment, &fields) == nullptr ? 0 : fields.tm_gmtoff;
}

/// Whether days are counted in 86,400 s from a beginning with another offset from UTC than now, so
/// that what the scheduler decides when a day begins may differ from what it answers later that
/// day.
bool IsUnsure(const EventElement& event, std::time_t next) {
  return CivilRule(event).CountsDays() &&
         OffsetAt(LocalInstant(event.start, 0, 0)) != OffsetAt(next);
}

std::string Where(const House& house, std::time_t now) {
  return PlaceText(house.WhereItIs().place) + ' ' + tzname[0] + ' ' + tzname[1] + ' ' +
         std::to_string(timezone) + ' ' + std::to_string(OffsetAt(now));
}

}  // namespace

std::optional<std::time_t> NextTimes::Of(const House& house, const VxXML::INode& element,
                                         const EventElement& event) {
  const auto answer = ReadNextOccurrence(element);
  const Place& place = house.WhereItIs().place;
  if (answer) {
    const std::time_t next = OccurrenceTime(event, *answer, place);
    const bool sure = !IsUnsure(event, next) && !HasHadItsTurn(house, event.eventid, next);
    if (IsOdd(event) || sure) return next;
  } else if (event.frequency == 0 || IsOdd(event)) {
    return std::nullopt;
  }
  const std::time_t now = std::time(nullptr);
  if (CivilRule(event).LastDay() < LocalDay(now)) return std::nullopt;
  return Search(house, event, now);
}

std::optional<std::time_t> NextTimes::Search(const House& house, const EventElement& event,
                                             std::time_t now) {
  std::string where = Where(house, now);
  const PlannedOccurrence* today = OfToday(house, event.eventid);
  const bool pending = today != nullptr && today->state == OccurrenceState::kPending;
  const auto known = known_.find(event.eventid);
  if (known != known_.end() && known->second.event == event && known->second.where == where &&
      known->second.asked <= now && (!known->second.next || *known->second.next >= now)) {
    const auto& next = known->second.next;
    if (!next || LocalDay(*next) != house.TodayDate() || pending) return next;
  }
  if (known_.size() >= kMostKnown) known_.clear();
  std::optional<std::time_t> next;
  // What today holds was settled when the day began, or when the event was added since then.
  if (pending && today->planned >= now) next = today->planned;
  for (const ProbedOccurrence& found : EventProbe(house, event).Next(LocalDay(now), now, 2)) {
    if (next || (found.day == house.TodayDate() && !pending)) continue;
    next = found.time;
  }
  known_[event.eventid] = {event, std::move(where), now, next};
  return next;
}

const PlannedOccurrence* NextTimes::OfToday(const House& house, unsigned long id) {
  // Once an answer: a house may have thousands of events.
  if (!std::exchange(todayAsked_, true)) {
    today_.clear();
    for (PlannedOccurrence& occurrence : house.Today()) {
      today_.emplace(occurrence.event, std::move(occurrence));
    }
  }
  const auto found = today_.find(id);
  return found == today_.end() ? nullptr : &found->second;
}

bool NextTimes::HasHadItsTurn(const House& house, unsigned long id, std::time_t next) {
  if (LocalDay(next) != house.TodayDate()) return false;
  const PlannedOccurrence* today = OfToday(house, id);
  return today != nullptr && today->state == OccurrenceState::kFired;
}

}  // namespace controller
