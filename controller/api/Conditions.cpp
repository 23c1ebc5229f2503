// /conditions/test: whether a condition holds now, and why.

#include "controller/api/ApiContext.h"
#include "controller/json/ObjectReader.h"
#include "controller/programming/ProgrammingJson.h"

namespace controller {

namespace {

Condition ReadTested(const HttpRequest& request) {
  FieldErrors errors;
  const nlohmann::json body = JsonBody(request);
  ObjectReader reader(body, "", errors);
  const auto* value = reader.Value("condition", ObjectReader::Need::kDemanded);
  Condition condition;
  if (value != nullptr) condition = ReadCondition(*value, reader.PointerTo("condition"), errors);
  reader.NoOthers();
  ThrowIfWrong(errors);
  return condition;
}

void TestCondition(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  const Condition condition = ReadTested(request);
  const std::time_t now = std::time(nullptr);
  const bool holds =
      api.house.Scheduler().Test(condition.name, {{"CONDITIONAL_XML", condition.xml}});
  respond(JsonAnswer(nlohmann::ordered_json{{"result", holds},
                                            {"text", ConditionText(condition)},
                                            {"because", ConditionBecause(condition, now)},
                                            {"xml", condition.xml},
                                            {"name", condition.name}}));
}

}  // namespace

void AddConditionRoutes(Routes& routes, const SharedContext& api) {
  AddRoute(routes, "POST", "/conditions/test", Role::kOperate, BodyKind::kJson,
           Handle(api, TestCondition));
}

}  // namespace controller
