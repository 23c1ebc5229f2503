#include "controller/http/Problem.h"

#include <array>
#include <nlohmann/json.hpp>
#include <utility>

namespace controller {

namespace {

struct Kind {
  const char* name;
  int status;
  const char* title;
};

constexpr std::array<Kind, 20> kKinds = {{
    {"internal", 500, "The controller has failed"},
    {"malformed", 400, "The request cannot be read"},
    {"unauthorized", 401, "A token is missing or wrong"},
    {"forbidden", 403, "The request is not allowed"},
    {"not-found", 404, "There is nothing here"},
    {"method-not-allowed", 405, "That cannot be done here"},
    {"timeout", 408, "The request did not arrive in time"},
    {"conflict", 409, "The request conflicts with what is there"},
    {"precondition-failed", 412, "It has been changed meanwhile"},
    {"too-large", 413, "The request is too large"},
    {"uri-too-long", 414, "The address is too long"},
    {"unsupported-media-type", 415, "The body is of a kind that is not understood"},
    {"expectation-failed", 417, "The expectation is not understood"},
    {"invalid", 422, "The request is not valid"},
    {"too-many", 429, "There are too many connections"},
    {"headers-too-large", 431, "The header fields are too large"},
    {"not-saved", 503, "The change is in effect, but not saved yet"},
    {"not-ready", 503, "The controller is not ready"},
    {"version-not-supported", 505, "That version of HTTP is not spoken here"},
    {"not-implemented", 501, "That is not known here"},
}};

const Kind& KindOf(const std::string& name) {
  for (const Kind& kind : kKinds) {
    if (name == kind.name) return kind;
  }
  return kKinds[0];
}

}  // namespace

Problem::Problem(std::string name, const std::string& detail, FieldErrors errors)
    : std::runtime_error(detail), name_(std::move(name)), errors_(std::move(errors)) {}

int Problem::Status() const { return KindOf(name_).status; }

HttpResponse Problem::Response() const {
  const Kind& kind = KindOf(name_);
  nlohmann::ordered_json body = {{"type", std::string("urn:vexalink:problem:") + kind.name},
                                 {"title", kind.title},
                                 {"status", kind.status},
                                 {"detail", what()}};
  for (const FieldError& error : errors_) {
    body["errors"].push_back({{"pointer", error.pointer}, {"detail", error.detail}});
  }
  HttpResponse response;
  response.status = kind.status;
  response.contentType = "application/problem+json";
  // What is quoted of a request may be anything; the answer is UTF-8 all the same.
  response.body = body.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
  return response;
}

}  // namespace controller
