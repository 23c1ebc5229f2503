// /today: what occurs today, and what became of it.

#include "controller/api/ApiContext.h"
#include "controller/api/EventFields.h"
#include "controller/api/JsonText.h"

namespace controller {

namespace {

/// Minutes of the random part; `planned` lacks the seconds of a sun time, which `due` has.
long Drawn(const PlannedOccurrence& occurrence) {
  const std::time_t seconds = *occurrence.due - occurrence.planned;
  return static_cast<long>((seconds - (seconds % 60 + 60) % 60) / 60);
}

nlohmann::ordered_json OccurrenceJson(const PlannedOccurrence& occurrence) {
  nlohmann::ordered_json json;
  json["event"] = occurrence.event;
  json["description"] = ValidUtf8(occurrence.description);
  const auto base = static_cast<std::size_t>(occurrence.base);
  json["base"] = base < kBaseNames.size() ? nlohmann::ordered_json(kBaseNames[base])
                                          : nlohmann::ordered_json(nullptr);
  json["planned"] = MomentJson(occurrence.planned);
  json["due"] = MomentJson(occurrence.due);
  json["drawn"] =
      occurrence.due ? nlohmann::ordered_json(Drawn(occurrence)) : nlohmann::ordered_json(nullptr);
  json["state"] = StateName(occurrence.state);
  json["reason"] = occurrence.reason.empty() ? nlohmann::ordered_json(nullptr)
                                             : nlohmann::ordered_json(occurrence.reason);
  json["journal"] = occurrence.journalRow == 0 ? nlohmann::ordered_json(nullptr)
                                               : nlohmann::ordered_json(occurrence.journalRow);
  return json;
}

void GetToday(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  auto list = nlohmann::ordered_json::array();
  for (const PlannedOccurrence& occurrence : api.house.Today()) {
    list.push_back(OccurrenceJson(occurrence));
  }
  respond(JsonAnswer(nlohmann::ordered_json{{"date", DayText(api.house.TodayDate())},
                                            {"occurrences", std::move(list)}}));
}

}  // namespace

void AddTodayRoutes(Routes& routes, const SharedContext& api) {
  AddRoute(routes, "GET", "/today", Role::kView, BodyKind::kNone, Handle(api, GetToday));
}

}  // namespace controller
