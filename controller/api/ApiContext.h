#pragma once

#include <memory>
#include <optional>
#include <string>

#include "controller/House.h"
#include "controller/api/Cities.h"
#include "controller/api/NextTimes.h"
#include "controller/api/Routes.h"
#include "controller/http/EntityTag.h"

namespace controller {

/// What the resources share.
struct ApiContext {
  explicit ApiContext(House& ofWhich) : house(ofWhich), projectId(house.Store().ProjectId()) {}

  House& house;
  /// Read once: looking at the house must not have to wait for the disk.
  std::string projectId;
  NextTimes nextTimes;
  Cities cities;
};
using SharedContext = std::shared_ptr<ApiContext>;

/// What a route does, as a handler.
using ApiWork = void (*)(ApiContext& api, const HttpRequest& request, const Respond& respond);
inline HttpHandler Handle(const SharedContext& api, ApiWork work) {
  return [api, work](const HttpRequest& request, const Respond& respond) {
    work(*api, request, respond);
  };
}

/// What tells this version of an event from others. What it does is not in it, nor when it comes
/// next.
std::string EventTag(const EventElement& event);

/// An event as the scheduler answers it.
struct FoundEvent {
  vx::auto_com<VxXML::INode> node;
  EventElement event;
};
/// A `Problem` where there is no such event.
FoundEvent FindEvent(House& house, unsigned long id);
std::optional<FoundEvent> LookForEvent(House& house, unsigned long id);
/// The event that the request's path names; a `Problem` where there is none.
FoundEvent EventInPath(House& house, const HttpRequest& request);

/// Refuses what the scheduler would not take, or would make another event of; gives the event as it
/// would be kept. Nothing has changed then.
EventElement AskScheduler(House& house, const EventElement& event);
[[noreturn]] void RefuseUnkept(const std::string& why);
/// Refuses a description that is another event's.
void CheckDescription(House& house, const EventElement& event);

std::string EventText(ApiContext& api, const FoundEvent& found);
/// As an answer with its ETag.
HttpResponse EventAnswer(ApiContext& api, unsigned long id, int status);

nlohmann::ordered_json JournalRowJson(const JournalRow& row);
nlohmann::ordered_json ProjectJson(const ApiContext& api);
/// {"name": "Europe/Berlin", "abbreviation": "CET", "offset": "+01:00"}, at the moment.
nlohmann::ordered_json TimeZoneJson(std::time_t moment);
nlohmann::ordered_json PlaceJson(const Place& place);

// The resources, each in a file of its own.
void AddEventRoutes(Routes& routes, const SharedContext& api);
void AddEventWorkRoutes(Routes& routes, const SharedContext& api);
void AddPreviewRoutes(Routes& routes, const SharedContext& api);
void AddProgrammingRoutes(Routes& routes, const SharedContext& api);
void AddActionRoutes(Routes& routes, const SharedContext& api);
void AddConditionRoutes(Routes& routes, const SharedContext& api);
void AddTodayRoutes(Routes& routes, const SharedContext& api);
void AddOccurrenceRoutes(Routes& routes, const SharedContext& api);
void AddSunRoutes(Routes& routes, const SharedContext& api);
void AddJournalRoutes(Routes& routes, const SharedContext& api);
void AddStatusRoutes(Routes& routes, const SharedContext& api);
void AddProjectRoutes(Routes& routes, const SharedContext& api);
void AddScheduleRoutes(Routes& routes, const SharedContext& api);
void AddBackupRoutes(Routes& routes, const SharedContext& api);
void AddVariableRoutes(Routes& routes, const SharedContext& api);
void AddOpenApiRoutes(Routes& routes);

}  // namespace controller
