#include "controller/firing/Gate.h"

#include <string_view>

namespace controller {

namespace {

constexpr GateVerdict Hold(const char* reason) { return {GateVerdict::Kind::kHold, reason, false}; }

}  // namespace

bool GateVerdict::operator==(const GateVerdict& other) const {
  return kind == other.kind && usesSkip == other.usesSkip &&
         std::string_view(reason) == other.reason;
}

bool IsCaughtUp(const CatchUp& policy, long lateSeconds) {
  switch (policy.policy) {
    case CatchUp::Policy::kAlways:
      return true;
    case CatchUp::Policy::kWithin:
      return lateSeconds <= 60L * policy.minutes;
    default:
      return false;
  }
}

GateVerdict Judge(const GateFacts& facts) {
  const Programming& programming = facts.programming;
  if (facts.actedOn || facts.heldBefore) return Hold("already-acted");
  if (facts.unlisted) return Hold("not-listed");
  if (!programming.enabled) return Hold("disabled");
  if (facts.awayUntil && facts.date < *facts.awayUntil) return Hold("away");
  if (programming.pausedUntil && facts.date < *programming.pausedUntil) return Hold("paused");
  const bool late = facts.dropped || facts.lateSeconds > kOnTimeSeconds;
  if (late && facts.superseded) return {GateVerdict::Kind::kMiss, "superseded", false};
  if (late && !IsCaughtUp(programming.catchUp, facts.lateSeconds)) {
    return {GateVerdict::Kind::kMiss, "", false};
  }
  if (programming.skipNext) return {GateVerdict::Kind::kHold, "skipped", true};
  return {GateVerdict::Kind::kRun, late ? "caught-up" : "timer", false};
}

}  // namespace controller
