#pragma once

#include <ctime>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "controller/Clock.h"
#include "controller/ICallRecorder.h"
#include "controller/TranscriptLines.h"
#include "controller/record/RecordFile.h"
#include "controller/record/TranscriptTee.h"

namespace controller {

/// Writes the calls on a driver as a scenario that `vexalink play` can play again: the driver is
/// then called with the same at the same moments, and draws the same numbers. Stretches of ticks
/// that follow each other by the second are one line, which grows. A scenario has one time zone, so
/// where a driver is created in another one than the driver before, a new file is begun.
///
/// With a transcript it also writes what `play` will answer.
class ScenarioRecorder final : public ICallRecorder {
 public:
  /// Throws a `Failure` where a file cannot be begun.
  ScenarioRecorder(const std::filesystem::path& scenario,
                   const std::optional<std::filesystem::path>& transcript);
  ~ScenarioRecorder();

  IInstanceManager& HostFor(IInstanceManager& manager) override;
  void SetAnswers(std::function<HostAnswers()> answers) override { answers_ = std::move(answers); }
  void OnCreate() override;
  void OnInitialize(const std::optional<std::string>& persisted) override;
  void OnTick() override;
  void OnVariable(unsigned long device, unsigned long variable, const std::string& value) override;
  void OnCommand(const std::string& name, const CommandMessage::Params& params) override;
  void OnRequest(const std::string& name, const CommandMessage::Params& params) override;
  void OnCondition(const std::string& name, const CommandMessage::Params& params) override;
  void OnInterface(const char* operation, const std::string& argument) override;
  void OnPersist() override;
  void OnDestroy() override;
  void OnReturned() override { Return({}); }
  void OnReturned(int result) override { Return({{"result", result}}); }
  void OnReturned(unsigned long result) override { Return({{"result", result}}); }
  void OnReturned(bool result) override { Return({{"result", result}}); }
  void OnReturned(const VxXML::INode* result) override;
  void OnSeed(unsigned int value) override;

 private:
  using Line = TranscriptLine;

  void Begin();
  void Hold();
  void SetClock(std::time_t now);
  void Call(Line action);
  void Return(const Line& keys);
  void EndRun();
  void Write(const Line& action);
  void Tell(const Line& line);
  void Flush();

  RecordFile scenario_;
  std::unique_ptr<RecordFile> transcript_;
  std::unique_ptr<TranscriptTee> tee_;
  std::string told_;
  std::function<HostAnswers()> answers_;
  /// The clock of the scenario.
  std::optional<std::time_t> clock_;
  /// Of the run that is the last line; 0: it is none.
  unsigned long ticks_ = 0;
  /// The action that has been called and has not returned.
  std::string calling_;
  std::optional<ClockScope> held_;
  /// What tells the time zone from another: how far it is from UTC on a year's days.
  std::time_t zoneFrom_ = 0;
  std::vector<long> zone_;
};

}  // namespace controller
