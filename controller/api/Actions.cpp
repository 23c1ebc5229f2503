// /actions: trying one out, and what is under way.

#include <algorithm>
#include <limits>

#include "controller/Printable.h"
#include "controller/api/ApiContext.h"
#include "controller/api/JsonText.h"
#include "controller/json/ObjectReader.h"
#include "controller/programming/ProgrammingJson.h"

namespace controller {

namespace {

struct Tried {
  Action action;
  unsigned long event = 0;
};

Tried ReadTried(const HttpRequest& request) {
  FieldErrors errors;
  const nlohmann::json body = JsonBody(request);
  ObjectReader reader(body, "", errors);
  Tried tried;
  const auto* action = reader.Value("action", ObjectReader::Need::kDemanded);
  if (action != nullptr) tried.action = ReadAction(*action, reader.PointerTo("action"), errors);
  const auto id =
      reader.Whole("event", ObjectReader::Need::kOptional, 1, std::numeric_limits<long>::max());
  tried.event = static_cast<unsigned long>(id.value_or(0));
  reader.NoOthers();
  ThrowIfWrong(errors);
  return tried;
}

/// Who may not edit may try what the house would do anyway, and nothing else: a command is a
/// command, tried or not.
void CheckRole(const House& house, const HttpRequest& request, const Tried& tried) {
  if (request.role >= Role::kEdit) return;
  const auto wanted = ActionJson(tried.action);
  const auto& actions = house.ProgrammingOf(tried.event).actions;
  const bool known = std::any_of(actions.begin(), actions.end(), [&](const Action& action) {
    return ActionJson(action) == wanted;
  });
  if (known) return;
  throw Problem("forbidden",
                "the role operate may test what an event does already, and this is no action of " +
                    (tried.event == 0 ? "one: the field \"event\" is missing"
                                      : "event " + std::to_string(tried.event)) +
                    "; another needs the role edit");
}

void TestAction(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  const Tried tried = ReadTried(request);
  if (tried.event != 0 && !LookForEvent(api.house, tried.event)) {
    const std::string detail =
        "is " + std::to_string(tried.event) + ", and there is no such event; leave it out";
    throw Problem("invalid", "/event " + detail, {{"/event", detail}});
  }
  CheckRole(api.house, request, tried);
  api.house.TryAction(
      tried.action, tried.event, request.actor, [respond](const ActionOutcome& outcome) {
        respond(JsonAnswer(nlohmann::ordered_json{{"outcome", OutcomeName(outcome.kind)},
                                                  {"detail", ValidUtf8(outcome.detail)},
                                                  {"output", ValidUtf8(outcome.output)},
                                                  {"milliseconds", outcome.milliseconds}}));
      });
}

nlohmann::ordered_json RunningJson(const RunningAction& action) {
  nlohmann::ordered_json json;
  json["event"] = action.facts.eventId;
  json["description"] = ValidUtf8(action.facts.description);
  json["text"] = ValidUtf8(action.text);
  json["state"] = action.state;
  json["since"] = MomentJson(action.since);
  json["journal"] = action.facts.journalRow;
  return json;
}

void GetRunning(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  auto list = nlohmann::ordered_json::array();
  for (const RunningAction& action : api.house.RunningActions()) {
    list.push_back(RunningJson(action));
  }
  respond(JsonAnswer(nlohmann::ordered_json{{"actions", std::move(list)}}));
}

}  // namespace

void AddActionRoutes(Routes& routes, const SharedContext& api) {
  AddRoute(routes, "POST", "/actions/test", Role::kOperate, BodyKind::kJson,
           Handle(api, TestAction));
  AddRoute(routes, "GET", "/actions/running", Role::kView, BodyKind::kNone,
           Handle(api, GetRunning));
}

}  // namespace controller
