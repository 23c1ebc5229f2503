#include <CLI/CLI.hpp>

#include "controller/Failure.h"
#include "controller/cli/commands/ActionOptions.h"
#include "controller/cli/commands/ClientCommands.h"
#include "controller/cli/commands/EventOptions.h"
#include "controller/cli/commands/FindEvent.h"
#include "controller/cli/commands/PreviewText.h"
#include "controller/cli/commands/Session.h"
#include "controller/cli/parse/ActionParts.h"
#include "controller/cli/show/EventText.h"

namespace controller::cli {

namespace {

constexpr std::size_t kPreviewed = 10;

struct ModifyLine : ClientOptions {
  std::string name;
  EventOptions event;
  ActionOptions action;
  std::optional<std::string> catchUp;
  std::string ifMatch;
  bool dryRun = false;
};

/// The event's only action, or an empty one where it has none.
Json OnlyAction(const Json& programming, const Json& event) {
  const Json& actions = programming.at("actions");
  if (actions.empty()) return Json::object();
  if (actions.size() == 1) return actions[0];
  throw Failure(EventName(event) + " has " + std::to_string(actions.size()) +
                    " actions; change them one by one with \"vexalink actions\"",
                ExitStatus::kBadInput);
}

/// What is to change of what the event does.
struct ProgrammingChange {
  /// Null: nothing.
  Json patch;
  /// That it was made for; empty: it does not matter.
  std::string version;
};

ProgrammingChange ChangeOfProgramming(const ModifyLine& line, Session& session, const Json& event) {
  Json patch = nullptr;
  if (line.catchUp) patch["catch_up"] = ParseCatchUp("--catch-up", *line.catchUp);
  if (line.action.IsEmpty()) return {patch, line.ifMatch};
  std::vector<std::string> notes;
  const Json programming = session.api.Get(EventPath(event, "/programming"));
  const Json action = ChangedAction(line.action, OnlyAction(programming, event), notes);
  patch["actions"] = Json::array({action});
  for (const std::string& note : notes) session.Note(note);
  // Whoever else changes the actions meanwhile must not lose that.
  return {patch, line.ifMatch.empty() ? session.api.Version() : line.ifMatch};
}

void CheckGiven(const ModifyLine& line) {
  const bool programming = line.catchUp || !line.action.IsEmpty();
  if (line.event.IsEmpty() && !programming) {
    throw Failure("nothing is given to change; see \"vexalink modify --help\"",
                  ExitStatus::kBadInput);
  }
  if (line.ifMatch.empty() || line.event.IsEmpty() || !programming) return;
  throw Failure(
      "--if-match is one version, and this would change the event and what it does; change them "
      "one "
      "after the other",
      ExitStatus::kBadInput);
}

int Preview(Session& session, const Json& event, const Json& patch, const Json& programming) {
  Json preview = session.api.Send("POST", "/preview", PatchedEvent(event, patch));
  if (session.json) {
    if (!programming.is_null()) preview["programming_patch"] = programming;
    session.WriteJson(preview);
    return 0;
  }
  WritePreview(session, preview, kPreviewed);
  WriteAction(session, programming);
  return 0;
}

void PatchProgramming(Session& session, const Json& event, const ProgrammingChange& change,
                      bool eventChanged) {
  try {
    session.api.IfMatch(change.version);
    session.api.Send("PATCH", EventPath(event, "/programming"), change.patch);
  } catch (const Failure& failure) {
    if (!eventChanged) throw;
    throw Failure(std::string("the event is changed, but not what it does: ") + failure.what(),
                  failure.Status());
  }
}

int Modify(const ModifyLine& line, Session& session) {
  CheckGiven(line);
  const Json event = session.api.Get(EventPath(FindEvent(session.api, line.name)));
  const Json patch = EventPatch(line.event, session.Today(), event);
  const ProgrammingChange programming = ChangeOfProgramming(line, session, event);
  if (line.dryRun) return Preview(session, event, patch, programming.patch);
  if (!patch.empty()) {
    session.api.IfMatch(line.ifMatch);
    session.api.Send("PATCH", EventPath(event), patch);
  }
  if (!programming.patch.is_null()) {
    PatchProgramming(session, event, programming, !patch.empty());
  }
  const Json changed = session.api.Get(EventPath(event));
  if (session.json) {
    session.WriteJson(changed);
  } else {
    WriteSaved(session, changed, "changed");
  }
  return 0;
}

}  // namespace

void AddModifyCommand(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<ModifyLine>();
  CLI::App* command =
      AddClientCommand(app, run, "modify", "Change an event: what is given, and nothing else", line,
                       [line](Session& session) { return Modify(*line, session); });
  AddEventArgument(*command, line->name);
  command->add_option("--description", line->event.description, "What it is called from now on")
      ->type_name("TEXT");
  AddEventOptions(*command, line->event);
  AddActionOptions(*command, line->action);
  command
      ->add_option("--catch-up", line->catchUp,
                   "What happens if it was missed: ignore, always, or only so late")
      ->type_name("ignore|always|DURATION");
  command
      ->add_option("--if-match", line->ifMatch,
                   "Only if this is still its version; \"show --json\" tells it")
      ->type_name("VERSION");
  command->add_flag("--dry-run", line->dryRun, "Change nothing; tell what it would be");
  command->footer(
      "The options of an action change the event's only action, or give it its first; --if none "
      "takes the condition away.\n\n"
      "Examples:\n"
      "  vexalink modify Porch --at sunset+15\n"
      "  vexalink modify 7 --every weekday --until never --dry-run\n\n" +
      ClientExitStatuses());
}

}  // namespace controller::cli
