#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "controller/House.h"
#include "controller/http/Http.h"

namespace controller {

struct ApiContext;

/// The resources of docs/api.md for one house, which must outlive it and what it answers.
class Api {
 public:
  explicit Api(House& house);

  /// The table, /api/v1/openapi.json included. Stream, health and metrics are not in it.
  std::vector<HttpRoute> Routes() const;

  // What the stream tells, in the same words as the resources. JSON texts.
  /// As in GET /events/{id}; "null" where there is no such event.
  std::string EventText(unsigned long id) const;
  /// As in GET /events/{id}/programming.
  std::string ProgrammingText(unsigned long id) const;
  std::string JournalRowText(const JournalRow& row) const;
  /// As in GET /project.
  std::string ProjectText() const;

 private:
  std::shared_ptr<ApiContext> context_;
};

/// The table of a house of its own.
std::vector<HttpRoute> ApiRoutes(House& house);

/// The description of the API, OpenAPI 3.1 as JSON.
std::string_view OpenApiText();

}  // namespace controller
