// Programming read from JSON.

#include <utility>

#include "controller/json/ObjectReader.h"
#include "controller/json/ShownJson.h"
#include "controller/programming/ActionReader.h"
#include "controller/programming/ConditionForm.h"
#include "controller/programming/ProgrammingJson.h"

namespace controller {

namespace {

using Need = ObjectReader::Need;
using nlohmann::json;

constexpr std::size_t kMostActions = 50;
constexpr long kMostCatchUpMinutes = 10080;

CatchUp ReadCatchUp(const json& value, const std::string& pointer, FieldErrors& errors) {
  ObjectReader fields(value, pointer, errors);
  CatchUp read;
  const auto policy = fields.Word("policy", Need::kOptional, {"ignore", "within", "always"});
  if (policy) read.policy = static_cast<CatchUp::Policy>(*policy);
  const auto minutes = fields.Whole("minutes", Need::kOptional, 1, kMostCatchUpMinutes);
  if (minutes) read.minutes = static_cast<int>(*minutes);
  fields.NoOthers();
  return read;
}

std::vector<Action> ReadActions(const json& list, const std::string& pointer, FieldErrors& errors) {
  std::vector<Action> read;
  if (!list.is_array()) {
    errors.push_back({pointer, "is " + ShownJson(list) + "; give a list of actions"});
    return read;
  }
  if (list.size() > kMostActions) {
    errors.push_back({pointer, "has " + std::to_string(list.size()) + " actions; give at most " +
                                   std::to_string(kMostActions)});
    return read;
  }
  for (std::size_t i = 0; i < list.size(); ++i) {
    read.push_back(ReadAction(list[i], pointer + '/' + std::to_string(i), errors));
  }
  return read;
}

}  // namespace

Programming ReadProgramming(const json& value, const std::string& pointer, FieldErrors& errors) {
  ObjectReader fields(value, pointer, errors);
  Programming read;
  read.enabled = fields.Flag("enabled").value_or(true);
  read.pausedUntil = fields.Day("paused_until", Need::kOptional);
  read.skipNext = fields.Flag("skip_next").value_or(false);
  if (const json* catchUp = fields.Value("catch_up")) {
    read.catchUp = ReadCatchUp(*catchUp, fields.PointerTo("catch_up"), errors);
  }
  if (const json* actions = fields.Value("actions")) {
    read.actions = ReadActions(*actions, fields.PointerTo("actions"), errors);
  }
  fields.NoOthers();
  return read;
}

Action ReadAction(const json& value, const std::string& pointer, FieldErrors& errors) {
  return ActionReader(value, pointer, errors).Read();
}

Condition ReadCondition(const json& value, const std::string& pointer, FieldErrors& errors) {
  const auto form = ReadConditionForm(value, pointer, errors);
  if (!form) return {};
  return {ConditionName(*form), ConditionXml(*form), ConditionFormJson(*form).dump()};
}

}  // namespace controller
