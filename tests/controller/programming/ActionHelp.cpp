#include "tests/controller/programming/ActionHelp.h"

#include <filesystem>
#include <fstream>
#include <iterator>

using namespace controller;

ActionTest::ActionTest() {
  limits.firstPauseMilliseconds = 4;
  limits.graceMilliseconds = 150;
  facts.eventId = 7;
  facts.description = "Porch";
  facts.planned = 1'700'000'000;
  facts.actual = 1'700'000'001;
  runner = std::make_unique<ActionRunner>(base.get(), house, limits);
}

void ActionTest::Restart(const ActionLimits& changed) {
  runner.reset();
  runner = std::make_unique<ActionRunner>(base.get(), house, changed);
}

void ActionTest::Start(const std::vector<Action>& actions, Trigger trigger) {
  runner->Start(actions, trigger, facts);
}

bool ActionTest::RunUntil(const std::function<bool()>& is) {
  // The loop has always something to wait for.
  const LoopEvent tick = MakeLoopEvent(
      base.get(), -1, EV_PERSIST, [](int, short, void*) {}, nullptr);
  const timeval often = Milliseconds(5);
  event_add(tick.get(), &often);
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!is()) {
    if (std::chrono::steady_clock::now() > end) {
      ADD_FAILURE() << "waited in vain";
      return false;
    }
    event_base_loop(base.get(), EVLOOP_ONCE);
  }
  EXPECT_FALSE(LoopFailed());
  return true;
}

bool ActionTest::RunUntilEnded(std::size_t count) {
  return RunUntil([&] { return house.ended.size() >= count; });
}

ActionOutcome ActionTest::Do(const Action& action) {
  const std::size_t before = house.ended.size();
  Start({action}, action.on);
  if (!RunUntilEnded(before + 1)) return {};
  return house.ended.back().outcome;
}

std::string ActionTest::Text(const ActionOutcome& outcome) {
  return std::string(OutcomeName(outcome.kind)) + ": " + outcome.detail;
}

std::string ActionTest::StateOf(std::size_t running) const {
  const auto all = runner->Running();
  return running < all.size() ? all[running].state : "";
}

Action Hook(const std::string& url, int retries) {
  HookAction hook;
  hook.url = url;
  hook.retries = retries;
  return {Trigger::kEvent, 0, std::nullopt, hook};
}

Action Command(const std::vector<std::string>& argv, int timeoutSeconds) {
  return {Trigger::kEvent, 0, std::nullopt, CommandAction{argv, timeoutSeconds}};
}

Action Script(const std::string& text, int timeoutSeconds) {
  return Command({"/bin/sh", "-c", text}, timeoutSeconds);
}

Action SetTo(const std::string& value) {
  return {Trigger::kEvent, 0, std::nullopt, VariableAction{1, 2001, value}};
}

bool IsAlive(long pid) {
  std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
  const std::string stat{std::istreambuf_iterator<char>(file), {}};
  const std::size_t name = stat.rfind(") ");
  return name != stat.npos && stat[name + 2] != 'Z' && stat[name + 2] != 'X';
}

std::size_t OpenDescriptors() {
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    (void)entry;
    ++count;
  }
  return count;
}
