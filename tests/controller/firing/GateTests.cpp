// What is held back, and why.

#include <gtest/gtest.h>

#include "controller/firing/Gate.h"

namespace controller {
namespace {

constexpr DayFields kToday{2026, 11, 21};
constexpr DayFields kTomorrow{2026, 11, 22};

GateVerdict Held(const char* reason, bool usesSkip = false) {
  return {GateVerdict::Kind::kHold, reason, usesSkip};
}
GateVerdict Runs(const char* reason) { return {GateVerdict::Kind::kRun, reason, false}; }
GateVerdict Missed(const char* reason) { return {GateVerdict::Kind::kMiss, reason, false}; }

GateFacts Today(const Programming& programming) {
  return {programming, kToday, {}, false, false, false, 0, false, false};
}

TEST(Gate, LetsPassWhatComesInTime) {
  const Programming plain;
  for (const long late : {-60L, 0L, 1L, 60L}) {
    GateFacts facts = Today(plain);
    facts.lateSeconds = late;
    EXPECT_EQ(Judge(facts), Runs("timer")) << late;
  }
}

TEST(Gate, AsksThePolicyAboutWhatIsLate) {
  using Policy = CatchUp::Policy;
  const struct {
    const char* why;
    CatchUp policy;
    long late;
    bool superseded;
    GateVerdict expected;
  } rows[] = {
      {"a little late is caught up", {}, 61, false, Runs("caught-up")},
      {"ten minutes, which is the limit if nothing is said", {}, 600, false, Runs("caught-up")},
      {"and beyond", {}, 601, false, Missed("")},
      {"three minutes are asked for", {Policy::kWithin, 3}, 180, false, Runs("caught-up")},
      {"and are over", {Policy::kWithin, 3}, 181, false, Missed("")},
      {"never", {Policy::kIgnore, 10}, 61, false, Missed("")},
      {"in time all the same", {Policy::kIgnore, 10}, 60, false, Runs("timer")},
      {"always", {Policy::kAlways, 10}, 10000000, false, Runs("caught-up")},
      {"a later one is caught up", {Policy::kAlways, 10}, 10000, true, Missed("superseded")},
  };
  for (const auto& row : rows) {
    Programming programming;
    programming.catchUp = row.policy;
    GateFacts facts = Today(programming);
    facts.lateSeconds = row.late;
    facts.superseded = row.superseded;
    EXPECT_EQ(Judge(facts), row.expected) << row.why;
  }
}

TEST(Gate, TreatsWhatTheSchedulerDroppedAsLate) {
  Programming programming;
  GateFacts facts = Today(programming);
  facts.dropped = true;
  EXPECT_EQ(Judge(facts), Runs("caught-up"));
  programming.catchUp.policy = CatchUp::Policy::kIgnore;
  EXPECT_EQ(Judge(facts), Missed(""));
}

TEST(Gate, PausesAndAbsencesEndWithTheDayThatIsNamed) {
  Programming paused;
  paused.pausedUntil = kTomorrow;
  EXPECT_EQ(Judge(Today(paused)), Held("paused"));
  GateFacts facts = Today(paused);
  facts.date = kTomorrow;
  EXPECT_EQ(Judge(facts), Runs("timer"));
  const Programming plain;
  GateFacts away = Today(plain);
  away.awayUntil = kTomorrow;
  EXPECT_EQ(Judge(away), Held("away"));
  away.date = kTomorrow;
  EXPECT_EQ(Judge(away), Runs("timer"));
}

/// The states of an event as a machine of its own: what holds a firing back, in the order of their
/// weight, and what a firing does to them.
struct Model {
  bool acted, unlisted, disabled, away, paused, late, caughtUp, skip;

  GateVerdict Judge() const {
    if (acted) return Held("already-acted");
    if (unlisted) return Held("not-listed");
    if (disabled) return Held("disabled");
    if (away) return Held("away");
    if (paused) return Held("paused");
    if (late && !caughtUp) return Missed("");
    if (skip) return Held("skipped", true);
    return Runs(late ? "caught-up" : "timer");
  }
};

TEST(Gate, FollowsTheModelInEveryCombinationOfItsStates) {
  for (unsigned bits = 0; bits < 256; ++bits) {
    const auto bit = [bits](unsigned place) { return (bits >> place & 1) != 0; };
    const Model model{bit(0), bit(1), bit(2), bit(3), bit(4), bit(5), bit(6), bit(7)};
    Programming programming;
    programming.enabled = !model.disabled;
    if (model.paused) programming.pausedUntil = kTomorrow;
    programming.catchUp.policy =
        model.caughtUp ? CatchUp::Policy::kAlways : CatchUp::Policy::kIgnore;
    programming.skipNext = model.skip;
    GateFacts facts = Today(programming);
    if (model.away) facts.awayUntil = kTomorrow;
    facts.actedOn = model.acted;
    facts.unlisted = model.unlisted;
    facts.lateSeconds = model.late ? 61 : 0;
    EXPECT_EQ(Judge(facts), model.Judge()) << "bits " << bits;
  }
}

TEST(Gate, WhatWasHeldBackOnceIsNotTriedAgainAtTheSameTime) {
  const Programming plain;
  GateFacts facts = Today(plain);
  facts.heldBefore = true;
  EXPECT_EQ(Judge(facts), Held("already-acted"));
}

}  // namespace
}  // namespace controller
