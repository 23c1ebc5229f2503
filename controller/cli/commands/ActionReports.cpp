#include "controller/cli/commands/ActionReports.h"

#include "controller/Printable.h"
#include "controller/cli/show/EventText.h"
#include "controller/cli/show/MomentText.h"
#include "controller/cli/show/Table.h"

namespace controller::cli {

void WriteActions(const Session& session, const Json& event, const Json& programming) {
  std::ostream& out = session.terminal.out;
  out << EventName(event) << ": " << ProgrammingStateText(programming) << '\n';
  std::size_t number = 0;
  for (const Json& action : programming.at("actions")) {
    out << "  " << ++number << "  " << ActionWords(action) << '\n';
  }
}

void WriteOutcome(const Session& session, const Json& outcome) {
  std::ostream& out = session.terminal.out;
  const std::string how = ShownField(outcome, "outcome");
  const Style style = how == "done"        ? Style::kGood
                      : how == "condition" ? Style::kWarning
                                           : Style::kBad;
  const std::string detail = Printable(ShownField(outcome, "detail"));
  out << session.terminal.Styled(
             how == "condition" ? "not done, the condition does not hold" : Printable(how), style)
      << (detail.empty() ? "" : ": " + detail);
  const std::string time = ShownField(outcome, "milliseconds");
  if (!time.empty()) out << " (" << Printable(time) << " ms)";
  out << '\n';
  // Line by line: what a program wrote has lines, and each may hold anything.
  std::string text = ShownField(outcome, "output");
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    out << "  " << Printable(text.substr(0, end)) << '\n';
    text = end == std::string::npos ? "" : text.substr(end + 1);
  }
}

void WriteRunning(const Session& session, const Json& answer) {
  if (session.json) {
    session.WriteJson(answer);
    return;
  }
  Table table({{"EVENT"}, {"STATE"}, {"SINCE"}, {"WHAT", false, true}});
  for (const Json& action : answer.at("actions")) {
    const std::string event = ShownField(action, "event");
    const std::string description = ShownField(action, "description");
    table.Add({event + (description.empty() ? "" : ' ' + Quoted(description)),
               ShownField(action, "state"), ExactMomentText(ShownField(action, "since")),
               ShownField(action, "text")});
  }
  if (table.IsEmpty()) {
    session.terminal.out << "nothing is waiting or under way\n";
  } else {
    table.Write(session.terminal);
  }
}

}  // namespace controller::cli
