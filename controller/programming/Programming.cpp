#include "controller/programming/Programming.h"

namespace controller {

const char* TriggerName(Trigger trigger) {
  switch (trigger) {
    case Trigger::kPush:
      return "push";
    case Trigger::kClick:
      return "click";
    case Trigger::kEvent:
      break;
  }
  return "event";
}

bool Programming::IsPlain() const {
  const CatchUp plain;
  return enabled && !pausedUntil && !skipNext && catchUp.policy == plain.policy &&
         catchUp.minutes == plain.minutes && actions.empty();
}

}  // namespace controller
