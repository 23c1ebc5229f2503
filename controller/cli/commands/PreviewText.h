#pragma once

#include "controller/cli/Json.h"
#include "controller/cli/commands/Session.h"

namespace controller::cli {

/// Writes what the controller answers to `POST /preview`: the sentence, when it comes (at most
/// `most` times), and, each on a line, its warnings.
void WritePreview(const Session& session, const Json& preview, std::size_t most);

/// What it would do, where `programming`, or a patch of it, holds actions.
void WriteAction(const Session& session, const Json& programming);

/// The same of an event that was just saved, with its id and its name: what `add` and `modify` say.
/// The event is there in any case, so that trouble with the preview is only a note.
void WriteSaved(Session& session, const Json& event, const std::string& done);

}  // namespace controller::cli
