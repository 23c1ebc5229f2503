// /variables: the variables of the house, which conditions of other drivers and actions share.

#include "controller/Printable.h"
#include "controller/ProjectVariables.h"
#include "controller/api/ApiContext.h"
#include "controller/api/JsonText.h"
#include "controller/json/ObjectReader.h"

namespace controller {

namespace {

constexpr std::size_t kMostValue = 1000;
constexpr unsigned long kMostHostNumber = 0xFFFFFFFF;

void ListVariables(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  auto list = nlohmann::ordered_json::array();
  for (const auto& [key, value] : api.house.Variables()) {
    list.push_back({{"device", key.first}, {"variable", key.second}, {"value", ValidUtf8(value)}});
  }
  respond(JsonAnswer(nlohmann::ordered_json{{"variables", std::move(list)}}));
}

/// As far as actions and conditions can name one.
unsigned long HostNumber(const HttpRequest& request, const char* name) {
  const unsigned long number = NumberInPath(request, name);
  if (number <= kMostHostNumber) return number;
  throw Problem("invalid", "the " + std::string(name) + " is a number up to " +
                               std::to_string(kMostHostNumber) + "; there is no " +
                               std::to_string(number));
}

/// The place is kept with the project, and its variables follow it.
void RefusePlace(unsigned long device, unsigned long variable) {
  if (!IsPlaceVariable(device, variable)) return;
  throw Problem("invalid", "variable " + std::to_string(variable) + " of device " +
                               std::to_string(device) +
                               " is the place of the house; change \"place\" of /project");
}

void PutVariable(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  const unsigned long device = HostNumber(request, "device");
  const unsigned long variable = HostNumber(request, "variable");
  FieldErrors errors;
  const nlohmann::json body = JsonBody(request);
  ObjectReader reader(body, "", errors);
  const auto value =
      reader.Text("value", ObjectReader::Need::kDemanded, 0, kMostValue, /*lines=*/true);
  reader.NoOthers();
  ThrowIfWrong(errors);
  RefusePlace(device, variable);
  api.house.SetHostVariable(device, variable, *value, request.actor);
  respond(JsonAnswer(
      nlohmann::ordered_json{{"device", device}, {"variable", variable}, {"value", *value}}));
}

}  // namespace

void AddVariableRoutes(Routes& routes, const SharedContext& api) {
  AddRoute(routes, "GET", "/variables", Role::kView, BodyKind::kNone, Handle(api, ListVariables));
  AddRoute(routes, "PUT", "/variables/{device}/{variable}", Role::kEdit, BodyKind::kJson,
           Handle(api, PutVariable));
}

}  // namespace controller
