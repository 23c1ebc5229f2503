#include "controller/cli/commands/PreviewText.h"

#include "controller/Failure.h"
#include "controller/Printable.h"
#include "controller/cli/commands/EventOptions.h"
#include "controller/cli/show/EventText.h"
#include "controller/cli/show/MomentText.h"

namespace controller::cli {

namespace {

/// An occurrence, {"date", "time"}; the time may be a moment or a time of day.
std::string OccurrenceText(const Json& occurrence) {
  const std::string time = TextField(occurrence, "time");
  if (time.find('T') != std::string::npos) return MomentText(time);
  return LongDayText(TextField(occurrence, "date")) + (time.empty() ? "" : ' ' + time);
}

}  // namespace

void WritePreview(const Session& session, const Json& preview, std::size_t most) {
  std::ostream& out = session.terminal.out;
  out << Printable(preview.at("sentence").get<std::string>()) << '\n';
  std::size_t count = 0;
  for (const Json& occurrence : preview.at("occurrences")) {
    if (count++ == most) break;
    out << "next: " << Printable(OccurrenceText(occurrence)) << '\n';
  }
  if (count == 0) out << "next: never\n";
  for (const Json& warning : preview.at("warnings")) {
    out << session.terminal.Styled("warning:", Style::kWarning) << ' '
        << Printable(TextField(warning, "text", TextField(warning, "code"))) << '\n';
  }
}

void WriteAction(const Session& session, const Json& programming) {
  if (!programming.is_object() || !programming.contains("actions")) return;
  for (const Json& action : programming["actions"]) {
    session.terminal.out << "action: " << ActionWords(action) << '\n';
  }
}

void WriteSaved(Session& session, const Json& event, const std::string& done) {
  session.terminal.out << done << ' ' << EventName(event) << '\n';
  try {
    WritePreview(session, session.api.Send("POST", "/preview", PatchedEvent(event, Json::object())),
                 1);
  } catch (const Failure& failure) {
    session.Note(std::string("what it will do cannot be shown: ") + failure.what());
  }
}

}  // namespace controller::cli
