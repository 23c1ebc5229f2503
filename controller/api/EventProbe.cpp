#include "controller/api/EventProbe.h"

#include <string>

#include "controller/EventChecks.h"
#include "controller/LocalTimeText.h"
#include "controller/api/DayList.h"
#include "controller/api/EventFields.h"
#include "controller/api/EventJson.h"
#include "controller/api/OccurrenceTime.h"

namespace controller {

namespace {

/// Enough for the rarest rule to be followed to the end of the calendar's usual use, and an end to
/// the search in any case.
constexpr int kMostSpans = 1200;

/// As it is offered: under an id, and without its spread, for which the scheduler would draw a
/// number that another event's day is to be made of.
EventElement Offered(EventElement event) {
  if (event.eventid == 0) event.eventid = 1;
  event.randomize = 0;
  return event;
}

std::string FirstChange(const VxXML::INode& given, const VxXML::INode& stored, bool byWeek) {
  Findings findings;
  CheckChanges(given, stored, findings);
  for (const Finding& finding : findings) {
    const bool movesStart = finding.text.starts_with("start date ");
    if (!(byWeek && movesStart)) return finding.text;
  }
  return "";
}

}  // namespace

EventProbe::EventProbe(const House& house, const EventElement& event)
    : EventProbe(house.Loader(), house.WhereItIs().place, event) {}

EventProbe::EventProbe(const DriverLoader& loader, const Place& place, const EventElement& event)
    : place_(place), scratch_(loader, place) {
  const auto given = MakeEventElement(Offered(event));
  const ScratchAgent::Answer answer = scratch_.Keep(*given);
  if (!answer.stored) {
    trouble_ = "the scheduler does not take it";
    return;
  }
  stored_ = ReadEventElement(*answer.stored);
  stored_->eventid = event.eventid;
  stored_->randomize = event.randomize;
  trouble_ = FirstChange(*given, *answer.stored, event.start_period != 0);
  if (trouble_.empty() && !answer.assertions.empty()) {
    trouble_ = "the scheduler objects to it (" + answer.assertions.front() + ")";
  }
}

std::vector<ProbedOccurrence> EventProbe::On(const DaySpan& days) {
  std::vector<ProbedOccurrence> found;
  if (!stored_ || days.to < days.from) return found;
  const auto event = [this](unsigned long) -> const EventElement& { return *stored_; };
  for (const AskedSpan& span : SplitAtClockChanges(days)) {
    for (const ListedTime& time : ListDays(scratch_.Scheduler(), span, event)) {
      found.push_back(
          {time.day, OccurrenceTime(*stored_, time.day, time.hour, time.minute, place_)});
    }
  }
  return found;
}

std::vector<ProbedOccurrence> EventProbe::Next(const DayFields& from, std::time_t after,
                                               std::size_t count) {
  std::vector<ProbedOccurrence> next;
  if (!stored_ || IsOdd(*stored_)) return next;
  const CivilRule rule(*stored_);
  // A sun time has seconds, which are left out here.
  const std::time_t unsaid = stored_->offset == 0 ? 0 : 59;
  DayFields day = from;
  for (int spans = 0; spans < kMostSpans; ++spans) {
    const auto span = rule.NextSpan(day);
    if (!span) return next;
    for (const ProbedOccurrence& occurrence : On(*span)) {
      if (occurrence.time + unsaid < after) continue;
      next.push_back(occurrence);
      if (next.size() == count) return next;
    }
    day = DaysAfter(span->to, 1);
  }
  return next;
}

}  // namespace controller
