#include "controller/cli/net/Api.h"

#include <utility>
#include <variant>

#include "controller/Failure.h"
#include "controller/Printable.h"
#include "controller/json/StrictJson.h"

namespace controller::cli {

namespace {

constexpr JsonLimits kLimits{.bytes = 64UL << 20, .depth = 64};
constexpr std::size_t kPage = 1000;

/// Null where the text is not JSON that can be read without harm.
Json Parsed(const std::string& text) {
  if (std::holds_alternative<JsonFault>(ParseStrictJson(text, kLimits))) return nullptr;
  return Json::parse(text, nullptr, /*allow_exceptions=*/false);
}

/// What is wrong: the sentence of the problem, and the fields that it does not tell of.
std::string ProblemText(const Json& problem) {
  std::string text = TextField(problem, "detail");
  if (text.empty()) text = TextField(problem, "title");
  if (!problem.contains("errors") || !problem["errors"].is_array()) return text;
  if (problem["errors"].size() < 2) return text;
  text.clear();
  for (const Json& error : problem["errors"]) {
    text += (text.empty() ? "" : "; and ") + TextField(error, "pointer") + ' ' +
            TextField(error, "detail");
  }
  return text;
}

ExitStatus StatusFor(const HttpAnswer& answer, const std::string& name) {
  if (name == "not-saved") return ExitStatus::kNotSaved;
  if (name == "not-found") return ExitStatus::kNoSuchEvent;
  return answer.status >= 400 && answer.status < 500 ? ExitStatus::kRefused : ExitStatus::kFailed;
}

std::string BodyText(const Json& body) {
  try {
    return body.dump();
  } catch (const Json::type_error&) {
    throw Failure("the command line holds bytes that are no UTF-8", ExitStatus::kBadInput);
  }
}

std::string Advice(const HttpAnswer& answer) {
  if (answer.status == 401) return "; give a token by --token-file or VEXALINK_TOKEN";
  return "";
}

}  // namespace

void ThrowRefusal(const HttpAnswer& answer, const std::string& address) {
  const Json problem = Parsed(answer.body);
  const std::string text = ProblemText(problem);
  constexpr std::string_view kNames = "urn:vexalink:problem:";
  std::string name = TextField(problem, "type");
  if (text.empty() || !name.starts_with(kNames)) {
    throw Failure("what answers at " + address + " is no controller of this kind: it says " +
                  std::to_string(answer.status) + "; is --url right?");
  }
  name.erase(0, kNames.size());
  const ExitStatus status = StatusFor(answer, name);
  const char* what = status == ExitStatus::kNotSaved      ? "not saved yet: "
                     : status == ExitStatus::kNoSuchEvent ? ""
                     : status == ExitStatus::kRefused     ? "the controller refuses: "
                                                          : "the controller fails: ";
  throw Failure(what + text + Advice(answer), status);
}

Json Api::Ask(HttpCall call) {
  call.path = "/api/v1" + call.path;
  if (call.method != "GET") call.ifMatch = std::exchange(ifMatch_, {});
  const HttpAnswer answer = http_.Ask(call);
  version_ = answer.version;
  if (answer.status < 200 || answer.status > 299) ThrowRefusal(answer, http_.Address());
  if (answer.body.empty()) return nullptr;
  Json value = Parsed(answer.body);
  if (value.is_object()) return value;
  throw Failure("what answers at " + http_.Address() +
                " is no controller of this kind: it sends no JSON; is --url right?");
}

Json Api::Get(const std::string& path, const Query& query) {
  HttpCall call;
  call.path = path;
  for (std::size_t i = 0; i < query.size(); ++i) {
    call.path += (i == 0 ? '?' : '&') + query[i].first + '=' + PercentEncoded(query[i].second);
  }
  return Ask(call);
}

Json Api::Send(const std::string& method, const std::string& path, const Json& body, long seconds) {
  HttpCall call;
  call.method = method;
  call.path = path;
  call.body = BodyText(body);
  call.contentType = method == "PATCH" ? "application/merge-patch+json" : "application/json";
  call.seconds = seconds;
  return Ask(call);
}

Json Api::Send(const std::string& method, const std::string& path) {
  HttpCall call;
  call.method = method;
  call.path = path;
  return Ask(call);
}

Json Api::Events(const std::string& part) {
  Query query = {{"limit", std::to_string(kPage)}, {"offset", "0"}};
  if (!part.empty()) query.emplace_back("q", part);
  Json all = Get("/events", query);
  Json& events = all.at("events");
  const std::size_t total = all.at("total").get<std::size_t>();
  while (events.size() < total) {
    query[1].second = std::to_string(events.size());
    const Json page = Get("/events", query);
    if (page.at("events").empty()) break;  // some went meanwhile
    for (const Json& event : page.at("events")) events.push_back(event);
  }
  return all;
}

std::string Api::Today() { return Get("/project").at("now").get<std::string>().substr(0, 10); }

}  // namespace controller::cli
