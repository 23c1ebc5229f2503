#include "controller/ScenarioPlayer.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "controller/Clock.h"
#include "controller/ScenarioCalls.h"
#include "framework/XmlText.h"
#include "vexalink_agent_scheduler/vxw/IAgentScheduler.h"

namespace controller {
namespace {

constexpr unsigned long kAgentDevice = 2;  // device 1 is the controller itself

vx::auto_com<VxXML::IDocument> ParseXml(const std::string& text, const char* key) {
  vx::auto_com<VxXML::IDocument> document = VxXML::CreateXmlDocument(text);
  if (document) return document;
  throw ScenarioError('"' + std::string(key) + "\" is not well-formed XML: " + vx::LastXmlError());
}

nlohmann::ordered_json Shown(const vx::auto_com<VxXML::INode>& node) {
  return transcript::Shown(node.get());
}

}  // namespace

const ScenarioPlayer::Entry ScenarioPlayer::kActions[] = {
    {"clock", &ScenarioPlayer::SetClock, false},
    {"seed", &ScenarioPlayer::Seed, false},
    {"create", &ScenarioPlayer::Create, false},
    {"initialize", &ScenarioPlayer::Initialize, true},
    {"tick", &ScenarioPlayer::Tick, true},
    {"run", &ScenarioPlayer::Run, true},
    {"variable", &ScenarioPlayer::Variable, true},
    {"command", &ScenarioPlayer::Command, true},
    {"request", &ScenarioPlayer::Request, true},
    {"condition", &ScenarioPlayer::Condition, true},
    {"persist", &ScenarioPlayer::Persist, true},
    {"interface", &ScenarioPlayer::Interface, true},
    {"query", &ScenarioPlayer::Query, true},
    {"compare", &ScenarioPlayer::Compare, false},
    {"host", &ScenarioPlayer::Host, false},
    {"destroy", &ScenarioPlayer::Destroy, true},
};

ScenarioPlayer::ScenarioPlayer(const DriverLoader& agentLibrary, std::ostream& out)
    : library_(agentLibrary), host_(out), sinkBefore_(vx::SetAssertSink(&host_)) {
  Clock::Freeze(0);
}

ScenarioPlayer::~ScenarioPlayer() {
  host_.Mute();
  agent_.reset();
  vx::SetAssertSink(sinkBefore_);
  Clock::Release();
}

void ScenarioPlayer::Play(const std::string& line) {
  const ScenarioAction action(line);
  const auto entry = std::find_if(std::begin(kActions), std::end(kActions),
                                  [&](const Entry& e) { return action.Name() == e.name; });
  if (entry == std::end(kActions)) {
    throw ScenarioError("unknown action \"" + action.Name() + '"');
  }
  if (entry->needsAgent && !agent_) {
    throw ScenarioError('"' + action.Name() + "\" needs an agent; \"create\" one first");
  }
  Done done{{"done", action.Name()}};
  (this->*entry->handler)(action, &done);
  host_.Write(done);
}

void ScenarioPlayer::SetClock(const ScenarioAction& action, Done* done) {
  Clock::Freeze(action.Time("at"));
  (*done)["now"] = Clock::Now();
}

void ScenarioPlayer::Seed(const ScenarioAction& action, Done*) {
  std::srand(static_cast<unsigned int>(action.Integer("value")));
}

void ScenarioPlayer::Create(const ScenarioAction&, Done*) {
  if (agent_) throw ScenarioError("there is an agent already; \"destroy\" it first");
  agent_.reset(library_.Create(host_));
  if (!agent_) throw ScenarioError("the library did not create an agent");
  timer_ = 0;
}

void ScenarioPlayer::Initialize(const ScenarioAction& action, Done* done) {
  const auto configText = action.OptionalText("config");
  const auto config = ParseXml(configText.value_or("<config/>"), "config");
  vx::auto_com<VxXML::IDocument> persisted;
  if (const auto text = action.OptionalText("persisted")) persisted = ParseXml(*text, "persisted");
  const int result = agent_->Initialize(kAgentDevice, *config->GetRoot(),
                                        persisted ? persisted->GetRoot() : nullptr);
  timer_ = host_.LastTimer();
  (*done)["result"] = result;
}

void ScenarioPlayer::Tick(const ScenarioAction& action, Done*) {
  agent_->OnTimerExpired(action.Has("timer") ? action.Id("timer") : timer_, 0);
}

void ScenarioPlayer::Run(const ScenarioAction& action, Done* done) {
  const std::time_t until = action.Time("until");
  const long long step = action.Has("step") ? action.Integer("step") : 1;
  if (step < 1) {
    throw ScenarioError("\"step\" is " + std::to_string(step) + "; give 1 second or more");
  }
  unsigned long ticks = 0;
  std::time_t now = Clock::Now();
  // Added with a check: a clock and a step may be any number.
  for (std::time_t next = 0; !__builtin_add_overflow(now, step, &next) && next <= until; ++ticks) {
    now = next;
    Clock::Freeze(now);
    agent_->OnTimerExpired(timer_, 0);
  }
  Clock::Freeze(until);
  (*done)["ticks"] = ticks;
}

void ScenarioPlayer::Variable(const ScenarioAction& action, Done*) {
  agent_->OnVariableChanged(action.Id("device"), action.Id("variable"), action.Text("value"));
}

void ScenarioPlayer::Command(const ScenarioAction& action, Done* done) {
  const CommandMessage message(action.Text("name"), action.Params("params"));
  (*done)["result"] = agent_->ExecuteCommand(message, nullptr, 0);
}

void ScenarioPlayer::Request(const ScenarioAction& action, Done* done) {
  const CommandMessage message(action.Text("name"), action.Params("params"));
  (*done)["reply"] = Shown(agent_->UIRequest(message));
}

void ScenarioPlayer::Condition(const ScenarioAction& action, Done* done) {
  const ConditionMessage message(action.Text("name"), action.Params("params"));
  (*done)["result"] = agent_->TestCondition(message, nullptr);
}

void ScenarioPlayer::Persist(const ScenarioAction&, Done* done) {
  (*done)["state"] = Shown(agent_->GetPersistState(0));
}

void ScenarioPlayer::Interface(const ScenarioAction& action, Done* done) {
  void* face = nullptr;
  agent_->QueryInterface(kAgentSchedulerIid, &face);
  if (face == nullptr) throw ScenarioError("the agent offers no scheduler interface");
  (*done)["result"] = CallInterface(*static_cast<IAgentScheduler*>(face), action);
}

void ScenarioPlayer::Query(const ScenarioAction& action, Done* done) {
  void* scheduler = nullptr;
  agent_->QueryInterface(kAgentSchedulerIid, &scheduler);
  void* face = nullptr;
  agent_->QueryInterface(action.Text("iid"), &face);
  (*done)["found"] = face != nullptr && face == scheduler;
}

void ScenarioPlayer::Compare(const ScenarioAction& action, Done* done) {
  (*done)["result"] = CallComparator(library_, action);
}

void ScenarioPlayer::Host(const ScenarioAction& action, Done*) { SetHostAnswer(action, &host_); }

void ScenarioPlayer::Destroy(const ScenarioAction&, Done*) { agent_.reset(); }

}  // namespace controller
