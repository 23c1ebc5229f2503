#pragma once

#include <optional>

#include "controller/EventElement.h"
#include "controller/programming/Programming.h"

namespace controller {

/// Later than this a firing counts as late, and the event's catch-up policy decides about it.
constexpr long kOnTimeSeconds = 60;

/// Everything that decides whether an occurrence is acted on.
struct GateFacts {
  const Programming& programming;
  /// The civil day of the occurrence.
  DayFields date;
  /// The whole house is away until this day begins.
  std::optional<DayFields> awayUntil;
  /// The event was acted on for this day.
  bool actedOn = false;
  /// This very occurrence was held back before.
  bool heldBefore = false;
  /// The scheduler's list of the day does not have it.
  bool unlisted = false;
  /// How long ago it was due; negative before that.
  long lateSeconds = 0;
  /// The scheduler has dropped it with its day; it counts as late.
  bool dropped = false;
  /// A later occurrence of the event is missed too, and is caught up in its place.
  bool superseded = false;
};

/// What is to happen with an occurrence.
struct GateVerdict {
  enum class Kind { kRun, kHold, kMiss };
  Kind kind = Kind::kRun;
  /// As docs/api.md names it; for `kMiss` empty where the cause is the caller's to tell.
  const char* reason = "";
  /// It has used up the event's `skipNext`.
  bool usesSkip = false;

  bool operator==(const GateVerdict& other) const;
};

/// Whether a late occurrence would be caught up.
bool IsCaughtUp(const CatchUp& policy, long lateSeconds);

/// Decides. The first of these that applies: acted on before, or held before: held; not in the list
/// of its day: held; disabled, away, paused: held; late and not to be caught up: missed; to be
/// skipped: held, and the skip is used up; else it runs, "timer" or, where it is late, "caught-up".
GateVerdict Judge(const GateFacts& facts);

}  // namespace controller
