#include <algorithm>
#include <array>
#include <cmath>
#include <ctime>
#include <nlohmann/json.hpp>
#include <utility>

#include "controller/LocalTimeText.h"
#include "controller/Log.h"
#include "controller/Printable.h"
#include "controller/ProjectVariables.h"
#include "controller/ScheduleSummary.h"
#include "controller/live/Controller.h"
#include "controller/programming/ProgrammingJson.h"

namespace controller {

namespace {

constexpr std::array<double, 8> kDelayBounds = {0.1, 0.25, 0.5, 1, 2.5, 5, 10, 60};

std::string DecisionText(const FiringDecision& decision) {
  const std::string name = EventName(decision.event, decision.description);
  switch (decision.verdict.kind) {
    case GateVerdict::Kind::kRun:
      return decision.reason == "timer" ? name + " fired"
                                        : name + " fired, " + decision.reason + ", planned for " +
                                              LocalTimeText(decision.planned);
    case GateVerdict::Kind::kMiss:
      return name + " missed (" + decision.reason + "), planned for " +
             LocalTimeText(decision.planned);
    default:
      return name + " held back (" + decision.reason + ")";
  }
}

}  // namespace

void Controller::OnEventFired(IDriver&, unsigned long eventId) { desk_.OnFired(eventId); }

void Controller::OnBoundCall(IDriver&, unsigned long bindingId, const IBindMessage& message) {
  desk_.OnBoundCall(bindingId, message.GetCommand());
  Log::Debug("binding " + std::to_string(bindingId) + ": " + Quoted(message.GetCommand()));
}

void Controller::OnDriverLog(IDriver&, unsigned int, const char* text) { desk_.OnLog(text); }

void Controller::OnTickEnded(IDriver&) {
  const DayFields before = desk_.Plan().Date();
  desk_.OnTick(lastTick_);
  if (desk_.Plan().Date() != before) OnNewDay();
}

void Controller::OnNewDay() {
  const std::time_t now = std::time(nullptr);
  committer_.Add([now](ProjectStore& store) {
    Journal::Prune(store, now);
    DecisionBook::Prune(store, DaysAfter(LocalDay(now), -Journal::kKeptDays));
  });
}

void Controller::OnPlanChanged() {
  // Many changes at once are told once.
  if (!std::exchange(planTold_, false)) return;
  queue_.Post([this] {
    planTold_ = true;
    if (listener_ != nullptr) listener_->OnTodayChanged();
  });
}

JournalRow Controller::NewRow(const std::string& kind, const std::string& reason) {
  JournalRow row;
  row.id = journal_.NextId();
  row.at = std::time(nullptr);
  row.kind = kind;
  row.reason = reason;
  return row;
}

void Controller::Record(JournalRow row, Committer::OnSaved more) {
  const auto kept = std::make_shared<const JournalRow>(std::move(row));
  committer_.Add([kept](ProjectStore& store) { Journal::Write(store, *kept); },
                 [this, kept, more = std::move(more)] {
                   if (listener_ != nullptr) listener_->OnJournalRow(*kept);
                   if (more) more();
                 });
}

void Controller::CountFiring(const FiringDecision& decision) {
  if (decision.verdict.kind == GateVerdict::Kind::kHold) {
    ++counters_.held[decision.reason];
  } else if (decision.verdict.kind == GateVerdict::Kind::kMiss) {
    ++counters_.missed[decision.reason];
  } else {
    ++counters_.fired[decision.reason];
    const double due = static_cast<double>(decision.at - decision.lateSeconds);
    const double delay = std::max(0.0, ClockReading::Now().realtime - due);
    const auto bucket = std::lower_bound(kDelayBounds.begin(), kDelayBounds.end(), delay);
    ++counters_.delays[static_cast<std::size_t>(bucket - kDelayBounds.begin())];
    counters_.delaySum += delay;
  }
}

long long Controller::OnDecision(const FiringDecision& decision) {
  CountFiring(decision);
  JournalRow row = NewRow(StateName(OutcomeOf(decision.verdict)), decision.reason);
  row.at = decision.at;
  row.event = decision.event;
  row.description = decision.description;
  row.date = decision.date;
  row.planned = decision.planned;
  row.drawn = decision.drawn;
  Log::Info(DecisionText(decision));
  const std::int64_t id = row.id;
  // In one transaction, and acted on only when that is on the disk: whatever happens afterwards, it
  // is not acted on once more.
  committer_.Add([decision](ProjectStore& store) {
    DecisionBook::Write(
        store, {decision.event, decision.date, decision.planned, OutcomeOf(decision.verdict)});
  });
  if (decision.verdict.usesSkip) {
    Programming programming = programming_.Of(decision.event);
    programming.skipNext = false;
    SetProgramming(decision.event, std::move(programming), "", [](const std::string&) {});
  }
  Record(std::move(row), [this, decision, id] {
    if (decision.verdict.kind == GateVerdict::Kind::kRun) Act(decision, id);
  });
  return id;
}

void Controller::Act(const FiringDecision& decision, std::int64_t row) {
  const std::time_t now = std::time(nullptr);
  const long waited = static_cast<long>(now - decision.at);
  const Programming& programming = programming_.Of(decision.event);
  if (waited > kOnTimeSeconds && !IsCaughtUp(programming.catchUp, decision.lateSeconds + waited)) {
    JournalRow held = NewRow("held", "journal");
    held.event = decision.event;
    held.description = decision.description;
    held.date = decision.date;
    held.planned = decision.planned;
    held.text = "it could not be recorded for " + std::to_string(waited) + " s";
    ++counters_.held[held.reason];
    return Record(std::move(held));
  }
  RunActions({decision.event, decision.description, decision.planned, now, row}, decision.triggers);
}

void Controller::RunActions(const FiringFacts& facts, const std::vector<Trigger>& triggers) {
  if (runner_ == nullptr) return;
  // A copy: an action may set a variable, and that may lead anywhere.
  const std::vector<Action> actions = programming_.Of(facts.eventId).actions;
  for (const Trigger trigger : triggers) runner_->Start(actions, trigger, facts);
}

bool Controller::TestCondition(const Condition& condition) {
  return scheduler_->Test(condition.name, {{"CONDITIONAL_XML", condition.xml}});
}

void Controller::SetVariable(const VariableAction& action) {
  SetVariable(action.device, action.variable, action.value);
}

bool Controller::SetVariable(unsigned long device, unsigned long variable,
                             const std::string& value) {
  if (IsPlaceVariable(device, variable)) {
    Log::Warning("the place of the house is no variable to be set; change the project");
    return false;
  }
  host_.SetVariable(device, variable, value);
  return true;
}

void Controller::SetHostVariable(unsigned long device, unsigned long variable,
                                 const std::string& value, const std::string& actor) {
  if (!SetVariable(device, variable, value)) return;
  JournalRow row = NewRow("change", "variable");
  row.actor = actor;
  row.text = "variable " + std::to_string(variable) + " of device " + std::to_string(device) +
             " is " + Quoted(value);
  Record(std::move(row));
}

JournalRow Controller::ActionRow(const FiringFacts& facts, const Action& action,
                                 const ActionOutcome& outcome, const std::string& reason) {
  JournalRow row = NewRow("action", reason);
  row.event = facts.eventId;
  row.description = facts.description;
  row.outcome = OutcomeName(outcome.kind);
  const bool done = outcome.kind == ActionOutcome::Kind::kDone;
  // Of a variable the outcome says it all, with what was put in for the placeholders.
  const bool saysAll = done && std::holds_alternative<VariableAction>(action.what);
  row.text = saysAll ? outcome.detail : ActionText(action) + ": " + outcome.detail;
  if (!outcome.output.empty()) {
    row.after = nlohmann::json{{"output", outcome.output}}.dump(
        -1, ' ', false, nlohmann::json::error_handler_t::replace);
  }
  const bool good = done || outcome.kind == ActionOutcome::Kind::kCondition;
  const std::string whose =
      row.event == 0 ? "an action of no event" : EventName(row.event, row.description);
  Log::Write(good ? LogLevel::kInfo : LogLevel::kError, whose + ": " + row.text);
  return row;
}

void Controller::OnActionEnded(const FiringFacts& facts, const Action& action,
                               const ActionOutcome& outcome) {
  ++counters_.actions[OutcomeName(outcome.kind)];
  JournalRow row = ActionRow(facts, action, outcome, TriggerName(action.on));
  row.planned = facts.planned;
  Record(std::move(row));
}

void Controller::WorkByHand(unsigned long eventId, const std::vector<Trigger>& triggers,
                            const std::string& actor,
                            std::function<void(std::int64_t journalRow)> begun) {
  const EventElement* event = desk_.Catalog().Find(*scheduler_, eventId);
  JournalRow row = NewRow("fired", "by-hand");
  row.event = eventId;
  row.description = event == nullptr ? "" : event->description;
  row.planned = row.at;
  row.actor = actor;
  for (const Trigger trigger : triggers) {
    row.text += (row.text.empty() ? "" : ", ") + std::string(TriggerName(trigger));
  }
  ++counters_.fired[row.reason];
  Log::Info(EventName(eventId, row.description) + " worked by hand, by " + Quoted(actor));
  const FiringFacts facts{eventId, row.description, row.at, row.at, row.id};
  // Who stands there and presses need not wait for a disk that does not answer.
  const auto once = std::make_shared<bool>(false);
  const auto work = [this, facts, triggers, once, begun = std::move(begun)] {
    if (std::exchange(*once, true)) return;
    RunActions(facts, triggers);
    begun(facts.journalRow);
  };
  const auto kept = std::make_shared<const JournalRow>(std::move(row));
  committer_.Add([kept](ProjectStore& store) { Journal::Write(store, *kept); },
                 [this, kept, work] {
                   if (listener_ != nullptr) listener_->OnJournalRow(*kept);
                   work();
                 },
                 [this, work](const std::string&) { queue_.Post(work); });
}

void Controller::TryAction(const Action& action, unsigned long eventId, const std::string& actor,
                           std::function<void(const ActionOutcome&)> done) {
  const EventElement* event = desk_.Catalog().Find(*scheduler_, eventId);
  const std::time_t now = std::time(nullptr);
  const FiringFacts facts{eventId, event == nullptr ? "" : event->description, now, now, 0};
  runner_->Try(action, facts,
               [this, action, facts, actor, done = std::move(done)](const ActionOutcome& outcome) {
                 // What was tried was done: a command has run, whoever wanted it.
                 JournalRow row = ActionRow(facts, action, outcome, "by-hand");
                 row.actor = actor;
                 Record(std::move(row));
                 done(outcome);
               });
}

}  // namespace controller
