#include "controller/firing/FiringDesk.h"

#include <algorithm>
#include <map>
#include <utility>

#include "controller/LocalTimeText.h"
#include "controller/firing/DayCount.h"
#include "controller/firing/DayListing.h"

namespace controller {

namespace {

constexpr int kBookDays = 3;

/// How late an occurrence is. The seconds of a sun time are not known, so up to the end of its
/// minute it is in time.
long LateSeconds(const PlannedOccurrence& occurrence, std::time_t now) {
  const std::time_t due = occurrence.due.value_or(occurrence.planned + 60 * occurrence.spread);
  const long late = static_cast<long>(now - due);
  if (occurrence.base == OffsetBase::kClock || late < 0) return late;
  return std::max(0L, late - 59);
}

OffsetBase BaseOf(const EventElement& event) {
  if (event.offset == static_cast<int>(OffsetBase::kSunrise)) return OffsetBase::kSunrise;
  if (event.offset == static_cast<int>(OffsetBase::kSunset)) return OffsetBase::kSunset;
  return OffsetBase::kClock;
}

}  // namespace

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
  if (draw == nullptr) return plan;
  // The list that was drawn is the one that counts. Days that are counted in steps of 86400 s may
  // have been counted otherwise at the moment of drawing than at midnight.
  DayPlan drawn(day);
  for (const ScheduleTrace::Entry& entry : draw->entries) {
    const EventElement* event = catalog_.Find(house_.Scheduler(), entry.event);
    if (event == nullptr) continue;
    const PlannedOccurrence* listed = plan.Find(entry.event);
    PlannedOccurrence occurrence =
        listed != nullptr
            ? *listed
            : Occurrence(*event, PlannedInstant(*event, day, entry.hour, entry.minute));
    const auto minutes =
        DrawnMinutes(occurrence.planned, occurrence.spread, entry.hour, entry.minute);
    if (minutes) occurrence.due = occurrence.planned + 60 * *minutes;
    drawn.Put(std::move(occurrence));
  }
  return drawn;
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
                       const std::vector<ScheduleTrace>& draws) {
  fired_.clear();
  trace_.Take();
  catalog_.Load(house_.Scheduler());
  carried_.clear();
  const DayFields today = LocalDay(now);
  std::vector<Missed> missed;
  // From the day before: what falls past midnight belongs to that.
  for (DayFields day = DaysAfter(LocalDay(std::min(from, now)), -1); day <= today;
       day = DaysAfter(day, 1)) {
    const auto draw = std::find_if(draws.begin(), draws.end(),
                                   [&day](const ScheduleTrace& known) { return known.day == day; });
    DayPlan plan = PlanOf(day, draw == draws.end() ? nullptr : &*draw);
    TakeUpDecided(plan, now);
    FindMissed(plan, from, now, &missed);
    if (day == today) plan_ = std::move(plan);
  }
  if (plan_.Date() != today) plan_ = DayPlan(today);
  accountedUntil_ = now;
  DecideMissed(std::move(missed), cause, now);
  house_.OnPlanChanged();
}

void FiringDesk::FindMissed(DayPlan& plan, std::time_t from, std::time_t now,
                            std::vector<Missed>* missed) {
  for (const PlannedOccurrence& occurrence : plan.InOrder()) {
    if (occurrence.state != OccurrenceState::kPending) continue;
    const std::time_t due = occurrence.due.value_or(occurrence.planned);
    if (due > now) {
      if (plan.Date() == LocalDay(now)) continue;
      carried_.push_back({occurrence, plan.Date(), 0});
      carried_.back().occurrence.due = due;
      continue;
    }
    // What was due before had its turn, or came into the schedule after its time.
    if (due > from) missed->push_back({occurrence, plan.Date(), LateSeconds(occurrence, now)});
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
    Decide(each.occurrence, each.date, {superseded, false, nullptr}, cause, now);
    if (each.date == plan_.Date()) plan_.Put(each.occurrence);
  }
}

void FiringDesk::Decide(PlannedOccurrence& occurrence, const DayFields& date, Circumstances given,
                        const std::string& cause, std::time_t now) {
  const long late = LateSeconds(occurrence, now);
  const GateVerdict verdict = Judge({house_.ProgrammingOf(occurrence.event), date,
                                     house_.AwayUntil(), book_.WasActedOn(occurrence.event, date),
                                     book_.WasHeld(occurrence.event, date, occurrence.planned),
                                     late, given.dropped, given.superseded});
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
  occurrence.state = verdict.kind == GateVerdict::Kind::kRun    ? OccurrenceState::kFired
                     : verdict.kind == GateVerdict::Kind::kMiss ? OccurrenceState::kMissed
                                                                : OccurrenceState::kHeld;
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
    CloseDay(now);
    NewDay(*trace, now);
  }
  accountedUntil_ = now;
  if (trace || carried || !fired.empty()) house_.OnPlanChanged();
}

void FiringDesk::OnBoundCall(unsigned long binding, const std::string& command) {
  if (fired_.empty() || fired_.back().event != binding) return;
  if (command == "DO_PUSH") fired_.back().triggers.push_back(Trigger::kPush);
  if (command == "DO_CLICK") fired_.back().triggers.push_back(Trigger::kClick);
}

