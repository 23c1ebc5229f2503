#include "controller/firing/DecisionBook.h"

#include <algorithm>
#include <string>
#include <utility>

#include "controller/LocalTimeText.h"

namespace controller {

namespace {

OccurrenceState StateOf(const std::string& outcome) {
  if (outcome == StateName(OccurrenceState::kFired)) return OccurrenceState::kFired;
  if (outcome == StateName(OccurrenceState::kMissed)) return OccurrenceState::kMissed;
  return OccurrenceState::kHeld;
}

}  // namespace

const char* StateName(OccurrenceState state) {
  switch (state) {
    case OccurrenceState::kFired:
      return "fired";
    case OccurrenceState::kHeld:
      return "held";
    case OccurrenceState::kMissed:
      return "missed";
    default:
      return "pending";
  }
}

void DecisionBook::Load(ProjectStore& store, const DayFields& from) {
  DecisionBook loaded;
  SqliteStatement query(store.Database(),
                        "SELECT event, date, planned, outcome FROM decision WHERE date >= ?1");
  query.Bind(1, DayNumber(from));
  while (query.Step()) {
    loaded.Note({static_cast<unsigned long>(query.NumberAt(0)), DayOfNumber(query.NumberAt(1)),
                 query.NumberAt(2), StateOf(query.TextAt(3))});
  }
  *this = std::move(loaded);
}

void DecisionBook::Note(const OccurrenceDecision& decision) {
  decisions_[{decision.date, decision.event}].push_back(decision);
}

const OccurrenceDecision* DecisionBook::ActedOn(unsigned long event, const DayFields& date) const {
  const auto found = decisions_.find({date, event});
  if (found == decisions_.end()) return nullptr;
  const auto acted = std::find_if(
      found->second.begin(), found->second.end(),
      [](const OccurrenceDecision& known) { return known.outcome == OccurrenceState::kFired; });
  return acted == found->second.end() ? nullptr : &*acted;
}

bool DecisionBook::WasHeld(unsigned long event, const DayFields& date, std::time_t planned) const {
  const auto found = decisions_.find({date, event});
  if (found == decisions_.end()) return false;
  return std::any_of(found->second.begin(), found->second.end(),
                     [planned](const OccurrenceDecision& known) {
                       return known.planned == planned && known.outcome == OccurrenceState::kHeld;
                     });
}

const OccurrenceDecision* DecisionBook::Find(unsigned long event, const DayFields& date) const {
  const auto found = decisions_.find({date, event});
  return found == decisions_.end() ? nullptr : &found->second.back();
}

void DecisionBook::Forget(const DayFields& before) {
  decisions_.erase(decisions_.begin(), decisions_.lower_bound({before, 0}));
}

void DecisionBook::Move(const EventMoves& moves) {
  decltype(decisions_) moved;
  for (auto& [key, decisions] : decisions_) {
    const auto move = moves.find(key.second);
    const unsigned long event = move == moves.end() ? key.second : move->second;
    if (event == 0) continue;
    for (OccurrenceDecision& decision : decisions) {
      decision.event = event;
      moved[{key.first, event}].push_back(decision);
    }
  }
  decisions_ = std::move(moved);
}

void DecisionBook::Write(ProjectStore& store, const OccurrenceDecision& decision) {
  // What was acted on stays acted on, whatever is noted about the same moment afterwards.
  SqliteStatement(store.Database(),
                  "INSERT INTO decision (event, date, planned, outcome) VALUES (?1, ?2, ?3, ?4) "
                  "ON CONFLICT (event, date, planned) DO UPDATE SET outcome = excluded.outcome "
                  "WHERE outcome <> 'fired'")
      .Bind(1, static_cast<std::int64_t>(decision.event))
      .Bind(2, DayNumber(decision.date))
      .Bind(3, static_cast<std::int64_t>(decision.planned))
      .Bind(4, StateName(decision.outcome))
      .Step();
}

void DecisionBook::Prune(ProjectStore& store, const DayFields& before) {
  SqliteStatement(store.Database(), "DELETE FROM decision WHERE date < ?1")
      .Bind(1, DayNumber(before))
      .Step();
}

}  // namespace controller
