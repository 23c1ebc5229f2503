#include "controller/firing/FiringDesk.h"

#include <algorithm>
#include <limits>
#include <map>
#include <utility>

#include "controller/DayEdges.h"
#include "controller/LocalTimeText.h"
#include "controller/firing/DayCount.h"
#include "controller/firing/DayListing.h"

namespace controller {

namespace {

constexpr int kBookDays = 3;

/// How late an occurrence is. What is due before its day begins comes as that begins. The seconds
/// of a sun time are not known, so up to the end of its minute it is in time.
long LateSeconds(const PlannedOccurrence& occurrence, std::time_t dayBegins, std::time_t now) {
  const std::time_t due = occurrence.due.value_or(occurrence.planned + 60 * occurrence.spread);
  const long late = static_cast<long>(now - std::max(due, dayBegins));
  if (occurrence.base == OffsetBase::kClock || late < 0) return late;
  return std::max(0L, late - 59);
}

/// The last second in which its random part, whatever that is, may bring it.
std::time_t LastMoment(const PlannedOccurrence& occurrence) {
  return occurrence.planned + 60 * occurrence.spread + 59;
}

OffsetBase BaseOf(const EventElement& event) {
  if (event.offset == static_cast<int>(OffsetBase::kSunrise)) return OffsetBase::kSunrise;
  if (event.offset == static_cast<int>(OffsetBase::kSunset)) return OffsetBase::kSunset;
  return OffsetBase::kClock;
}

}  // namespace

OccurrenceState OutcomeOf(const GateVerdict& verdict) {
  switch (verdict.kind) {
    case GateVerdict::Kind::kRun:
      return OccurrenceState::kFired;
    case GateVerdict::Kind::kMiss:
      return OccurrenceState::kMissed;
    default:
      return OccurrenceState::kHeld;
  }
}

PlannedOccurrence FiringDesk::Occurrence(const EventElement& event, std::time_t planned) const {
  PlannedOccurrence occurrence;
  occurrence.event = event.eventid;
  occurrence.description = event.description;
  occurrence.planned = planned;
  occurrence.spread = std::max(0, event.randomize);
  if (occurrence.spread == 0) occurrence.due = planned;
  occurrence.base = BaseOf(event);
  return occurrence;
}

DayPlan FiringDesk::PlanOf(const DayFields& day, const ScheduleTrace* draw) {
  DayPlan plan(day);
  for (const ListedOccurrence& listed : ListDay(house_.Scheduler(), catalog_, day)) {
    const EventElement* event = catalog_.Known(listed.event);
    if (event != nullptr) plan.Put(Occurrence(*event, listed.planned));
  }
  // As the day begins: at the first of its moments, and with all that it holds.
  if (draw != nullptr) TakeUpDraw(plan, *draw, std::numeric_limits<std::time_t>::min());
  return plan;
}

// What the day holds is settled by the list that the scheduler answers. What it has drawn besides,
// because it counts days in steps of 86400 s and has counted them at another moment than midnight,
// is held back when it fires; what it has left out is brought when its time comes.
void FiringDesk::TakeUpDraw(DayPlan& plan, const ScheduleTrace& draw, std::time_t after) {
  std::map<unsigned long, const ScheduleTrace::Entry*> drawn;
  for (const ScheduleTrace::Entry& entry : draw.entries) drawn[entry.event] = &entry;
  for (PlannedOccurrence occurrence : plan.InOrder()) {
    const auto found = drawn.find(occurrence.event);
    if (found == drawn.end()) {
      occurrence.leftOut = true;
    } else if (const auto minutes = DrawnMinutes(occurrence.planned, occurrence.spread,
                                                 found->second->hour, found->second->minute)) {
      const std::time_t due = occurrence.planned + 60 * *minutes;
      occurrence.leftOut = due <= after;
      if (!occurrence.leftOut) occurrence.due = due;
    }
    plan.Put(std::move(occurrence));
  }
}

void FiringDesk::TakeUpDecided(DayPlan& plan, std::time_t now) {
  for (PlannedOccurrence occurrence : plan.InOrder()) {
    const OccurrenceDecision* decided = book_.Find(occurrence.event, plan.Date());
    if (decided == nullptr) continue;
    const OccurrenceDecision* acted = book_.ActedOn(occurrence.event, plan.Date());
    if (!acted && decided->planned != occurrence.planned) continue;
    // Missed when the clock was ahead, and still to come now that it was put right.
    const bool comesAgain = !acted && decided->outcome == OccurrenceState::kMissed &&
                            occurrence.due.value_or(occurrence.planned) > now;
    if (comesAgain) continue;
    occurrence.state = acted ? OccurrenceState::kFired : decided->outcome;
    if (acted && acted->planned != occurrence.planned) {
      // It was moved after it had its turn; what is shown is what it did.
      occurrence.planned = acted->planned;
      occurrence.due = acted->planned;
    }
    plan.Put(std::move(occurrence));
  }
}

void FiringDesk::Begin(std::time_t from, std::time_t now, const std::string& cause,
                       const std::optional<DayDraws>& draws) {
  fired_.clear();
  trace_.Take();
  catalog_.Load(house_.Scheduler());
  carried_.clear();
  const DayFields today = LocalDay(now);
  std::vector<Missed> missed;
  // From the day before: what falls past midnight belongs to that.
  for (DayFields day = DaysAfter(LocalDay(std::min(from, now)), -1); day <= today;
       day = DaysAfter(day, 1)) {
    const ScheduleTrace* begun = nullptr;
    if (draws) {
      for (const ScheduleTrace& each : draws->begun) {
        if (each.day == day) begun = &each;
      }
    }
    DayPlan plan = PlanOf(day, begun);
    if (draws && day == today) TakeUpDraw(plan, draws->taken, now);
    TakeUpDecided(plan, now);
    FindMissed(plan, from, now, &missed);
    if (day == today) plan_ = std::move(plan);
  }
  if (plan_.Date() != today) plan_ = DayPlan(today);
  CarryLeftOut();
  accountedUntil_ = now;
  DecideMissed(std::move(missed), cause, now);
  house_.OnPlanChanged();
}

void FiringDesk::FindMissed(DayPlan& plan, std::time_t from, std::time_t now,
                            std::vector<Missed>* missed) {
  const std::time_t begins = FirstSecondOf(plan.Date());
  for (const PlannedOccurrence& occurrence : plan.InOrder()) {
    if (occurrence.state != OccurrenceState::kPending) continue;
    const std::time_t due = std::max(begins, occurrence.due.value_or(occurrence.planned));
    if (due > now) {
      if (plan.Date() == LocalDay(now)) continue;
      Carry(occurrence, plan.Date());
      continue;
    }
    // What was due before came into the schedule after its time. Or else it was drawn otherwise
    // before the schedule was changed, for a time that had not come.
    const bool drawnOtherwise =
        occurrence.due && occurrence.spread > 0 && LastMoment(occurrence) > from;
    if (due > from || drawnOtherwise) {
      missed->push_back({occurrence, plan.Date(), LateSeconds(occurrence, begins, now),
                         /*leftOut=*/due <= from});
    }
    plan.Remove(occurrence.event);
  }
}

void FiringDesk::DecideMissed(std::vector<Missed> missed, const std::string& cause,
                              std::time_t now) {
  const auto due = [](const Missed& each) {
    return each.occurrence.due.value_or(each.occurrence.planned);
  };
  std::stable_sort(missed.begin(), missed.end(),
                   [&](const Missed& a, const Missed& b) { return due(a) < due(b); });
  // Of each event only the last may be caught up; what it takes the place of is superseded.
  std::map<unsigned long, const Missed*> last;
  for (const Missed& each : missed) last[each.occurrence.event] = &each;
  for (Missed& each : missed) {
    const Missed* latest = last[each.occurrence.event];
    const Programming& programming = house_.ProgrammingOf(each.occurrence.event);
    const bool superseded = latest != &each && IsCaughtUp(programming.catchUp, each.lateSeconds);
    Decide(each.occurrence, each.date, {superseded, each.leftOut, false, nullptr},
           each.leftOut ? "left-out" : cause, now);
    if (each.date == plan_.Date()) plan_.Put(each.occurrence);
  }
}

void FiringDesk::Decide(PlannedOccurrence& occurrence, const DayFields& date, Circumstances given,
                        const std::string& cause, std::time_t now) {
  const long late = LateSeconds(occurrence, FirstSecondOf(date), now);
  const GateVerdict verdict = Judge({house_.ProgrammingOf(occurrence.event), date,
                                     house_.AwayBefore(), book_.WasActedOn(occurrence.event, date),
                                     book_.WasHeld(occurrence.event, date, occurrence.planned),
                                     given.unlisted, late, given.dropped, given.superseded});
  FiringDecision decision;
  decision.verdict = verdict;
  decision.event = occurrence.event;
  decision.description = occurrence.description;
  decision.date = date;
  decision.planned = occurrence.planned;
  if (occurrence.due && occurrence.spread > 0) {
    decision.drawn = (*occurrence.due - occurrence.planned) / 60;
  }
  decision.at = now;
  decision.lateSeconds = std::max(0L, late);
  decision.reason = *verdict.reason == '\0' ? cause : verdict.reason;
  if (given.triggers != nullptr) decision.triggers = *given.triggers;
  occurrence.state = OutcomeOf(verdict);
  occurrence.reason = decision.reason;
  book_.Note({occurrence.event, date, occurrence.planned, occurrence.state});
  occurrence.journalRow = house_.OnDecision(decision);
}

void FiringDesk::OnTick(std::time_t now) {
  const std::vector<Fired> fired = std::exchange(fired_, {});
  for (const Fired& each : fired) DecideFired(each, now);
  const bool carried = DecideCarried(now);
  const auto trace = trace_.Take();
  if (trace) {
    // Where the clocks go back over midnight, the old day comes again, and then the new one.
    if (plan_.Date() < trace->day) CloseDay(now);
    NewDay(*trace, now);
  }
  // What is due as a new day begins, or before, comes with the next tick.
  accountedUntil_ =
      trace ? std::min(now, std::max(accountedUntil_, FirstSecondOf(trace->day) - 1)) : now;
  if (trace || carried || !fired.empty()) house_.OnPlanChanged();
}

void FiringDesk::OnBoundCall(unsigned long binding, const std::string& command) {
  if (fired_.empty() || fired_.back().event != binding) return;
  if (command == "DO_PUSH") fired_.back().triggers.push_back(Trigger::kPush);
  if (command == "DO_CLICK") fired_.back().triggers.push_back(Trigger::kClick);
}

std::optional<PlannedOccurrence> FiringDesk::Listed(unsigned long event, std::time_t now) {
  for (const ListedOccurrence& listed : ListDay(house_.Scheduler(), catalog_, plan_.Date())) {
    if (listed.event != event) continue;
    const EventElement* element = catalog_.Find(house_.Scheduler(), event);
    if (element == nullptr) break;
    PlannedOccurrence occurrence = Occurrence(*element, listed.planned);
    occurrence.leftOut = CountsDays(*element) && !CountComesOut(*element, now);
    return occurrence;
  }
  return std::nullopt;
}

void FiringDesk::DecideFired(const Fired& fired, std::time_t now) {
  const unsigned long event = fired.event;
  const PlannedOccurrence* planned = plan_.Find(event);
  const bool wasFired = planned != nullptr && planned->state == OccurrenceState::kFired;
  PlannedOccurrence occurrence;
  occurrence.event = event;
  occurrence.planned = now;
  occurrence.due = now;
  bool listed = true;
  if (planned != nullptr && planned->state == OccurrenceState::kPending) {
    occurrence = *planned;
  } else {
    // Another driver has added it, or it was moved after it had its turn.
    const EventElement* element = catalog_.Refresh(house_.Scheduler(), event);
    if (element != nullptr) occurrence.description = element->description;
    const auto found = Listed(event, now);
    listed = found.has_value();
    if (found) occurrence = *found;
  }
  if (!occurrence.due) {
    // Drawn when it came into the schedule: the minute in which it fires tells how.
    const long minutes = (now - occurrence.planned) / 60;
    occurrence.due =
        occurrence.planned + 60 * std::clamp(minutes, -occurrence.spread, occurrence.spread);
  }
  DropCarried(event, plan_.Date());
  Decide(occurrence, plan_.Date(), {false, false, !listed, &fired.triggers}, "clock-jump", now);
  // What was acted on is shown so, also where it came up again and was held back.
  if (wasFired || !listed) return;
  plan_.Put(std::move(occurrence));
}

bool FiringDesk::DecideCarried(std::time_t now) {
  bool any = false;
  for (auto each = carried_.begin(); each != carried_.end();) {
    if (each->at > now) {
      ++each;
      continue;
    }
    const bool leftOut = each->occurrence.leftOut;
    Decide(each->occurrence, each->date, {false, true, false, nullptr},
           leftOut ? "left-out" : "past-midnight", now);
    if (each->date == plan_.Date()) plan_.Put(std::move(each->occurrence));
    each = carried_.erase(each);
    any = true;
  }
  return any;
}

std::optional<std::time_t> FiringDesk::NextCarried() const {
  std::optional<std::time_t> next;
  if (!carried_.empty()) next = carried_.front().at;
  return next;
}

bool FiringDesk::HasCarriedOf(const DayFields& day) const {
  return std::any_of(carried_.begin(), carried_.end(),
                     [&day](const Carried& each) { return each.date <= day; });
}

void FiringDesk::Carry(PlannedOccurrence occurrence, const DayFields& date) {
  if (!occurrence.due) occurrence.due = occurrence.planned;
  CarryUntil(*occurrence.due, std::move(occurrence), date);
}

void FiringDesk::CarryUntil(std::time_t at, PlannedOccurrence occurrence, const DayFields& date) {
  DropCarried(occurrence.event, date);
  const auto later =
      std::upper_bound(carried_.begin(), carried_.end(), at,
                       [](std::time_t moment, const Carried& each) { return moment < each.at; });
  carried_.insert(later, {std::move(occurrence), date, at});
}

void FiringDesk::DropCarried(unsigned long event, const DayFields& date) {
  std::erase_if(carried_, [&](const Carried& each) {
    return each.date == date && each.occurrence.event == event;
  });
}

bool FiringDesk::IsCarried(unsigned long event, const DayFields& date) const {
  return std::any_of(carried_.begin(), carried_.end(), [&](const Carried& each) {
    return each.occurrence.event == event && each.date == date;
  });
}

void FiringDesk::CarryLeftOut() {
  for (const PlannedOccurrence& occurrence : plan_.InOrder()) {
    if (occurrence.state != OccurrenceState::kPending || !occurrence.leftOut) continue;
    if (IsCarried(occurrence.event, plan_.Date())) continue;
    if (occurrence.due.value_or(occurrence.planned) > accountedUntil_) {
      Carry(occurrence, plan_.Date());
    } else {
      plan_.Remove(occurrence.event);
    }
  }
}

void FiringDesk::CloseDay(std::time_t now) {
  const std::time_t midnight = LocalInstant(DaysAfter(plan_.Date(), 1), 0, 0);
  for (PlannedOccurrence occurrence : plan_.InOrder()) {
    if (occurrence.state != OccurrenceState::kPending) continue;
    // One that was drawn when it was added is waited for already.
    if (!occurrence.due && occurrence.planned + 60 * occurrence.spread < midnight) continue;
    if (!occurrence.due) occurrence.due = std::max(occurrence.planned, now);
    Carry(std::move(occurrence), plan_.Date());
  }
}

void FiringDesk::NewDay(const ScheduleTrace& trace, std::time_t now) {
  plan_ = PlanOf(trace.day, &trace);
  TakeUpDecided(plan_, now);
  // Of a day that comes again: what is drawn anew is the scheduler's once more.
  std::erase_if(carried_, [&](const Carried& each) {
    const PlannedOccurrence* again = plan_.Find(each.occurrence.event);
    return each.date == trace.day && again != nullptr && !again->leftOut;
  });
  CarryLeftOut();
  book_.Forget(DaysAfter(trace.day, -kBookDays));
}

void FiringDesk::OnEventChanged(unsigned long event, std::time_t now) {
  const EventElement* element = catalog_.Refresh(house_.Scheduler(), event);
  PlannedOccurrence* before = plan_.Find(event);
  const bool decided = before != nullptr && before->state != OccurrenceState::kPending;
  if (before != nullptr && !decided) plan_.Remove(event);
  // What is left of an earlier day stays what it was, unless its event is gone.
  std::erase_if(carried_, [&](const Carried& each) {
    return each.occurrence.event == event && (element == nullptr || each.date == plan_.Date());
  });
  if (element != nullptr && !(decided && before->state == OccurrenceState::kFired)) {
    const auto taken = Listed(event, now);
    if (taken && taken->planned + 60 * taken->spread > now) {
      plan_.Put(*taken);
      if (taken->leftOut) {
        Carry(*taken, plan_.Date());
      } else if (taken->spread > 0) {
        // It was drawn as it was taken up, nobody knows for when; maybe for a time that has passed.
        PlannedOccurrence mayBeLeftOut = *taken;
        mayBeLeftOut.leftOut = true;
        CarryUntil(LastMoment(*taken) + 1, std::move(mayBeLeftOut), plan_.Date());
      }
    }
  }
  house_.OnPlanChanged();
}

}  // namespace controller
