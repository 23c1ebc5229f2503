#include <CLI/CLI.hpp>
#include <algorithm>

#include "controller/Failure.h"
#include "controller/Printable.h"
#include "controller/cli/commands/ClientCommands.h"
#include "controller/cli/commands/KindOption.h"
#include "controller/cli/commands/Session.h"
#include "controller/cli/net/EventStream.h"
#include "controller/cli/show/DisplayWidth.h"
#include "controller/cli/show/JournalText.h"
#include "controller/cli/show/MomentText.h"

namespace controller::cli {

namespace {

constexpr std::size_t kKindWidth = 10;

struct WatchLine : ClientOptions {
  std::vector<std::string> kinds;
};

std::string JournalLineText(const Session& session, const Json& row) {
  const std::string event = JournalEventText(row);
  const std::string kind = PadToWidth(Printable(TextField(row, "kind")), kKindWidth);
  return Printable(ExactMomentText(TextField(row, "at"))) + "  " +
         session.terminal.Styled(kind, JournalStyle(row)) + "  " +
         (event.empty() ? "" : event + "  ") + JournalWhatText(row);
}

std::string SavingText(const Session& session, const Json& saving) {
  if (FlagField(saving, "ok", false)) return "saving works again";
  return session.terminal.Styled("saving fails: ", Style::kBad) +
         Printable(TextField(saving, "why"));
}

/// What people are told of an event; empty: nothing. What happens to events and their programming
/// stands in the journal too.
std::string TextOf(const WatchLine& line, const Session& session, const SseEvent& event) {
  const Json data = Json::parse(event.data, nullptr, /*allow_exceptions=*/false);
  if (event.type == "reset") return "some of what happened meanwhile is not known any longer";
  if (!data.is_object()) return {};
  if (event.type == "saving") return SavingText(session, data);
  if (event.type != "journal") return {};
  const std::string kind = TextField(data, "kind");
  const bool wanted = line.kinds.empty() ||
                      std::find(line.kinds.begin(), line.kinds.end(), kind) != line.kinds.end();
  return wanted ? JournalLineText(session, data) : "";
}

/// One line: the stream's event with its id and its data.
std::string JsonLine(const SseEvent& event) {
  Json data = Json::parse(event.data, nullptr, /*allow_exceptions=*/false);
  if (data.is_discarded()) data = event.data;
  const Json line = {{"event", event.type}, {"id", event.id}, {"data", data}};
  return line.dump(-1, ' ', /*ensure_ascii=*/true, Json::error_handler_t::replace);
}

int Watch(const WatchLine& line, Session& session) {
  const auto tell = [&](const SseEvent& event) {
    const std::string text = session.json ? JsonLine(event) : TextOf(line, session, event);
    if (text.empty()) return;
    session.terminal.out << text << std::endl;  // whoever reads it reads it now
    if (!session.terminal.out) throw Failure("standard output could not be written");
  };
  EventStream stream(session.api.Http(), tell,
                     [&session](const std::string& text) { session.Note(text); });
  stream.Follow();
  return 0;
}

}  // namespace

void AddWatchCommand(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<WatchLine>();
  CLI::App* command =
      AddClientCommand(app, run, "watch", "Tell what happens as it happens, until Ctrl-C", line,
                       [line](Session& session) { return Watch(*line, session); });
  AddKindOption(
      *command, line->kinds,
      "Only rows of the journal of this kind; may be given several times. Not for --json");
  command->footer(
      "A connection that is lost is made again, and what happened meanwhile is told then. With "
      "--json each event of the stream is an object on a line of its own: {\"event\", \"id\", "
      "\"data\"}.\n\n" +
      ClientExitStatuses());
}

}  // namespace controller::cli
