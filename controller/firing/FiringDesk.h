#pragma once

#include <ctime>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "controller/DriverInstance.h"
#include "controller/firing/DayDraw.h"
#include "controller/firing/DayPlan.h"
#include "controller/firing/DecisionBook.h"
#include "controller/firing/EventCatalog.h"
#include "controller/firing/Gate.h"
#include "controller/firing/ScheduleTrace.h"

namespace controller {

/// What an occurrence comes to by a verdict: fired, missed or held.
OccurrenceState OutcomeOf(const GateVerdict& verdict);

/// What was decided about an occurrence.
struct FiringDecision {
  GateVerdict verdict;
  unsigned long event = 0;
  std::string description;
  DayFields date;
  std::time_t planned = 0;
  /// The random part in minutes, where it is known.
  std::optional<long> drawn;
  std::time_t at = 0;
  long lateSeconds = 0;
  /// What has come of the scheduler: the firing itself and the calls on the event's button. An
  /// occurrence that is caught up has them all.
  std::vector<Trigger> triggers = {Trigger::kEvent, Trigger::kPush, Trigger::kClick};
  /// Of a missed one: "down", "clock-jump", "past-midnight", "left-out", "superseded"; else the
  /// verdict's.
  std::string reason;
};

/// What the firing desk needs of the house. Called outside the drivers' calls.
class IFiringHouse {
 public:
  virtual DriverInstance& Scheduler() = 0;
  virtual const Programming& ProgrammingOf(unsigned long eventId) const = 0;
  /// The house is away on the days before this one, or was: what belongs to one of them may come
  /// later.
  virtual std::optional<DayFields> AwayBefore() const = 0;
  /// It is noted in the book. The house records it and, where it runs, acts on it once that is
  /// safe; a skip that was used up is the house's to take back. Answers the journal's row.
  virtual long long OnDecision(const FiringDecision& decision) = 0;
  /// The plan of the day is another.
  virtual void OnPlanChanged() = 0;

 protected:
  ~IFiringHouse() = default;
};

/// Where what the scheduler fires is met with what the house wants: knows what is to happen today,
/// decides about each firing, and finds out what should have happened and did not. Every occurrence
/// of the scheduler's list of a day gets one decision.
class FiringDesk {
 public:
  explicit FiringDesk(IFiringHouse& house) : house_(house) {}

  DecisionBook& Book() { return book_; }
  EventCatalog& Catalog() { return catalog_; }
  /// The event as it was last read; null where it is not known.
  const EventElement* KnownEvent(unsigned long event) const { return catalog_.Known(event); }
  DayPlan& Plan() { return plan_; }
  const DayPlan& Plan() const { return plan_; }

  /// When the next of those is due whose time falls past the end of their day.
  std::optional<std::time_t> NextCarried() const;
  /// Whether any of them belongs to this day or one before.
  bool HasCarriedOf(const DayFields& day) const;

  /// How far everything that fell due has been decided.
  std::time_t AccountedUntil() const { return accountedUntil_; }

  /// A scheduler has begun, at `now`. Whatever fell due after `from` was not its to fire; it is
  /// missed because of `cause`, or caught up. `draws` are the lists of these days, if the scheduler
  /// has begun with a schedule; the book must reach back to the day before `from`.
  void Begin(std::time_t from, std::time_t now, const std::string& cause,
             const std::optional<DayDraws>& draws);

  /// Inside the driver's calls.
  void OnFired(unsigned long event) { fired_.push_back({event, {Trigger::kEvent}}); }
  /// A call on the button of the event that has fired last.
  void OnBoundCall(unsigned long binding, const std::string& command);
  void OnLog(const char* text) { trace_.Read(text); }
  /// After the driver's timer call: decides about what has fired, and takes up a new day.
  void OnTick(std::time_t now);
  /// After a command: one event is new, another, or gone.
  void OnEventChanged(unsigned long event, std::time_t now);

 private:
  struct Missed {
    PlannedOccurrence occurrence;
    DayFields date;
    long lateSeconds = 0;
    bool leftOut = false;
  };

  /// What the scheduler will not fire, or may not.
  struct Carried {
    PlannedOccurrence occurrence;
    DayFields date;
    /// When it is decided about.
    std::time_t at = 0;
  };

  struct Fired {
    unsigned long event = 0;
    std::vector<Trigger> triggers;
  };
  struct Circumstances {
    bool superseded = false;
    bool dropped = false;
    bool unlisted = false;
    /// Null: all of them.
    const std::vector<Trigger>* triggers = nullptr;
  };

  PlannedOccurrence Occurrence(const EventElement& event, std::time_t planned) const;
  /// Today's occurrence of an event by the scheduler's listing, which answers as for midnight; left
  /// out if the scheduler, taking it up at `now`, counts otherwise.
  std::optional<PlannedOccurrence> Listed(unsigned long event, std::time_t now);
  DayPlan PlanOf(const DayFields& day, const ScheduleTrace* draw);
  void TakeUpDraw(DayPlan& plan, const ScheduleTrace& draw, std::time_t after);
  void TakeUpDecided(DayPlan& plan, std::time_t now);
  void FindMissed(DayPlan& plan, std::time_t from, std::time_t now, std::vector<Missed>* missed);
  void DecideMissed(std::vector<Missed> missed, const std::string& cause, std::time_t now);
  void DecideFired(const Fired& fired, std::time_t now);
  void CloseDay(std::time_t now);
  void Carry(PlannedOccurrence occurrence, const DayFields& date);
  void CarryUntil(std::time_t at, PlannedOccurrence occurrence, const DayFields& date);
  void DropCarried(unsigned long event, const DayFields& date);
  bool IsCarried(unsigned long event, const DayFields& date) const;
  void CarryLeftOut();
  void NewDay(const ScheduleTrace& trace, std::time_t now);
  bool DecideCarried(std::time_t now);
  void Decide(PlannedOccurrence& occurrence, const DayFields& date, Circumstances given,
              const std::string& cause, std::time_t now);

  IFiringHouse& house_;
  EventCatalog catalog_;
  DecisionBook book_;
  DayPlan plan_;
  ScheduleTraceReader trace_;
  std::vector<Fired> fired_;
  /// What the scheduler will not fire, because it has dropped it with its day or left it out; they
  /// are caught up when their time comes. So is what may have been drawn into the past as it came
  /// into the schedule, once it can no longer come. In the order of that time; each occurrence
  /// once.
  std::vector<Carried> carried_;
  std::time_t accountedUntil_ = 0;
};

}  // namespace controller
