#pragma once

#include <cstdint>
#include <ctime>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "controller/DriverInstance.h"
#include "controller/DriverLoader.h"
#include "controller/EventElement.h"
#include "controller/HousePlace.h"
#include "controller/Journal.h"
#include "controller/ProjectStore.h"
#include "controller/ScheduleReview.h"
#include "controller/firing/DayPlan.h"
#include "controller/programming/ActionRunner.h"
#include "controller/programming/Programming.h"

namespace controller {

/// What is told about a house as it happens. Called from the loop, outside the driver's calls and
/// after what it tells is on the disk.
class IHouseListener {
 public:
  enum class Change { kAdded, kModified, kDeleted };

  virtual void OnEventChanged(Change change, unsigned long eventId) = 0;
  virtual void OnProgrammingChanged(unsigned long eventId) = 0;
  virtual void OnJournalRow(const JournalRow& row) = 0;
  /// Name, place, zone or being away.
  virtual void OnProjectChanged() = 0;
  /// Today's list is another: a new day, a changed event, another place.
  virtual void OnTodayChanged() = 0;
  virtual void OnSaving(bool works, const std::string& why) = 0;
  /// The whole schedule was replaced: read everything again.
  virtual void OnScheduleReplaced() = 0;

 protected:
  ~IHouseListener() = default;
};

/// "added", "modified" or "deleted", as the journal and the stream name it.
inline const char* ChangeName(IHouseListener::Change change) {
  switch (change) {
    case IHouseListener::Change::kAdded:
      return "added";
    case IHouseListener::Change::kDeleted:
      return "deleted";
    default:
      return "modified";
  }
}

/// What has been counted since the controller started.
struct HouseCounters {
  /// By reason: "timer", "caught-up", "by-hand".
  std::map<std::string, std::uint64_t> fired;
  std::map<std::string, std::uint64_t> held;
  std::map<std::string, std::uint64_t> missed;
  std::map<std::string, std::uint64_t> actions;
  /// How late firings were, in seconds: how many up to 0.1, 0.25, 0.5, 1, 2.5, 5, 10, 60, beyond.
  std::vector<std::uint64_t> delays = std::vector<std::uint64_t>(9);
  double delaySum = 0;
  std::uint64_t saves = 0;
  std::uint64_t saveFailures = 0;
  std::uint64_t clockJumps = 0;
  std::uint64_t zoneChanges = 0;
  std::uint64_t ticks = 0;
  /// How late the latest tick came, and the latest of all, in seconds.
  double tickLateness = 0;
  double worstTickLateness = 0;
};

/// What may be changed about the project itself; what is left out stays.
struct ProjectPatch {
  std::optional<std::string> name;
  std::optional<Place> place;
  /// The inner one empty: not away any longer.
  std::optional<std::optional<DayFields>> awayUntil;
};

/// A running controller as those who look at it and change it see it. From the loop only, outside
/// the driver's calls. What is given must have been checked: the house does as it is told, or
/// answers that the scheduler would not.
class House {
 public:
  /// The end of a change, told once, from the loop and never from inside the call: with the empty
  /// text once the change is on the disk; else with why it is not yet (it is in effect, and saved
  /// as soon as that works).
  using Saved = std::function<void(const std::string& trouble)>;

  virtual ~House() = default;

  // Looking.
  /// For requests and conditions; commands go through the operations below.
  virtual DriverInstance& Scheduler() = 0;
  virtual const DriverLoader& Loader() const = 0;
  virtual ProjectStore& Store() = 0;
  virtual const Programming& ProgrammingOf(unsigned long eventId) const = 0;
  /// The civil day whose occurrences these are, and these in the order of their time.
  virtual DayFields TodayDate() const = 0;
  virtual std::vector<PlannedOccurrence> Today() const = 0;
  virtual std::vector<JournalRow> Rows(const JournalQuery& query) = 0;
  virtual std::string Name() const = 0;
  virtual const HousePlace& WhereItIs() const = 0;
  /// Nothing is done before this day begins; nothing: not away.
  virtual std::optional<DayFields> AwayUntil() const = 0;
  virtual std::map<std::pair<unsigned long, unsigned long>, std::string> Variables() const = 0;
  virtual const HouseCounters& Counters() const = 0;
  /// Empty once the scheduler runs, else what is waited for. Until then nothing of the scheduler
  /// can be asked for or changed.
  virtual std::string WaitingFor() const = 0;
  /// Empty while saving works, else why it does not.
  virtual std::string SavingTrouble() const = 0;
  virtual std::vector<RunningAction> RunningActions() const = 0;
  virtual std::time_t StartedAt() const = 0;

  // Changing.
  /// The new event's id, and its programming beside it; 0 where the scheduler does not take it:
  /// `saved` is then not called, and nothing has changed.
  virtual unsigned long AddEvent(const EventElement& event, const Programming* programming,
                                 const std::string& actor, Saved saved) = 0;
  /// False where there is no such event or the scheduler would not take the new one: the old one
  /// is then still there.
  virtual bool ReplaceEvent(const EventElement& event, const std::string& actor, Saved saved) = 0;
  virtual bool DeleteEvent(unsigned long eventId, const std::string& actor, Saved saved) = 0;
  enum class Restored { kDone, kNothingToRestore, kIdTaken, kDescriptionTaken };
  virtual Restored RestoreEvent(unsigned long eventId, const std::string& actor, Saved saved) = 0;
  virtual void SetProgramming(unsigned long eventId, Programming programming,
                              const std::string& actor, Saved saved) = 0;
  /// As if the event had fired, or its button been worked: the actions of these triggers, in this
  /// order. `begun` is told the journal's row once they have begun.
  virtual void WorkByHand(unsigned long eventId, const std::vector<Trigger>& triggers,
                          const std::string& actor,
                          std::function<void(std::int64_t journalRow)> begun) = 0;
  /// Does it now, without its delay, and tells what came of it.
  virtual void TryAction(const Action& action, unsigned long eventId, const std::string& actor,
                         std::function<void(const ActionOutcome&)> done) = 0;
  virtual void ChangeProject(const ProjectPatch& patch, const std::string& actor, Saved saved) = 0;
  /// Puts `xml` in the place of the schedule; the one before is put aside. Throws a `Failure` where
  /// the text is no schedule. Where something of it would be dropped and `force` is not given
  /// nothing is changed, and `saved` is not called.
  struct Imported {
    ScheduleReview review;
    bool done = false;
  };
  virtual Imported ImportSchedule(const std::string& xml, bool force, const std::string& actor,
                                  Saved saved) = 0;
  virtual void BackUpSchedule(const std::string& actor, Saved saved) = 0;
  /// `number` 1 is the newest. False where there is none.
  virtual bool RestoreBackup(std::size_t number, const std::string& actor, Saved saved) = 0;
  virtual void SetHostVariable(unsigned long device, unsigned long variable,
                               const std::string& value, const std::string& actor) = 0;

  /// At most one; null: none any longer. Must outlive the house or be taken away before.
  virtual void SetListener(IHouseListener* listener) = 0;
};

}  // namespace controller
