// /events: the schedule itself.

#include <algorithm>
#include <limits>

#include "controller/LocalTimeText.h"
#include "controller/api/ApiContext.h"
#include "controller/api/EventJson.h"

namespace controller {

namespace {

constexpr long kMostNumber = std::numeric_limits<long>::max();

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// Whether `part` stands in `text`, whatever the case of ASCII letters.
bool Contains(const std::string& text, const std::string& part) {
  const auto same = [](char a, char b) { return Lower(a) == Lower(b); };
  return std::search(text.begin(), text.end(), part.begin(), part.end(), same) != text.end();
}

void ListEvents(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  QueryReader query(request);
  const std::string part = query.Text("q").value_or("");
  const long offset = query.Whole("offset", 0, kMostNumber).value_or(0);
  const long limit = query.Whole("limit", 0, kMostNumber).value_or(kMostNumber);
  query.NoOthers();
  api.nextTimes.Begin();
  const auto all = api.house.Scheduler().Request("GET_ALL_EVENTS");
  std::string body = "{\"events\":[";
  long total = 0;
  long shown = 0;
  const VxXML::INode* node = all ? all->GetFirstChild() : nullptr;
  for (; node != nullptr; node = node->GetNextSibling()) {
    if (!part.empty() && !Contains(node->GetText("description"), part)) continue;
    if (total++ < offset || shown >= limit) continue;
    const EventElement event = ReadEventElement(*node);
    EventAnswerParts parts;
    parts.next = api.nextTimes.Of(api.house, *node, event);
    parts.programming = &api.house.ProgrammingOf(event.eventid);
    if (shown++ > 0) body += ',';
    AppendEventJson(body, event, parts);
  }
  body += "],\"total\":" + std::to_string(total) + '}';
  respond(JsonAnswer(std::move(body)));
}

void GetEvent(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  respond(EventAnswer(api, NumberInPath(request, "id"), 200));
}

void CreateEvent(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  FieldErrors errors;
  EventBody body =
      ReadEventBody(JsonBody(request), EventUse::kCreate, LocalDay(std::time(nullptr)), errors);
  ThrowIfWrong(errors);
  CheckDescription(api.house, body.event);
  AskScheduler(api.house, body.event);
  SavedAnswer answer(respond);
  const unsigned long id =
      api.house.AddEvent(body.event, body.programming ? &*body.programming : nullptr, request.actor,
                         answer.Callback());
  if (id == 0) {
    throw Problem("invalid", "the scheduler does not take the event; nothing has changed");
  }
  answer.Set(EventAnswer(api, id, 201));
}

/// Puts `event` in the place of `before`.
void Replace(ApiContext& api, const FoundEvent& before, EventElement event,
             const HttpRequest& request, const Respond& respond) {
  const unsigned long id = before.event.eventid;
  if (event.eventid != 0 && event.eventid != id) {
    const std::string detail = "is " + std::to_string(event.eventid) + " where the path says " +
                               std::to_string(id) + "; leave it out";
    throw Problem("invalid", "/id " + detail, {{"/id", detail}});
  }
  event.eventid = id;
  // An imported schedule may have two events of one name; each can still be changed under it.
  if (event.description != before.event.description) CheckDescription(api.house, event);
  AskScheduler(api.house, event);
  SavedAnswer answer(respond);
  if (!api.house.ReplaceEvent(event, request.actor, answer.Callback())) {
    throw Problem("invalid", "the scheduler does not take the event; nothing has changed");
  }
  answer.Set(EventAnswer(api, id, 200));
}

void ReadAndReplace(ApiContext& api, const FoundEvent& before, const nlohmann::json& document,
                    const HttpRequest& request, const Respond& respond) {
  FieldErrors errors;
  EventBody body = ReadEventBody(document, EventUse::kReplace, {}, errors);
  ThrowIfWrong(errors);
  Replace(api, before, std::move(body.event), request, respond);
}

void PutEvent(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  const FoundEvent before = EventInPath(api.house, request);
  CheckIfMatch(request, EventTag(before.event));
  ReadAndReplace(api, before, JsonBody(request), request, respond);
}

void PatchEvent(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  const FoundEvent before = EventInPath(api.house, request);
  CheckIfMatch(request, EventTag(before.event));
  const nlohmann::json patch = JsonBody(request);
  if (!patch.is_object()) {
    throw Problem("invalid", "the patch is no object; give the fields that are to be others",
                  {{"", "is no object; give the fields that are to be others"}});
  }
  ReadAndReplace(api, before, PatchedEvent(EventDocument(before.event), patch), request, respond);
}

void DeleteEvent(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  const FoundEvent found = EventInPath(api.house, request);
  CheckIfMatch(request, EventTag(found.event));
  SavedAnswer answer(respond);
  answer.Set(NoContent());
  if (!api.house.DeleteEvent(found.event.eventid, request.actor, answer.Callback())) {
    throw Problem("not-found", "there is no event " + std::to_string(found.event.eventid));
  }
}

}  // namespace

void AddEventRoutes(Routes& routes, const SharedContext& api) {
  const std::string one = "/events/{id}";
  AddRoute(routes, "GET", "/events", Role::kView, BodyKind::kNone, Handle(api, ListEvents));
  AddRoute(routes, "POST", "/events", Role::kEdit, BodyKind::kJson, Handle(api, CreateEvent));
  AddRoute(routes, "GET", one, Role::kView, BodyKind::kNone, Handle(api, GetEvent));
  AddRoute(routes, "PUT", one, Role::kEdit, BodyKind::kJson, Handle(api, PutEvent));
  AddRoute(routes, "PATCH", one, Role::kEdit, BodyKind::kPatch, Handle(api, PatchEvent));
  AddRoute(routes, "DELETE", one, Role::kEdit, BodyKind::kNone, Handle(api, DeleteEvent));
}

}  // namespace controller
