#pragma once

#include "controller/cli/Json.h"
#include "controller/cli/commands/Session.h"

namespace controller::cli {

/// What an event does, numbered.
void WriteActions(const Session& session, const Json& event, const Json& programming);
/// The answer of `POST /actions/test`.
void WriteOutcome(const Session& session, const Json& outcome);
/// The answer of `GET /actions/running`, as the session has it.
void WriteRunning(const Session& session, const Json& answer);

}  // namespace controller::cli