std::optional<PlannedOccurrence> FiringDesk::Listed(unsigned long event) {
  for (const ListedOccurrence& listed : ListDay(house_.Scheduler(), catalog_, plan_.Date())) {
    if (listed.event != event) continue;
    const EventElement* element = catalog_.Find(house_.Scheduler(), event);
    if (element != nullptr) return Occurrence(*element, listed.planned);
  }
  return std::nullopt;
}

std::optional<PlannedOccurrence> FiringDesk::TakenUp(const EventElement& event, std::time_t now) {
  auto listed = Listed(event.eventid);
  if (!CountsDays(event)) return listed;
  // The scheduler has counted the days up to now, and the listing those up to midnight: where the
  // clocks have been changed since the first day, these may be other days.
  if (listed) return CountComesOut(event, now) ? listed : std::nullopt;
  const auto asked =
      house_.Scheduler().Request("GET_EVENT", {{"EVENT_ID", std::to_string(event.eventid)}});
  const auto next = asked ? ReadNextOccurrence(*asked) : std::nullopt;
  if (!next) return std::nullopt;
  const std::time_t planned = PlannedInstant(event, plan_.Date(), next->hour, next->minute);
  if (planned != LocalInstant(next->day, next->hour, next->minute)) return std::nullopt;
  return Occurrence(event, planned);
}

void FiringDesk::DecideFired(const Fired& fired, std::time_t now) {
  const unsigned long event = fired.event;
  const PlannedOccurrence* planned = plan_.Find(event);
  const bool wasFired = planned != nullptr && planned->state == OccurrenceState::kFired;
  PlannedOccurrence occurrence;
  occurrence.event = event;
  occurrence.planned = now;
  occurrence.due = now;
  if (planned != nullptr && planned->state == OccurrenceState::kPending) {
    occurrence = *planned;
  } else {
    // Another driver has added it, or it was moved after it had its turn.
    catalog_.Refresh(house_.Scheduler(), event);
    if (const auto listed = Listed(event)) occurrence = *listed;
  }
  if (!occurrence.due) {
    // Drawn when it came into the schedule: the minute in which it fires tells how.
    const long minutes = (now - occurrence.planned) / 60;
    occurrence.due =
        occurrence.planned + 60 * std::clamp(minutes, -occurrence.spread, occurrence.spread);
  }
  Decide(occurrence, plan_.Date(), {false, false, &fired.triggers}, "clock-jump", now);
  // What was acted on is shown so, also where it came up again and was held back.
  if (wasFired) return;
  plan_.Put(std::move(occurrence));
}

bool FiringDesk::DecideCarried(std::time_t now) {
  bool any = false;
  for (auto each = carried_.begin(); each != carried_.end();) {
    if (*each->occurrence.due > now) {
      ++each;
      continue;
    }
    Decide(each->occurrence, each->date, {false, true, nullptr}, "past-midnight", now);
    each = carried_.erase(each);
    any = true;
  }
  return any;
}

std::optional<std::time_t> FiringDesk::NextCarried() const {
  std::optional<std::time_t> next;
  for (const Missed& each : carried_) {
    if (!next || *each.occurrence.due < *next) next = each.occurrence.due;
  }
  return next;
}

bool FiringDesk::HasCarriedOf(const DayFields& day) const {
  return std::any_of(carried_.begin(), carried_.end(),
                     [&day](const Missed& each) { return each.date <= day; });
}

void FiringDesk::CloseDay(std::time_t now) {
  const std::time_t midnight = LocalInstant(DaysAfter(plan_.Date(), 1), 0, 0);
  for (PlannedOccurrence occurrence : plan_.InOrder()) {
    if (occurrence.state != OccurrenceState::kPending) continue;
    // One that was drawn when it was added may have been drawn into the past, and was then left
    // out.
    if (!occurrence.due && occurrence.planned + 60 * occurrence.spread < midnight) continue;
    if (!occurrence.due) occurrence.due = std::max(occurrence.planned, now);
    carried_.push_back({std::move(occurrence), plan_.Date(), 0});
  }
  std::stable_sort(carried_.begin(), carried_.end(), [](const Missed& a, const Missed& b) {
    return *a.occurrence.due < *b.occurrence.due;
  });
}

void FiringDesk::NewDay(const ScheduleTrace& trace, std::time_t now) {
  plan_ = PlanOf(trace.day, &trace);
  TakeUpDecided(plan_, now);
  book_.Forget(DaysAfter(trace.day, -kBookDays));
}

void FiringDesk::OnEventChanged(unsigned long event, std::time_t now) {
  const EventElement* element = catalog_.Refresh(house_.Scheduler(), event);
  PlannedOccurrence* before = plan_.Find(event);
  const bool decided = before != nullptr && before->state != OccurrenceState::kPending;
  if (before != nullptr && !decided) plan_.Remove(event);
  if (element != nullptr && !(decided && before->state == OccurrenceState::kFired)) {
    const auto taken = TakenUp(*element, now);
    if (taken && taken->planned + 60 * taken->spread > now) plan_.Put(*taken);
  }
  house_.OnPlanChanged();
}

}  // namespace controller
