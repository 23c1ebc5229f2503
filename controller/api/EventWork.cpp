// What can be done with an event beside changing it: undo, copies, and working it by hand.

#include "controller/LocalTimeText.h"
#include "controller/Printable.h"
#include "controller/api/ApiContext.h"
#include "controller/api/EventFields.h"
#include "controller/api/EventJson.h"
#include "controller/json/ObjectReader.h"

namespace controller {

namespace {

using Need = ObjectReader::Need;

void RestoreEvent(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  const unsigned long id = NumberInPath(request, "id");
  SavedAnswer answer(respond);
  const std::string name = "event " + std::to_string(id);
  switch (api.house.RestoreEvent(id, request.actor, answer.Callback())) {
    case House::Restored::kDone:
      return answer.Set(EventAnswer(api, id, 200));
    case House::Restored::kNothingToRestore:
      throw Problem("not-found", "no deleted " + name + " is kept, so there is nothing to restore");
    case House::Restored::kIdTaken:
      throw Problem("conflict", name + " is there already; nothing was restored");
    case House::Restored::kDescriptionTaken:
      throw Problem("conflict", "the description of the deleted " + name +
                                    " is another event's by now; rename that one first");
  }
}

std::string NewDescription(const HttpRequest& request) {
  FieldErrors errors;
  const nlohmann::json body = JsonBody(request);
  ObjectReader reader(body, "", errors);
  const auto text = reader.Text("description", Need::kDemanded, 1, kMostDescription);
  reader.NoOthers();
  if (text) CheckDescriptionText(*text, errors);
  ThrowIfWrong(errors);
  return text.value_or("");
}

void DuplicateEvent(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  const FoundEvent found = EventInPath(api.house, request);
  EventElement copy = found.event;
  copy.eventid = 0;
  copy.description = NewDescription(request);
  CheckDescription(api.house, copy);
  const Programming programming = api.house.ProgrammingOf(found.event.eventid);
  SavedAnswer answer(respond);
  const unsigned long id = api.house.AddEvent(copy, &programming, request.actor, answer.Callback());
  if (id == 0) throw Problem("invalid", "the scheduler does not take the copy");
  answer.Set(EventAnswer(api, id, 201));
}

void Work(ApiContext& api, const HttpRequest& request, const std::vector<Trigger>& triggers,
          const Respond& respond) {
  const FoundEvent found = EventInPath(api.house, request);
  api.house.WorkByHand(found.event.eventid, triggers, request.actor, [respond](std::int64_t row) {
    respond(JsonAnswer(nlohmann::ordered_json{{"journal", row}}, 202));
  });
}

void RunEvent(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  Work(api, request, {Trigger::kEvent, Trigger::kPush, Trigger::kClick}, respond);
}

/// The calls that a button makes: both, unless the body names one.
std::vector<Trigger> PressedTriggers(const HttpRequest& request) {
  if (request.body.empty()) return {Trigger::kPush, Trigger::kClick};
  FieldErrors errors;
  const nlohmann::json body = JsonBody(request);
  ObjectReader reader(body, "", errors);
  const auto button = reader.Word("button", Need::kOptional, {"push", "click"});
  reader.NoOthers();
  ThrowIfWrong(errors);
  if (!button) return {Trigger::kPush, Trigger::kClick};
  return {*button == 0 ? Trigger::kPush : Trigger::kClick};
}

void PressEvent(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  Work(api, request, PressedTriggers(request), respond);
}

}  // namespace

void AddEventWorkRoutes(Routes& routes, const SharedContext& api) {
  const std::string one = "/events/{id}";
  AddRoute(routes, "POST", one + "/restore", Role::kEdit, BodyKind::kNone,
           Handle(api, RestoreEvent));
  AddRoute(routes, "POST", one + "/duplicate", Role::kEdit, BodyKind::kJson,
           Handle(api, DuplicateEvent));
  AddRoute(routes, "POST", one + "/run", Role::kOperate, BodyKind::kNone, Handle(api, RunEvent));
  AddRoute(routes, "POST", one + "/press", Role::kOperate, BodyKind::kOptionalJson,
           Handle(api, PressEvent));
}

}  // namespace controller
