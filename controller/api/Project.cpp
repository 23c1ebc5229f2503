// /project: the house itself.

#include "controller/LocalTimeText.h"
#include "controller/Printable.h"
#include "controller/api/ApiContext.h"
#include "controller/api/EventJson.h"
#include "controller/api/JsonText.h"
#include "controller/json/ObjectReader.h"

namespace controller {

namespace {

using Need = ObjectReader::Need;

constexpr std::size_t kMostName = 200;

/// A field of a patch that must be something.
void RefuseNull(ObjectReader& reader, const char* name, const char* wanted) {
  if (reader.IsNull(name)) reader.Complain(name, std::string("is null; give ") + wanted);
}

/// A place is given whole, or one of its numbers alone: the other one stays.
void ReadPlace(const nlohmann::json& value, const std::string& pointer, const Place& before,
               FieldErrors& errors, ProjectPatch& patch) {
  ObjectReader reader(value, pointer, errors);
  RefuseNull(reader, "latitude", "degrees, north positive");
  RefuseNull(reader, "longitude", "degrees, east positive");
  const auto latitude = reader.Number("latitude", Need::kOptional, -90, 90);
  const auto longitude = reader.Number("longitude", Need::kOptional, -180, 180);
  if (reader.Has("guessed")) {
    reader.Value("guessed");
    reader.Complain("guessed", "is for answers only; leave it out");
  }
  reader.NoOthers();
  if (latitude || longitude) {
    patch.place = Place{latitude.value_or(before.latitude), longitude.value_or(before.longitude)};
  }
}

void ReadAway(ObjectReader& reader, ProjectPatch& patch) {
  reader.Value("away_until");  // may stand there, also where it does not
  if (!reader.Has("away_until")) return;
  if (reader.IsNull("away_until")) {
    patch.awayUntil.emplace(std::nullopt);
  } else if (const auto day = reader.Day("away_until", Need::kOptional)) {
    patch.awayUntil.emplace(day);
    if (*day > LocalDay(std::time(nullptr))) return;
    reader.Complain("away_until", "is " + Quoted(DayText(*day)) +
                                      ", and that day has begun; give a later one, or null");
  }
}

ProjectPatch ReadPatch(const nlohmann::json& document, const Place& before) {
  FieldErrors errors;
  ObjectReader reader(document, "", errors);
  ProjectPatch patch;
  RefuseNull(reader, "name", "a name");
  RefuseNull(reader, "place", "an object with \"latitude\" and \"longitude\"");
  patch.name = reader.Text("name", Need::kOptional, 1, kMostName);
  const auto* place = reader.Value("place");
  if (place != nullptr) ReadPlace(*place, reader.PointerTo("place"), before, errors, patch);
  ReadAway(reader, patch);
  reader.NoOthers();
  ThrowIfWrong(errors);
  return patch;
}

/// Who may not edit may still say that nobody is at home.
void CheckRole(const HttpRequest& request, const ProjectPatch& patch) {
  if (request.role >= Role::kEdit || (!patch.name && !patch.place)) return;
  throw Problem("forbidden",
                "only \"away_until\" may be changed by the role operate; the rest needs the role "
                "edit");
}

std::string ProjectTag(const ApiContext& api) {
  nlohmann::ordered_json json = ProjectJson(api);
  for (const char* moving : {"now", "timezone", "events", "version"}) json.erase(moving);
  return EntityTag(JsonDump(json));
}

HttpResponse ProjectAnswer(const ApiContext& api) {
  HttpResponse response = JsonAnswer(ProjectJson(api));
  response.headers.emplace_back("ETag", ProjectTag(api));
  return response;
}

void GetProject(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  respond(ProjectAnswer(api));
}

void PatchProject(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  CheckIfMatch(request, ProjectTag(api));
  const ProjectPatch patch = ReadPatch(JsonBody(request), api.house.WhereItIs().place);
  CheckRole(request, patch);
  SavedAnswer answer(respond);
  api.house.ChangeProject(patch, request.actor, answer.Callback());
  answer.Set(ProjectAnswer(api));
}

void GetCities(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  const std::string& cities = api.cities.Text();
  respond(WithTag(request, JsonAnswer(cities), EntityTag(cities)));
}

std::size_t CountEvents(House& house) {
  const auto all = house.Scheduler().Request("GET_ALL_EVENTS");
  std::size_t count = 0;
  const VxXML::INode* event = all ? all->GetFirstChild() : nullptr;
  for (; event != nullptr; event = event->GetNextSibling()) ++count;
  return count;
}

}  // namespace

nlohmann::ordered_json PlaceJson(const Place& place) {
  return nlohmann::ordered_json{{"latitude", place.latitude}, {"longitude", place.longitude}};
}

nlohmann::ordered_json ProjectJson(const ApiContext& api) {
  House& house = api.house;
  const std::time_t now = std::time(nullptr);
  const auto away = house.AwayUntil();
  nlohmann::ordered_json json;
  json["id"] = api.projectId;
  json["name"] = ValidUtf8(house.Name());
  json["place"] = PlaceJson(house.WhereItIs().place);
  json["place"]["guessed"] = house.WhereItIs().guessed;
  json["away_until"] = away ? nlohmann::ordered_json(DayText(*away)) : nullptr;
  json["now"] = MomentJson(now);
  json["timezone"] = TimeZoneJson(now);
  json["version"] = VEXALINK_VERSION;
  json["events"] = CountEvents(house);
  return json;
}

void AddProjectRoutes(Routes& routes, const SharedContext& api) {
  AddRoute(routes, "GET", "/project", Role::kView, BodyKind::kNone, Handle(api, GetProject));
  AddRoute(routes, "PATCH", "/project", Role::kOperate, BodyKind::kPatch,
           Handle(api, PatchProject));
  AddRoute(routes, "GET", "/project/cities", Role::kView, BodyKind::kNone, Handle(api, GetCities));
}

}  // namespace controller
