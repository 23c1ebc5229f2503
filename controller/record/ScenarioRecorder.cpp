#include "controller/record/ScenarioRecorder.h"

#include <cstdlib>
#include <utility>

#include "controller/Log.h"
#include "controller/Printable.h"
#include "controller/TimeZone.h"

namespace controller {

namespace {

constexpr const char* kFirstLine = "# Recorded by vexalink";
constexpr int kZoneDays = 366;

bool IsScenario(const std::string& line) { return line.starts_with(kFirstLine); }

bool IsTranscript(const std::string& line) {
  return line.starts_with("{\"done\":") || line.starts_with("{\"call\":");
}

std::vector<long> OffsetsFrom(std::time_t from) {
  std::vector<long> offsets;
  for (int day = 0; day < kZoneDays; ++day) {
    const std::time_t moment = from + day * 86400L;
    std::tm fields{};
    offsets.push_back(localtime_r(&moment, &fields) == nullptr ? 0 : fields.tm_gmtoff);
  }
  return offsets;
}

TranscriptLine WithParams(const char* action, const std::string& name,
                          const CommandMessage::Params& params) {
  return {{"do", action}, {"name", name}, {"params", params}};
}

}  // namespace

ScenarioRecorder::ScenarioRecorder(const std::filesystem::path& scenario,
                                   const std::optional<std::filesystem::path>& transcript)
    : scenario_(scenario, IsScenario) {
  if (transcript) transcript_ = std::make_unique<RecordFile>(*transcript, IsTranscript);
  Begin();
}

ScenarioRecorder::~ScenarioRecorder() { EndRun(); }

// The first lines of a file.
void ScenarioRecorder::Begin() {
  zoneFrom_ = Clock::Now();
  zone_ = OffsetsFrom(zoneFrom_);
  clock_.reset();
  const std::string name = TimeZoneName();
  scenario_.Append(std::string(kFirstLine) + ' ' + VEXALINK_VERSION + " in the time zone " +
                   (name.empty() ? "of unknown name" : Printable(name, 200)) +
                   "; play it with TZ set to that.\n");
}

IInstanceManager& ScenarioRecorder::HostFor(IInstanceManager& manager) {
  if (transcript_ == nullptr) return manager;
  if (tee_ == nullptr) {
    tee_ = std::make_unique<TranscriptTee>(manager, [this](const Line& line) { Tell(line); });
  }
  return *tee_;
}

void ScenarioRecorder::Write(const Line& action) {
  scenario_.Append(transcript::Text(action) + '\n');
}

void ScenarioRecorder::Tell(const Line& line) {
  if (transcript_ != nullptr) told_ += transcript::Text(line) + '\n';
}

void ScenarioRecorder::Flush() {
  if (transcript_ != nullptr && !told_.empty()) transcript_->Append(std::exchange(told_, {}));
}

void ScenarioRecorder::EndRun() {
  if (const auto ticks = std::exchange(ticks_, 0); ticks > 0) {
    Tell({{"done", "run"}, {"ticks", ticks}});
  }
  Flush();
}

void ScenarioRecorder::SetClock(std::time_t now) {
  if (clock_ == now) return;
  clock_ = now;
  Write({{"do", "clock"}, {"at", now}});
  Tell({{"done", "clock"}, {"now", now}});
}

// The clock stands still, and whatever is asserted is told.
void ScenarioRecorder::Hold() {
  held_.emplace(Clock::Now());
  if (tee_ != nullptr) tee_->Listen();
}

void ScenarioRecorder::Call(Line action) {
  EndRun();
  Hold();
  SetClock(Clock::Now());
  calling_ = action["do"].get<std::string>();
  Write(action);
}

void ScenarioRecorder::Return(const Line& keys) {
  if (tee_ != nullptr) tee_->Deaf();
  held_.reset();
  const std::string called = std::exchange(calling_, {});
  if (called == "tick") return Flush();
  Line done = {{"done", called}};
  done.update(keys.is_object() ? keys : Line::object());
  Tell(done);
  Flush();
}

void ScenarioRecorder::OnReturned(const VxXML::INode* result) {
  Return({{calling_ == "persist" ? "state" : "reply", transcript::Shown(result)}});
}

void ScenarioRecorder::OnCreate() {
  EndRun();
  if (OffsetsFrom(zoneFrom_) != zone_) {
    scenario_.BeginAnew();
    if (transcript_ != nullptr) transcript_->BeginAnew();
    if (tee_ != nullptr) tee_->BeginAnew();
    Log::Info("the time zone is another, so a new recording begins; the one before is kept");
    Begin();
  }
  Call({{"do", "create"}});
}

void ScenarioRecorder::OnInitialize(const std::optional<std::string>& persisted) {
  EndRun();
  if (answers_) {
    const HostAnswers answers = answers_();
    Line host = {{"do", "host"}, {"call", "VmRegisterListener"}, {"result", Line::array()}};
    for (const auto& [variable, value] : answers.variables) {
      host["result"].push_back(
          {{"device", variable.first}, {"variable", variable.second}, {"value", value}});
    }
    host["seed"] = answers.seed;
    Write(host);
    Tell({{"done", "host"}});
  }
  Call({{"do", "initialize"}, {"persisted", persisted ? Line(*persisted) : Line()}});
}

void ScenarioRecorder::OnTick() {
  const std::time_t now = Clock::Now();
  const bool goesOn = ticks_ > 0 && clock_ == now - 1;
  if (!goesOn) {
    EndRun();
    SetClock(now - 1);
  }
  Hold();
  calling_ = "tick";
  clock_ = now;
  ++ticks_;
  const std::string line = transcript::Text({{"do", "run"}, {"until", now}}) + '\n';
  goesOn ? scenario_.ReplaceLast(line) : scenario_.Append(line);
}

void ScenarioRecorder::OnVariable(unsigned long device, unsigned long variable,
                                  const std::string& value) {
  Call({{"do", "variable"}, {"device", device}, {"variable", variable}, {"value", value}});
}

void ScenarioRecorder::OnCommand(const std::string& name, const CommandMessage::Params& params) {
  const auto seed = static_cast<unsigned int>(std::rand());
  std::srand(seed);
  OnSeed(seed);
  Call(WithParams("command", name, params));
}

void ScenarioRecorder::OnRequest(const std::string& name, const CommandMessage::Params& params) {
  Call(WithParams("request", name, params));
}

void ScenarioRecorder::OnCondition(const std::string& name, const CommandMessage::Params& params) {
  Call(WithParams("condition", name, params));
}

void ScenarioRecorder::OnInterface(const char* operation, const std::string& argument) {
  Call({{"do", "interface"}, {"call", operation}, {"args", Line::array({argument})}});
}

void ScenarioRecorder::OnPersist() { Call({{"do", "persist"}}); }

void ScenarioRecorder::OnDestroy() { Call({{"do", "destroy"}}); }

void ScenarioRecorder::OnSeed(unsigned int value) {
  // Inside a call it is one of the host's answers, which are known.
  if (!calling_.empty()) return;
  EndRun();
  Write({{"do", "seed"}, {"value", value}});
  Tell({{"done", "seed"}});
}

}  // namespace controller
