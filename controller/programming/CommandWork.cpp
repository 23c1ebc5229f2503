// How the runner runs a program.

#include <cstring>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

#include "controller/programming/ActionWork.h"
#include "controller/programming/Placeholders.h"

namespace controller {

namespace {

using Kind = ActionOutcome::Kind;

// What the service manager has said to the controller alone; and what would look like ours.
bool IsForUsAlone(std::string_view variable) {
  static constexpr std::string_view kBeginnings[] = {"NOTIFY_SOCKET=", "WATCHDOG_", "LISTEN_",
                                                     "JOURNAL_STREAM=", "VEXALINK_"};
  for (const std::string_view beginning : kBeginnings) {
    if (variable.substr(0, beginning.size()) == beginning) return true;
  }
  return false;
}

std::vector<std::string> Environment(const std::map<std::string, std::string>& values) {
  std::vector<std::string> environment;
  for (char** variable = environ; variable != nullptr && *variable != nullptr; ++variable) {
    if (!IsForUsAlone(*variable)) environment.emplace_back(*variable);
  }
  for (const auto& [name, value] : values) {
    std::string variable = "VEXALINK_" + name;
    for (char& c : variable) {
      if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    environment.push_back(variable + '=' + value);
  }
  return environment;
}

std::string EndText(const std::optional<int>& status) {
  if (!status) return "ended, its exit status is not known";
  if (WIFEXITED(*status)) return "exit status " + std::to_string(WEXITSTATUS(*status));
  const int signal = WTERMSIG(*status);
  return "ended by signal " + std::to_string(signal) + " (" + strsignal(signal) + ')';
}

}  // namespace

void ActionRunner::Work::BeginCommand(Job& job, const CommandAction& command) {
  const auto values = PlaceholderValues(job.facts, job.action.on);
  ChildProcess::Order order;
  for (const std::string& argument : command.argv) {
    // The program itself is taken as it is written.
    order.argv.push_back(order.argv.empty() ? argument
                                            : Replaced(argument, values, Escaping::kNone));
  }
  order.environment = Environment(values);
  order.timeoutMilliseconds = command.timeoutSeconds * 1000L;
  order.graceMilliseconds = limits_.graceMilliseconds;
  order.pidfd = limits_.pidfds;
  const unsigned long id = job.id;
  job.child = std::make_unique<ChildProcess>(
      base_, order, [this, id](const ChildProcess::End& end) { OnCommandEnded(id, end); });
}

void ActionRunner::Work::OnCommandEnded(unsigned long id, const ChildProcess::End& end) {
  ending_.erase(id);
  const auto found = jobs_.find(id);
  if (found == jobs_.end()) return;
  if (end.timedOut) {
    const int seconds = std::get<CommandAction>(found->second.action.what).timeoutSeconds;
    return EndJob(id, Kind::kTimedOut, "not done within " + std::to_string(seconds) + " s; ended",
                  end.output);
  }
  const bool isDone = end.status && WIFEXITED(*end.status) && WEXITSTATUS(*end.status) == 0;
  EndJob(id, isDone ? Kind::kDone : Kind::kFailed, EndText(end.status), end.output);
}

}  // namespace controller
