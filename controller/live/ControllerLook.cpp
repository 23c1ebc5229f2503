#include "controller/LocalTimeText.h"
#include "controller/live/Controller.h"

namespace controller {

const Programming& Controller::ProgrammingOf(unsigned long eventId) const {
  return programming_.Of(eventId);
}

std::vector<PlannedOccurrence> Controller::Today() const { return desk_.Plan().InOrder(); }

std::vector<JournalRow> Controller::Rows(const JournalQuery& query) {
  return Journal::Read(store_, query);
}

std::optional<DayFields> Controller::AwayUntil() const {
  // Once the day has begun it is over.
  if (awayUntil_ && *awayUntil_ <= LocalDay(std::time(nullptr))) return std::nullopt;
  return awayUntil_;
}

std::map<std::pair<unsigned long, unsigned long>, std::string> Controller::Variables() const {
  return host_.Variables();
}

const HouseCounters& Controller::Counters() const {
  counters_.saves = committer_.Saves();
  counters_.saveFailures = committer_.SaveFailures();
  return counters_;
}

}  // namespace controller
