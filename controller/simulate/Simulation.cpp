#include "controller/simulate/Simulation.h"

#include <memory>
#include <utility>

#include "controller/DayEdges.h"
#include "controller/LocalTimeText.h"
#include "controller/ProjectVariables.h"
#include "controller/programming/ProgrammingJson.h"
#include "controller/simulate/SentAction.h"

namespace controller {

namespace {

OffsetBase BaseOf(const EventElement* event) {
  if (event == nullptr) return OffsetBase::kClock;
  if (event->offset == static_cast<int>(OffsetBase::kSunrise)) return OffsetBase::kSunrise;
  if (event->offset == static_cast<int>(OffsetBase::kSunset)) return OffsetBase::kSunset;
  return OffsetBase::kClock;
}

}  // namespace

Simulation::Simulation(const DriverLoader& loader, SimulatedHouse house, ISimulationReport& report,
                       std::optional<unsigned long> onlyEvent)
    : loader_(loader),
      house_(std::move(house)),
      queue_(report, onlyEvent),
      clock_(std::time(nullptr)),
      sinkBefore_(vx::SetAssertSink(this)),
      seed_(house_.projectId),
      host_(house_.place, seed_, desk_) {}

Simulation::~Simulation() {
  scheduler_.reset();
  vx::SetAssertSink(sinkBefore_);
}

SimulatedTotals Simulation::Run(const DayFields& from, const DayFields& to, Pace pace) {
  from_ = from;
  to_ = to;
  pace_ = pace;
  const std::time_t begin = FirstSecondOf(from);
  const std::time_t end = FirstSecondOf(DaysAfter(to, 1));
  Begin(LocalInstant(DaysAfter(from, -1), 12, 0));
  before_ = LocalMinute::At(begin - 1);
  for (std::time_t now = begin; now <= end || desk_.HasCarriedOf(to);) {
    const std::time_t next = now - ((now % 60) + 60) % 60 + 60;
    RunMinute(now, next - 1);
    now = next;
  }
  queue_.Finish();
  return queue_.Totals();
}

// It starts on the day before, so that the list of the first day is drawn up as that day begins,
// with all that it holds.
void Simulation::Begin(std::time_t before) {
  Clock::Freeze(before);
  scheduler_ = std::make_unique<DriverInstance>(loader_, host_);
  seed_.Seed();
  scheduler_->Initialize(kSchedulerDevice, house_.schedule);
  desk_.Begin(before, before, "down", {});
  day_ = DaysAfter(from_, -1);
}

void Simulation::RunMinute(std::time_t first, std::time_t last) {
  const LocalMinute a = LocalMinute::At(first);
  const LocalMinute b = LocalMinute::At(last);
  FindShift(first, last, a, b);
  const bool busy = pace_ == Pace::kEverySecond || IsBusy(last, a, b);
  before_ = b;
  if (!busy) return;
  for (std::time_t now = first; now <= last; ++now) Tick(now);
}

bool Simulation::IsBusy(std::time_t last, const LocalMinute& a, const LocalMinute& b) const {
  if (a.day != before_.day || b.day != a.day) return true;
  if (last - drawn_ <= kNearSeconds) return true;
  const auto carried = desk_.NextCarried();
  return (carried && *carried <= last) || busy_.Has(a) || busy_.Has(b);
}

void Simulation::FindShift(std::time_t first, std::time_t last, const LocalMinute& a,
                           const LocalMinute& b) {
  if (a.offset != before_.offset) queue_.Put(ClockShift{first, before_.offset, a.offset});
  if (a.offset == b.offset) return;
  std::time_t at = last;
  while (OffsetAt(at - 1) == b.offset) --at;
  queue_.Put(ClockShift{at, a.offset, b.offset});
}

void Simulation::Tick(std::time_t now) {
  Clock::Freeze(now);
  seed_.SeedOnNewDay();
  scheduler_->Driver().OnTimerExpired(SimulationHost::kTimer, 0);
  const auto trace = host_.TakeTrace();
  if (trace) {
    drawn_ = now;
    busy_.TakeUp(*trace);
  }
  if (trace && trace->day > day_ && trace->day <= to_) {
    day_ = trace->day;
    const std::time_t begin = FirstSecondOf(day_);
    queue_.BeginDay({day_, static_cast<long>(FirstSecondOf(DaysAfter(day_, 1)) - begin)}, now);
  }
  desk_.OnTick(now);
}

const Programming& Simulation::ProgrammingOf(unsigned long eventId) const {
  static const Programming plain;
  const auto found = house_.programming.find(eventId);
  return found == house_.programming.end() ? plain : found->second;
}

long long Simulation::OnDecision(const FiringDecision& decision) {
  if (decision.date < from_ || decision.date > to_) return 0;
  if (decision.verdict.usesSkip) house_.programming[decision.event].skipNext = false;
  if (LocalDay(decision.at) > to_ && day_ <= to_) {
    // What belongs to the last day and comes after its end.
    day_ = DaysAfter(to_, 1);
    queue_.BeginDay({day_, 0}, decision.at);
  }
  SimulatedOccurrence occurrence;
  occurrence.event = decision.event;
  occurrence.description = decision.description;
  occurrence.date = decision.date;
  occurrence.planned = decision.planned;
  occurrence.base = BaseOf(desk_.KnownEvent(decision.event));
  occurrence.drawn = decision.drawn;
  occurrence.at = decision.at;
  occurrence.lateSeconds = decision.lateSeconds;
  occurrence.outcome = OutcomeOf(decision.verdict);
  occurrence.reason = decision.reason;
  if (occurrence.outcome == OccurrenceState::kFired) occurrence.actions = ActionsOf(decision);
  queue_.Put(std::move(occurrence));
  return 0;
}

std::vector<SimulatedAction> Simulation::ActionsOf(const FiringDecision& decision) {
  std::vector<SimulatedAction> actions;
  for (const Trigger trigger : decision.triggers) {
    for (const Action& action : ProgrammingOf(decision.event).actions) {
      if (action.on == trigger) actions.push_back(Judged(action, decision));
    }
  }
  return actions;
}

SimulatedAction Simulation::Judged(const Action& action, const FiringDecision& decision) {
  SimulatedAction judged;
  judged.action =
      SentAction(action, {decision.event, decision.description, decision.planned, decision.at, 0});
  if (action.condition) {
    judged.runs =
        scheduler_->Test(action.condition->name, {{"CONDITIONAL_XML", action.condition->xml}});
    judged.condition = ConditionText(*action.condition);
    judged.because = ConditionBecause(*action.condition, decision.at);
  }
  return judged;
}

}  // namespace controller
