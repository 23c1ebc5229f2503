// /status: how the controller is.

#include "controller/LocalTimeText.h"
#include "controller/Log.h"
#include "controller/TimeZone.h"
#include "controller/api/ApiContext.h"
#include "controller/api/EventJson.h"
#include "controller/api/JsonText.h"

namespace controller {

namespace {

struct Summary {
  std::size_t events = 0;
  unsigned long next = 0;
  std::string description;
  std::optional<std::time_t> when;
};

/// Counts the events, and finds the one that comes next.
Summary Summarise(ApiContext& api) {
  Summary summary;
  api.nextTimes.Begin();
  const auto all = api.house.Scheduler().Request("GET_ALL_EVENTS");
  const VxXML::INode* node = all ? all->GetFirstChild() : nullptr;
  for (; node != nullptr; node = node->GetNextSibling()) {
    ++summary.events;
    const EventElement event = ReadEventElement(*node);
    if (!api.house.ProgrammingOf(event.eventid).enabled) continue;
    const auto when = api.nextTimes.Of(api.house, *node, event);
    if (!when || (summary.when && *summary.when <= *when)) continue;
    summary.next = event.eventid;
    summary.description = event.description;
    summary.when = when;
  }
  return summary;
}

nlohmann::ordered_json NextJson(const Summary& summary) {
  if (!summary.when) return nullptr;
  return nlohmann::ordered_json{{"event", summary.next},
                                {"description", ValidUtf8(summary.description)},
                                {"time", MomentJson(summary.when)}};
}

nlohmann::ordered_json CountsJson(const HouseCounters& counters) {
  const auto list = [](const std::map<std::string, std::uint64_t>& counts) {
    auto json = nlohmann::ordered_json::object();
    for (const auto& [reason, count] : counts) json[reason] = count;
    return json;
  };
  nlohmann::ordered_json json;
  json["fired"] = list(counters.fired);
  json["held"] = list(counters.held);
  json["missed"] = list(counters.missed);
  json["actions"] = list(counters.actions);
  json["saves"] = counters.saves;
  json["save_failures"] = counters.saveFailures;
  return json;
}

nlohmann::ordered_json SavingJson(const std::string& trouble) {
  nlohmann::ordered_json json{{"ok", trouble.empty()}};
  if (!trouble.empty()) json["why"] = ValidUtf8(trouble);
  return json;
}

void GetStatus(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  const std::time_t now = std::time(nullptr);
  const HouseCounters& counters = api.house.Counters();
  const Summary summary = Summarise(api);
  const auto away = api.house.AwayUntil();
  nlohmann::ordered_json json;
  json["now"] = MomentJson(now);
  json["timezone"] = TimeZoneJson(now);
  json["version"] = VEXALINK_VERSION;
  json["started"] = MomentJson(api.house.StartedAt());
  json["events"] = summary.events;
  json["next"] = NextJson(summary);
  json["away_until"] = away ? nlohmann::ordered_json(DayText(*away)) : nullptr;
  json["saving"] = SavingJson(api.house.SavingTrouble());
  json["clock"] = {{"jumps", counters.clockJumps},
                   {"zone_changes", counters.zoneChanges},
                   {"ticks", counters.ticks},
                   {"tick_lateness", counters.tickLateness},
                   {"worst_tick_lateness", counters.worstTickLateness}};
  json["running"] = api.house.RunningActions().size();
  json["counts"] = CountsJson(counters);
  respond(JsonAnswer(json));
}

}  // namespace

nlohmann::ordered_json TimeZoneJson(std::time_t moment) {
  std::tm fields{};
  const bool known = localtime_r(&moment, &fields) != nullptr;
  const std::string abbreviation = known && fields.tm_zone != nullptr ? fields.tm_zone : "";
  return nlohmann::ordered_json{{"name", ValidUtf8(TimeZoneName())},
                                {"abbreviation", ValidUtf8(abbreviation)},
                                {"offset", OffsetText(moment)}};
}

void AddStatusRoutes(Routes& routes, const SharedContext& api) {
  AddRoute(routes, "GET", "/status", Role::kView, BodyKind::kNone, Handle(api, GetStatus));
}

}  // namespace controller
