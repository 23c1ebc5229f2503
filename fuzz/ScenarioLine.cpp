// The door of played scenarios, and through it of the agent as it is shipped, in its library.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <string_view>

#include "controller/Clock.h"
#include "controller/DriverLoader.h"
#include "controller/ScenarioPlayer.h"
#include "fuzz/Property.h"

namespace {

using controller::ScenarioAction;
using controller::ScenarioError;

const controller::DriverLoader& AgentLibrary() {
  static const std::unique_ptr<controller::DriverLoader> library = [] {
    std::string error;
    auto opened =
        controller::DriverLoader::Open(controller::DriverLoader::DefaultAgentPath(), &error);
    fuzz::Require(opened != nullptr, error);
    return opened;
  }();
  return *library;
}

bool SpansTooManyDays(const controller::CommandMessage::Params& params) {
  const auto number = [&params](const char* name) {
    const auto found = params.find(name);
    return found == params.end() ? 0L : std::strtol(found->second.c_str(), nullptr, 10);
  };
  for (const char* name : {"FROM_DAY", "FROM_MONTH", "TO_DAY", "TO_MONTH"}) {
    if (std::labs(number(name)) > 400) return true;
  }
  return std::fabs(static_cast<double>(number("TO_YEAR")) -
                   static_cast<double>(number("FROM_YEAR"))) > 2;
}

// Whether a line asks, rightly, for more work than a fuzzer has time for.
bool IsTooMuchWork(const std::string& line) {
  try {
    const ScenarioAction action(line);
    if (action.Name() == "run") {
      const auto seconds =
          static_cast<double>(action.Time("until")) - static_cast<double>(controller::Clock::Now());
      const auto step = static_cast<double>(action.Has("step") ? action.Integer("step") : 1);
      return step >= 1 && seconds / step > 3000;
    }
    if (action.Name() == "request") return SpansTooManyDays(action.Params("params"));
  } catch (const ScenarioError&) {
    // The player says so too.
  }
  return false;
}

// Requires of each line of a transcript that it is one, and counts the actions that were done.
unsigned long CountDone(const std::string& transcript) {
  std::istringstream lines(transcript);
  unsigned long done = 0;
  for (std::string line; std::getline(lines, line);) {
    const auto json = nlohmann::json::parse(line, nullptr, /*allow_exceptions=*/false);
    fuzz::Require(json.is_object(), "a line of a transcript is an object");
    fuzz::Require(json.contains("call") != json.contains("done"),
                  "a line of a transcript is a call or an action that is done");
    if (json.contains("done")) ++done;
  }
  return done;
}

struct Played {
  std::string transcript;
  std::string error;
  unsigned long actions = 0;
};

// Plays until a line is refused.
Played Play(const std::string& scenario) {
  std::srand(1);
  Played played;
  std::ostringstream out;
  {
    controller::ScenarioPlayer player(AgentLibrary(), out);
    std::istringstream lines(scenario);
    for (std::string line; std::getline(lines, line);) {
      if (line.empty() || line.front() == '#' || IsTooMuchWork(line)) continue;
      try {
        player.Play(line);
      } catch (const ScenarioError& error) {
        played.error = error.what();
        break;
      }
      ++played.actions;
    }
  }
  played.transcript = out.str();
  return played;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string scenario(reinterpret_cast<const char*>(data), size);
  const fuzz::Surroundings around(scenario);
  const Played first = Play(scenario);
  fuzz::Require(CountDone(first.transcript) == first.actions, "an action that is played is done");
  fuzz::Require(first.error.find('\n') == std::string::npos, "a refusal is one line");
  const Played second = Play(scenario);
  fuzz::RequireEqual(second.transcript, first.transcript, "a scenario plays the same again");
  fuzz::RequireEqual(second.error, first.error, "a scenario is refused for the same again");
  return 0;
}
