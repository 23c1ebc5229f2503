// The runner's face, and how jobs come, wait and go.

#include "controller/programming/ActionRunner.h"

#include <algorithm>
#include <unistd.h>
#include <utility>

#include "controller/Failure.h"
#include "controller/programming/ActionWork.h"
#include "controller/programming/Placeholders.h"
#include "controller/programming/ProgrammingJson.h"

namespace controller {

namespace {

constexpr int kEndWaits = 60;
constexpr useconds_t kEndWaitMicroseconds = 5000;

}  // namespace

const char* OutcomeName(ActionOutcome::Kind kind) {
  switch (kind) {
    case ActionOutcome::Kind::kFailed:
      return "failed";
    case ActionOutcome::Kind::kTimedOut:
      return "timed-out";
    case ActionOutcome::Kind::kCondition:
      return "condition";
    case ActionOutcome::Kind::kCancelled:
      return "cancelled";
    case ActionOutcome::Kind::kDone:
      break;
  }
  return "done";
}

ActionRunner::ActionRunner(event_base* base, IActionHouse& house, const ActionLimits& limits)
    : work_(std::make_unique<Work>(base, house, limits)) {}

ActionRunner::~ActionRunner() = default;

void ActionRunner::Start(const std::vector<Action>& actions, Trigger trigger,
                         const FiringFacts& facts) {
  for (const Action& action : actions) {
    if (action.on == trigger) work_->Start(action, facts);
  }
}

void ActionRunner::Try(const Action& action, const FiringFacts& facts,
                       std::function<void(const ActionOutcome&)> done) {
  work_->Try(action, facts, std::move(done));
}

void ActionRunner::Cancel(unsigned long eventId) { work_->Cancel(eventId); }

std::vector<RunningAction> ActionRunner::Running() const { return work_->Running(); }

ActionRunner::Work::Work(event_base* base, IActionHouse& house, const ActionLimits& limits)
    : base_(base), house_(house), limits_(limits), queue_(base), hooks_(base) {
  hookLane_.most = limits.hooks;
  commandLane_.most = limits.commands;
}

ActionRunner::Work::~Work() {
  Guarded(base_, [&] {
    while (!jobs_.empty()) CancelJob(jobs_.begin()->first, "the controller has ended");
    EndChildren();
    queue_.Drain();
  });
}

void ActionRunner::Work::Start(const Action& action, const FiringFacts& facts) {
  if (auto refused = Refused(action)) return Report(action, facts, {}, std::move(*refused));
  Job& job = AddJob(action, facts, {});
  if (action.delaySeconds == 0) return Proceed(job);
  SetTimer(job, State::kDelayed, action.delaySeconds * 1000L);
}

void ActionRunner::Work::Try(const Action& action, const FiringFacts& facts, TryDone done) {
  if (auto refused = Refused(action)) {
    return Report(action, facts, std::move(done), std::move(*refused));
  }
  Proceed(AddJob(action, facts, std::move(done)));
}

std::optional<ActionOutcome> ActionRunner::Work::Refused(const Action& action) {
  ActionOutcome outcome;
  if (action.condition && !house_.TestCondition(*action.condition)) {
    outcome.kind = ActionOutcome::Kind::kCondition;
    outcome.detail = "only if " + ConditionText(*action.condition);
    const std::string because = ConditionBecause(*action.condition, std::time(nullptr));
    if (!because.empty()) outcome.detail += "; " + because;
    return outcome;
  }
  const auto waiting = std::count_if(jobs_.begin(), jobs_.end(), [](const auto& job) {
    return job.second.state != State::kRunning;
  });
  if (static_cast<std::size_t>(waiting) < limits_.waiting) return std::nullopt;
  outcome.kind = ActionOutcome::Kind::kFailed;
  outcome.detail = std::to_string(waiting) + " actions are waiting already; this one was left out";
  return outcome;
}

ActionRunner::Work::Job& ActionRunner::Work::AddJob(const Action& action, const FiringFacts& facts,
                                                    TryDone done) {
  const unsigned long id = ++lastId_;
  Job& job = jobs_[id];
  job.id = id;
  job.action = action;
  job.facts = facts;
  job.done = std::move(done);
  SetState(job, State::kWaiting);
  return job;
}

void ActionRunner::Work::Proceed(Job& job) {
  if (const auto* variable = std::get_if<VariableAction>(&job.action.what)) {
    return SetVariable(job, *variable);
  }
  Wait(job);
}

void ActionRunner::Work::SetVariable(Job& job, const VariableAction& variable) {
  VariableAction set = variable;
  set.value =
      Replaced(variable.value, PlaceholderValues(job.facts, job.action.on), Escaping::kNone);
  const unsigned long id = job.id;
  Action shown = job.action;
  shown.what = set;
  house_.SetVariable(set);
  EndJob(id, ActionOutcome::Kind::kDone, ActionText(shown));
}

void ActionRunner::Work::Wait(Job& job) {
  SetState(job, State::kWaiting);
  LaneOf(job).waiting.push_back(job.id);
  PostPump();
}

void ActionRunner::Work::SetTimer(Job& job, State state, long milliseconds) {
  SetState(job, state);
  // An event takes one pointer: the runner; the job is the one whose timer it is.
  struct Due {
    Work* work;
    unsigned long id;
  };
  job.due = std::make_shared<Due>(Due{this, job.id});
  job.timer = MakeLoopEvent(
      base_, -1, 0,
      [](int, short, void* argument) {
        const Due due = *static_cast<Due*>(argument);
        Guarded(due.work->base_, [&] { due.work->OnTimer(due.id); });
      },
      job.due.get());
  const timeval delay = Milliseconds(milliseconds);
  event_add(job.timer.get(), &delay);
}

void ActionRunner::Work::OnTimer(unsigned long id) {
  const auto found = jobs_.find(id);
  if (found == jobs_.end()) return;
  Job& job = found->second;
  if (job.state == State::kDelayed) return Proceed(job);
  if (job.state == State::kRetrying) Wait(job);
}

// Jobs are begun from the loop, so that whoever starts some is not held by the first.
void ActionRunner::Work::PostPump() {
  if (pumpPosted_) return;
  pumpPosted_ = true;
  queue_.Post([this] {
    pumpPosted_ = false;
    Pump(hookLane_);
    Pump(commandLane_);
  });
}

void ActionRunner::Work::Pump(Lane& lane) {
  while (lane.running < lane.most && !lane.waiting.empty()) {
    Job& job = jobs_.at(lane.waiting.front());
    lane.waiting.pop_front();
    ++lane.running;
    SetState(job, State::kRunning);
    Begin(job);
  }
}

ActionRunner::Work::Lane& ActionRunner::Work::LaneOf(const Job& job) {
  return std::holds_alternative<CommandAction>(job.action.what) ? commandLane_ : hookLane_;
}

void ActionRunner::Work::SetState(Job& job, State state) {
  job.state = state;
  job.since = std::time(nullptr);
}

void ActionRunner::Work::Leave(Job& job) {
  Lane& lane = LaneOf(job);
  if (job.state == State::kRunning) {
    --lane.running;
    PostPump();
  }
  const auto place = std::find(lane.waiting.begin(), lane.waiting.end(), job.id);
  if (place != lane.waiting.end()) lane.waiting.erase(place);
}

void ActionRunner::Work::EndJob(unsigned long id, ActionOutcome::Kind kind, std::string detail,
                                std::string output) {
  auto node = jobs_.extract(id);
  if (node.empty()) return;
  Job& job = node.mapped();
  Leave(job);
  ActionOutcome outcome;
  outcome.kind = kind;
  outcome.detail = std::move(detail);
  outcome.output = std::move(output);
  if (job.begun) {
    const auto took = std::chrono::steady_clock::now() - *job.begun;
    outcome.milliseconds =
        static_cast<long>(std::chrono::duration_cast<std::chrono::milliseconds>(took).count());
  }
  Report(std::move(job.action), std::move(job.facts), std::move(job.done), std::move(outcome));
}

void ActionRunner::Work::Report(Action action, FiringFacts facts, TryDone done,
                                ActionOutcome outcome) {
  queue_.Post([this, action = std::move(action), facts = std::move(facts), done = std::move(done),
               outcome = std::move(outcome)] {
    if (done) return done(outcome);
    house_.OnActionEnded(facts, action, outcome);
  });
}

void ActionRunner::Work::Cancel(unsigned long eventId) {
  std::vector<unsigned long> gone;
  for (const auto& [id, job] : jobs_) {
    if (job.facts.eventId == eventId) gone.push_back(id);
  }
  for (const unsigned long id : gone) CancelJob(id, "its event has gone");
}

void ActionRunner::Work::CancelJob(unsigned long id, const char* why) {
  const auto found = jobs_.find(id);
  if (found == jobs_.end()) return;
  Job& job = found->second;
  if (job.call != 0) hooks_.Abort(job.call);
  if (job.child) LetEnd(id, std::move(job.child));
  EndJob(id, ActionOutcome::Kind::kCancelled, why);
}

void ActionRunner::Work::LetEnd(unsigned long id, std::unique_ptr<ChildProcess> child) {
  child->Terminate();
  ending_[id] = std::move(child);
}

// All at once, for as long as a program takes to obey; what is left is killed by its destructor.
void ActionRunner::Work::EndChildren() {
  for (int i = 0; i < kEndWaits; ++i) {
    const bool allEnded = std::all_of(ending_.begin(), ending_.end(),
                                      [](const auto& child) { return child.second->HasEnded(); });
    if (allEnded) break;
    usleep(kEndWaitMicroseconds);
  }
  ending_.clear();
}

std::vector<RunningAction> ActionRunner::Work::Running() const {
  static constexpr const char* kNames[] = {"delayed", "waiting", "running", "retrying"};
  std::vector<RunningAction> running;
  for (const auto& [id, job] : jobs_) {
    running.push_back({job.facts, ActionText(job.action),
                       kNames[static_cast<std::size_t>(job.state)], job.since});
  }
  return running;
}

}  // namespace controller
