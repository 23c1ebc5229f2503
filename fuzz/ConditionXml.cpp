// The door of the programming conditions.

#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "fuzz/AgentInAHouse.h"
#include "fuzz/Property.h"
#include "vexalink_agent_scheduler/vxw/Comparators.h"

namespace {

constexpr const char* kNames[] = {"IF_TIME", "IF_TODAY", "IF_DATE", "IF_MONTH",
                                  "IF_YEAR", "IF_LEAP",  "IF_SNOW"};

bool Test(fuzz::AgentInAHouse* house, const char* name, const char* param,
          const std::string& text) {
  return house->Agent().TestCondition(controller::ConditionMessage(name, {{param, text}}), nullptr);
}

// What may be called during a test: nothing, or one log line with the whole text (as far as a C
// text can hold it).
std::string AllowedCalls(bool parses, const std::string& text) {
  if (parses) return {};
  const std::string line = "Unable to parse conditional in scheduler: " + text;
  const nlohmann::ordered_json call{{"call", "LogMessage"}, {"level", 7}, {"text", line.c_str()}};
  return call.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const fuzz::Surroundings around(text);
  fuzz::AgentInAHouse house;
  house.Initialize(nullptr);
  house.Agent().OnVariableChanged(1, 1001, std::to_string(around.Latitude()));
  house.Agent().OnVariableChanged(1, 1002, std::to_string(around.Longitude()));
  house.Agent().AddDailyEvent("Porch", 18, 30);
  const std::string state = house.State();
  house.TakeCalls();

  const bool parses = static_cast<bool>(VxXML::CreateXmlDocument(text));
  const std::string allowed = AllowedCalls(parses, text);
  for (const char* name : kNames) {
    const bool holds = Test(&house, name, "CONDITIONAL_XML", text);
    fuzz::RequireEqual(house.TakeCalls(), allowed, "a test calls nothing but the log");
    fuzz::Require(parses || !holds, "what does not parse does not hold");
    fuzz::Require(Test(&house, name, "CONDITIONAL_XML", text) == holds, "a test answers again");
    fuzz::Require(Test(&house, name, "TIME_XML", text) == holds, "either parameter will do");
    house.TakeCalls();
  }
  if (parses) {
    fuzz::Require(Test(&house, "IF_LEAP", "TIME_XML", text) == (CompareLeap() != 0),
                  "the condition and the comparison function agree on leap years");
    fuzz::Require(!Test(&house, "IF_SNOW", "TIME_XML", text), "an unknown name does not hold");
  }
  fuzz::RequireEqual(house.State(), state, "testing leaves the state alone");
  return 0;
}
