#pragma once

#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "controller/Loop.h"
#include "controller/programming/ActionRunner.h"

/// A house that remembers what it was told.
class RecordingHouse final : public controller::IActionHouse {
 public:
  struct Ended {
    controller::FiringFacts facts;
    controller::Action action;
    controller::ActionOutcome outcome;
  };

  bool TestCondition(const controller::Condition& condition) override {
    tested.push_back(condition.name);
    return conditionsHold;
  }
  void SetVariable(const controller::VariableAction& action) override { set.push_back(action); }
  void OnActionEnded(const controller::FiringFacts& facts, const controller::Action& action,
                     const controller::ActionOutcome& outcome) override {
    ended.push_back({facts, action, outcome});
  }

  bool conditionsHold = true;
  std::vector<std::string> tested;
  std::vector<controller::VariableAction> set;
  std::vector<Ended> ended;
};

/// A runner on a loop of its own, with short pauses.
class ActionTest : public testing::Test {
 protected:
  ActionTest();

  /// A runner with these limits, in the place of the one there is.
  void Restart(const controller::ActionLimits& limits);
  void Start(const std::vector<controller::Action>& actions,
             controller::Trigger trigger = controller::Trigger::kEvent);
  /// Runs the loop until `is` is true; false, and a failure of the test, where that takes 20 s.
  bool RunUntil(const std::function<bool()>& is);
  /// Runs the loop until so many actions have ended.
  bool RunUntilEnded(std::size_t count);
  /// Starts one action, and runs the loop until it has ended.
  controller::ActionOutcome Do(const controller::Action& action);
  /// "done: 200 OK"
  static std::string Text(const controller::ActionOutcome& outcome);
  std::string StateOf(std::size_t running) const;

  controller::ActionLimits limits;
  controller::FiringFacts facts;
  controller::EventBase base = controller::MakeEventBase();
  RecordingHouse house;
  std::unique_ptr<controller::ActionRunner> runner;
};

controller::Action Hook(const std::string& url, int retries = 0);
controller::Action Command(const std::vector<std::string>& argv, int timeoutSeconds = 20);
/// By /bin/sh.
controller::Action Script(const std::string& text, int timeoutSeconds = 20);
controller::Action SetTo(const std::string& value);

/// Whether the process is there, and not only the remains of one.
bool IsAlive(long pid);
/// How many descriptors this process has open.
std::size_t OpenDescriptors();
