#pragma once

#include <nlohmann/json.hpp>

#include "controller/DriverLoader.h"
#include "controller/PlayHost.h"
#include "controller/ScenarioAction.h"

class IAgentScheduler;

namespace controller {

/// The actions of a scenario that name an operation in "call". Each throws `ScenarioError` where
/// the name is unknown or the arguments do not fit it.

/// Calls one operation of the scheduler's interface with "args"; its result, null for none. Numbers
/// are narrowed to the operation's types.
nlohmann::json CallInterface(IAgentScheduler& scheduler, const ScenarioAction& action);

/// Calls one of the agent library's comparison functions with "args".
int CallComparator(const DriverLoader& library, const ScenarioAction& action);

/// Sets what an operation of the host answers from now on.
void SetHostAnswer(const ScenarioAction& action, PlayHost* host);

}  // namespace controller
