// How the runner calls a URL, and when it tries again.

#include <algorithm>

#include "controller/Failure.h"
#include "controller/programming/ActionWork.h"

namespace controller {

namespace {

using Kind = ActionOutcome::Kind;

Kind KindOf(const HookAnswer& answer) {
  if (answer.kind == HookAnswer::Kind::kTimedOut) return Kind::kTimedOut;
  const bool isDone =
      answer.kind == HookAnswer::Kind::kAnswered && answer.status >= 200 && answer.status <= 299;
  return isDone ? Kind::kDone : Kind::kFailed;
}

}  // namespace

void ActionRunner::Work::Begin(Job& job) {
  if (!job.begun) job.begun = std::chrono::steady_clock::now();
  ++job.attempts;
  const unsigned long id = job.id;
  try {
    if (const auto* hook = std::get_if<HookAction>(&job.action.what)) {
      BeginHook(job, *hook);
    } else if (const auto* command = std::get_if<CommandAction>(&job.action.what)) {
      BeginCommand(job, *command);
    }
  } catch (const Failure& failure) {
    EndJob(id, Kind::kFailed, failure.what());
  }
}

void ActionRunner::Work::BeginHook(Job& job, const HookAction& hook) {
  const unsigned long id = job.id;
  job.call = hooks_.Begin(MakeHookRequest(hook, job.facts, job.action.on),
                          [this, id](const HookAnswer& answer) { OnAnswer(id, answer); });
}

void ActionRunner::Work::OnAnswer(unsigned long id, const HookAnswer& answer) {
  const auto found = jobs_.find(id);
  if (found == jobs_.end()) return;
  Job& job = found->second;
  job.call = 0;
  const Kind kind = KindOf(answer);
  if (kind != Kind::kDone && answer.mayPass &&
      job.attempts <= std::get<HookAction>(job.action.what).retries) {
    // Others may go ahead meanwhile.
    Leave(job);
    return SetTimer(job, State::kRetrying, PauseBefore(job, answer));
  }
  std::string detail = answer.text;
  if (job.attempts > 1) detail += ", " + std::to_string(job.attempts) + " attempts";
  EndJob(id, kind, std::move(detail), answer.body);
}

// Somewhere in the upper half of what doubles from attempt to attempt, so that many hooks that
// failed together do not all come back together.
long ActionRunner::Work::PauseBefore(const Job& job, const HookAnswer& answer) {
  long pause = limits_.firstPauseMilliseconds;
  for (int i = 1; i < job.attempts && pause < limits_.longestPauseMilliseconds; ++i) pause *= 2;
  pause = std::min(pause, limits_.longestPauseMilliseconds);
  pause = std::uniform_int_distribution<long>(pause / 2, pause)(random_);
  if (!answer.retryAfterSeconds) return pause;
  const long most = limits_.longestRetryAfterMilliseconds;
  const long asked =
      *answer.retryAfterSeconds > most / 1000 ? most : *answer.retryAfterSeconds * 1000;
  return std::max(pause, asked);
}

}  // namespace controller
