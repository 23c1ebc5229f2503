#include <CLI/CLI.hpp>

#include "controller/cli/commands/ActionOptions.h"
#include "controller/cli/commands/ClientCommands.h"
#include "controller/cli/commands/EventOptions.h"
#include "controller/cli/commands/PreviewText.h"
#include "controller/cli/commands/Session.h"
#include "controller/cli/parse/ActionParts.h"

namespace controller::cli {

namespace {

constexpr std::size_t kPreviewed = 10;

struct AddLine : ClientOptions {
  EventOptions event;
  ActionOptions action;
  std::optional<std::string> catchUp;
  bool disabled = false;
  bool dryRun = false;
};

/// Null: as every event's is at first.
Json Programming(const AddLine& line, std::vector<std::string>& notes) {
  Json programming = nullptr;
  if (line.disabled) programming["enabled"] = false;
  if (line.catchUp) programming["catch_up"] = ParseCatchUp("--catch-up", *line.catchUp);
  if (!line.action.IsEmpty()) {
    programming["actions"] = Json::array({ChangedAction(line.action, Json::object(), notes)});
  }
  return programming;
}

int AddEvent(const AddLine& line, Session& session) {
  std::vector<std::string> notes;
  const Json programming = Programming(line, notes);
  Json event = NewEvent(line.event, session.Today());
  if (!programming.is_null()) event["programming"] = programming;
  for (const std::string& note : notes) session.Note(note);
  if (line.dryRun) {
    const Json preview = session.api.Send("POST", "/preview", event);
    if (session.json) {
      session.WriteJson(preview);
    } else {
      WritePreview(session, preview, kPreviewed);
      WriteAction(session, programming);
    }
    return 0;
  }
  const Json added = session.api.Send("POST", "/events", event);
  if (session.json) {
    session.WriteJson(added);
  } else {
    WriteSaved(session, added, "added");
  }
  return 0;
}

}  // namespace

void AddAddCommand(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<AddLine>();
  CLI::App* command =
      AddClientCommand(app, run, "add", "Add an event to the schedule", line,
                       [line](Session& session) { return AddEvent(*line, session); });
  command
      ->add_option("DESCRIPTION", line->event.description,
                   "What the event is called, 1 to 200 characters, no other event's")
      ->required();
  AddEventOptions(*command, line->event);
  command->get_option("--at")->required();
  AddActionOptions(*command, line->action);
  command
      ->add_option("--catch-up", line->catchUp,
                   "What happens if it was missed: ignore, always, or only so late (default 10m)")
      ->type_name("ignore|always|DURATION");
  command->add_flag("--disabled", line->disabled, "It does nothing until it is enabled");
  command->add_flag("--dry-run", line->dryRun,
                    "Add nothing; tell what it would be and when it would come");
  command->footer(
      "More actions are added by the command actions.\n\n"
      "Examples:\n"
      "  vexalink add \"Porch\" --at \"sunset-30\" --every \"2 weeks on mon,fri\" \\\n"
      "      --until 2027-03-31 --run 'curl http://hub.local/porch/on'\n"
      "  vexalink add \"Alarm\" --at 6:45am --every weekday --hook http://hub.local/light \\\n"
      "      --if \"time is night\"\n"
      "  vexalink add \"Bins\" --at 19:00 --every \"month on the last thu\" --dry-run\n\n" +
      ClientExitStatuses());
}

}  // namespace controller::cli
