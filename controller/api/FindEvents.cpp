// What the resources of events ask the scheduler.

#include "controller/Printable.h"
#include "controller/api/ApiContext.h"
#include "controller/api/EventJson.h"
#include "controller/api/EventProbe.h"

namespace controller {

namespace {

/// The lowest id of an event with this description; 0 where there is none.
unsigned long IdOfDescription(House& house, const std::string& description) {
  if (const auto id = house.Scheduler().IdOfDescription(description)) return *id;
  // Another scheduler may not have that face; then all of its events are looked through.
  const auto all = house.Scheduler().Request("GET_ALL_EVENTS");
  const VxXML::INode* event = all ? all->GetFirstChild() : nullptr;
  for (; event != nullptr; event = event->GetNextSibling()) {
    if (event->GetText("description") == description) return event->GetUnsigned("eventid");
  }
  return 0;
}

}  // namespace

std::string EventTag(const EventElement& event) {
  return EntityTag(MakeEventElement(event)->ToString());
}

std::optional<FoundEvent> LookForEvent(House& house, unsigned long id) {
  FoundEvent found;
  found.node = house.Scheduler().Request("GET_EVENT", {{"EVENT_ID", std::to_string(id)}});
  if (!found.node) return std::nullopt;
  found.event = ReadEventElement(*found.node);
  return found;
}

FoundEvent FindEvent(House& house, unsigned long id) {
  auto found = LookForEvent(house, id);
  if (found) return *std::move(found);
  throw Problem("not-found", "there is no event " + std::to_string(id));
}

FoundEvent EventInPath(House& house, const HttpRequest& request) {
  return FindEvent(house, NumberInPath(request, "id"));
}

EventElement AskScheduler(House& house, const EventElement& event) {
  const EventProbe probe(house, event);
  if (!probe.Stored() || !probe.Trouble().empty()) RefuseUnkept(probe.Trouble());
  return *probe.Stored();
}

void RefuseUnkept(const std::string& why) {
  throw Problem("invalid", "the event would not be kept as it is: " + why,
                {{"", "would not be kept as it is: " + why}});
}

void CheckDescription(House& house, const EventElement& event) {
  const unsigned long other = IdOfDescription(house, event.description);
  if (other == 0 || other == event.eventid) return;
  const std::string detail = "is " + Quoted(event.description) + ", as that of event " +
                             std::to_string(other) + " is already; give another";
  throw Problem("conflict", "/description " + detail, {{"/description", detail}});
}

std::string EventText(ApiContext& api, const FoundEvent& found) {
  EventAnswerParts parts;
  api.nextTimes.Begin();
  parts.next = api.nextTimes.Of(api.house, *found.node, found.event);
  parts.programming = &api.house.ProgrammingOf(found.event.eventid);
  std::string text;
  AppendEventJson(text, found.event, parts);
  return text;
}

HttpResponse EventAnswer(ApiContext& api, unsigned long id, int status) {
  const FoundEvent found = FindEvent(api.house, id);
  HttpResponse response = JsonAnswer(EventText(api, found), status);
  response.headers.emplace_back("ETag", EventTag(found.event));
  if (status == 201) {
    response.headers.emplace_back("Location", "/api/v1/events/" + std::to_string(id));
  }
  return response;
}

}  // namespace controller
