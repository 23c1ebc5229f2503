#include "controller/api/Api.h"
#include "controller/api/ApiContext.h"

namespace controller {

void AddOpenApiRoutes(Routes& routes) {
  AddRoute(routes, "GET", "/openapi.json", Role::kView, BodyKind::kNone,
           [](const HttpRequest& request, const Respond& respond) {
             NoQuery(request);
             const std::string_view text = OpenApiText();
             respond(WithTag(request, JsonAnswer(std::string(text)), EntityTag(text)));
           });
}

}  // namespace controller
