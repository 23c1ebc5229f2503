#include <CLI/CLI.hpp>

#include "controller/Printable.h"
#include "controller/cli/commands/ClientCommands.h"
#include "controller/cli/commands/Session.h"
#include "controller/cli/parse/ConditionText.h"

namespace controller::cli {

namespace {

constexpr int kDoesNotHold = 10;

struct TestLine : ClientOptions {
  std::vector<std::string> words;
};

int Test(const TestLine& line, Session& session) {
  std::string text;
  for (const std::string& word : line.words) text += (text.empty() ? "" : " ") + word;
  const Json answer = session.api.Send("POST", "/conditions/test",
                                       {{"condition", ParseCondition("CONDITION", text)}});
  const bool result = answer.at("result").get<bool>();
  if (session.json) {
    session.WriteJson(answer);
    return result ? 0 : kDoesNotHold;
  }
  session.terminal.out << session.terminal.Styled(result ? "holds" : "does not hold",
                                                  result ? Style::kGood : Style::kWarning)
                       << ": " << Printable(TextField(answer, "text", text));
  const std::string because = TextField(answer, "because");
  if (!because.empty()) session.terminal.out << " (now " << Printable(because) << ')';
  session.terminal.out << '\n';
  return result ? 0 : kDoesNotHold;
}

}  // namespace

void AddTestCommand(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<TestLine>();
  CLI::App* command =
      AddClientCommand(app, run, "test", "Tell whether a condition holds in the house now", line,
                       [line](Session& session) { return Test(*line, session); });
  command->add_option("CONDITION", line->words, "As for --if, in one word or several")->required();
  command->footer(
      "Conditions:\n"
      "  time between 22:00 and 02:00     may lead over midnight\n"
      "  time after 22:00                 or before, from, until, is, is not\n"
      "  time is night                    or day, by the sun\n"
      "  within 30 minutes before sunset  or after; sunrise\n"
      "  weekday in sat,sun               or weekdays, weekend, mon-fri\n"
      "  weekday between mon and fri      not over the end of the week\n"
      "  day in 1,15                      of the month\n"
      "  date after 2026-12-24\n"
      "  month between 11 and 2           or nov and feb\n"
      "  year eq 2027\n"
      "  leap                             it is a leap year\n\n"
      "Instead of a word a comparison may be eq ne gt ge lt le or = != > >= < <=. With a list, "
      "\"in\" holds if any of it does, \"not in\" if none does.\n\n" +
      ClientExitStatuses("10 the condition does not hold"));
}

}  // namespace controller::cli
