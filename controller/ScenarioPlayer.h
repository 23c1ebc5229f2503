#pragma once

#include <memory>
#include <string>

#include "controller/DriverLoader.h"
#include "controller/PlayHost.h"
#include "controller/ScenarioAction.h"

class IAgentScheduler;

namespace controller {

/// Plays the actions of one scenario, one after the other: does what each says and writes its
/// lines. Holds the process's clock and the record of assertions for as long as it lives.
class ScenarioPlayer {
 public:
  /// Both must outlive this.
  ScenarioPlayer(const DriverLoader& agentLibrary, std::ostream& out);
  ~ScenarioPlayer();
  ScenarioPlayer(const ScenarioPlayer&) = delete;
  ScenarioPlayer& operator=(const ScenarioPlayer&) = delete;

  /// Plays one line of the scenario. Throws `ScenarioError`; what was done before stands.
  void Play(const std::string& line);

 private:
  using Done = nlohmann::ordered_json;
  using Handler = void (ScenarioPlayer::*)(const ScenarioAction&, Done*);
  struct Entry {
    const char* name;
    Handler handler;
    bool needsAgent;
  };
  static const Entry kActions[];

  void SetClock(const ScenarioAction& action, Done* done);
  void Seed(const ScenarioAction& action, Done* done);
  void Create(const ScenarioAction& action, Done* done);
  void Initialize(const ScenarioAction& action, Done* done);
  void Tick(const ScenarioAction& action, Done* done);
  void Run(const ScenarioAction& action, Done* done);
  void Variable(const ScenarioAction& action, Done* done);
  void Command(const ScenarioAction& action, Done* done);
  void Request(const ScenarioAction& action, Done* done);
  void Condition(const ScenarioAction& action, Done* done);
  void Persist(const ScenarioAction& action, Done* done);
  void Interface(const ScenarioAction& action, Done* done);
  void Query(const ScenarioAction& action, Done* done);
  void Compare(const ScenarioAction& action, Done* done);
  void Host(const ScenarioAction& action, Done* done);
  void Destroy(const ScenarioAction& action, Done* done);

  const DriverLoader& library_;
  PlayHost host_;
  vx::IAssertSink* sinkBefore_;
  std::unique_ptr<IDriver> agent_;
  unsigned long timer_ = 0;  // the agent's; 0 before it is initialised
};

}  // namespace controller
