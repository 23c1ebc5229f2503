#pragma once

#include <ctime>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "controller/EventElement.h"
#include "controller/EventMoves.h"
#include "controller/ProjectStore.h"
#include "controller/firing/DayPlan.h"

namespace controller {

/// What has been decided about one occurrence.
struct OccurrenceDecision {
  unsigned long event = 0;
  DayFields date;
  std::time_t planned = 0;
  /// Any but `kPending`.
  OccurrenceState outcome = OccurrenceState::kHeld;
};

/// What became of each occurrence, so that none is acted on twice. The book is kept in memory as
/// far back as it was loaded; who notes a decision also writes it to the project.
class DecisionBook {
 public:
  /// Reads what the project holds from this day on, in place of what was known. Throws a
  /// `Failure`, and has then changed nothing.
  void Load(ProjectStore& store, const DayFields& from);
  void Note(const OccurrenceDecision& decision);
  /// The event was acted on for that day.
  bool WasActedOn(unsigned long event, const DayFields& date) const {
    return ActedOn(event, date) != nullptr;
  }
  /// The decision by which it was; null where it was not.
  const OccurrenceDecision* ActedOn(unsigned long event, const DayFields& date) const;
  /// That very occurrence was held back.
  bool WasHeld(unsigned long event, const DayFields& date, std::time_t planned) const;
  /// The latest decision about the event on that day; null where there is none.
  const OccurrenceDecision* Find(unsigned long event, const DayFields& date) const;
  /// Forgets, in memory, what lies before this day.
  void Forget(const DayFields& before);
  /// What was decided goes with the events.
  void Move(const EventMoves& moves);

  /// These throw a `Failure` where the database does.
  static void Write(ProjectStore& store, const OccurrenceDecision& decision);
  static void Prune(ProjectStore& store, const DayFields& before);

 private:
  std::map<std::pair<DayFields, unsigned long>, std::vector<OccurrenceDecision>> decisions_;
};

}  // namespace controller
