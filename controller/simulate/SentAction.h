#pragma once

#include "controller/programming/ActionRunner.h"
#include "controller/programming/Programming.h"

namespace controller {

/// The action as it would go out at a firing: its placeholders replaced, escaped where they must
/// be.
Action SentAction(const Action& action, const FiringFacts& facts);

}  // namespace controller
