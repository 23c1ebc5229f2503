// /events/{id}/programming: what an event does when it fires.

#include "controller/api/ApiContext.h"
#include "controller/api/EventJson.h"
#include "controller/api/JsonText.h"
#include "controller/programming/ProgrammingJson.h"

namespace controller {

namespace {

HttpResponse ProgrammingAnswer(const Programming& programming) {
  std::string text = JsonDump(ProgrammingJson(programming));
  const std::string tag = EntityTag(text);
  HttpResponse response = JsonAnswer(std::move(text));
  response.headers.emplace_back("ETag", tag);
  return response;
}

/// The event's programming, where the request is still about this version of it.
const Programming& Matching(ApiContext& api, unsigned long id, const HttpRequest& request) {
  const Programming& programming = api.house.ProgrammingOf(id);
  CheckIfMatch(request, EntityTag(JsonDump(ProgrammingJson(programming))));
  return programming;
}

void GetProgramming(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  const FoundEvent found = EventInPath(api.house, request);
  respond(ProgrammingAnswer(api.house.ProgrammingOf(found.event.eventid)));
}

void Set(ApiContext& api, unsigned long id, const nlohmann::json& document,
         const HttpRequest& request, const Respond& respond) {
  FieldErrors errors;
  Programming programming = ReadProgramming(document, "", errors);
  ThrowIfWrong(errors);
  SavedAnswer answer(respond);
  api.house.SetProgramming(id, std::move(programming), request.actor, answer.Callback());
  answer.Set(ProgrammingAnswer(api.house.ProgrammingOf(id)));
}

void PutProgramming(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  const unsigned long id = EventInPath(api.house, request).event.eventid;
  Matching(api, id, request);
  Set(api, id, JsonBody(request), request, respond);
}

/// Who may not edit may still hold an event back.
void CheckRole(const HttpRequest& request, const nlohmann::json& patch) {
  if (request.role >= Role::kEdit) return;
  for (const auto& field : patch.items()) {
    const std::string& name = field.key();
    if (name == "enabled" || name == "paused_until" || name == "skip_next") continue;
    throw Problem("forbidden",
                  "only \"enabled\", \"paused_until\" and \"skip_next\" may be changed by the role "
                  "operate; the rest needs the role edit");
  }
}

void PatchProgramming(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  const unsigned long id = EventInPath(api.house, request).event.eventid;
  const nlohmann::json patch = JsonBody(request);
  if (!patch.is_object()) {
    throw Problem("invalid", "the patch is no object; give the fields that are to be others",
                  {{"", "is no object; give the fields that are to be others"}});
  }
  CheckRole(request, patch);
  nlohmann::json document = ProgrammingJson(Matching(api, id, request));
  document.merge_patch(patch);
  Set(api, id, document, request, respond);
}

}  // namespace

void AddProgrammingRoutes(Routes& routes, const SharedContext& api) {
  const std::string path = "/events/{id}/programming";
  AddRoute(routes, "GET", path, Role::kView, BodyKind::kNone, Handle(api, GetProgramming));
  AddRoute(routes, "PUT", path, Role::kEdit, BodyKind::kJson, Handle(api, PutProgramming));
  AddRoute(routes, "PATCH", path, Role::kOperate, BodyKind::kPatch, Handle(api, PatchProgramming));
}

}  // namespace controller
