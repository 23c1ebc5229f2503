#include "controller/api/Routes.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <utility>

#include "controller/Failure.h"
#include "controller/Printable.h"
#include "controller/api/JsonText.h"
#include "controller/json/ObjectReader.h"
#include "controller/json/StrictJson.h"

namespace controller {

namespace {

constexpr std::size_t kXmlLimit = 32UL << 20;

std::optional<long> ReadWhole(const std::string& text) {
  long number = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return number;
}

/// The media types of a body; none where there may be no body.
std::vector<std::string> TypesOf(BodyKind body) {
  switch (body) {
    case BodyKind::kNone:
      return {};
    case BodyKind::kPatch:
      return {"application/json", "application/merge-patch+json"};
    case BodyKind::kXml:
      return {"application/xml", "text/xml"};
    default:
      return {"application/json"};
  }
}

void CheckBody(const HttpRequest& request, BodyKind kind) {
  if (kind == BodyKind::kNone && !request.body.empty()) {
    throw Problem("malformed", "the request has a body, which means nothing here; leave it out");
  }
  const bool demanded = kind != BodyKind::kNone && kind != BodyKind::kOptionalJson;
  if (demanded && request.body.empty()) {
    throw Problem("malformed", kind == BodyKind::kXml ? "the request has no body; give the XML"
                                                      : "the request has no body; give JSON");
  }
}

}  // namespace

void AddRoute(Routes& routes, const char* method, const std::string& path, Role role, BodyKind body,
              HttpHandler handler) {
  HttpRoute route;
  route.method = method;
  route.path = "/api/v1" + path;
  route.role = role;
  route.bodyTypes = TypesOf(body);
  if (body == BodyKind::kXml) route.bodyLimit = kXmlLimit;
  route.handler = [body, handler = std::move(handler)](const HttpRequest& request,
                                                       Respond respond) {
    CheckBody(request, body);
    try {
      handler(request, std::move(respond));
    } catch (const Failure& failure) {
      // The project's file cannot be read now, for example: the client may know what to do.
      throw Problem("not-ready", failure.what());
    }
  };
  routes.push_back(std::move(route));
}

std::vector<std::string> QueryReader::Texts(const char* name) {
  known_.emplace_back(name);
  std::vector<std::string> texts;
  for (const auto& [key, value] : request_.query) {
    if (key == name) texts.push_back(value);
  }
  return texts;
}

std::optional<std::string> QueryReader::Text(const char* name) {
  std::vector<std::string> texts = Texts(name);
  if (texts.empty()) return std::nullopt;
  if (texts.size() > 1) {
    throw Problem("malformed", "the parameter " + Quoted(name) + " stands " +
                                   std::to_string(texts.size()) + " times; give it once");
  }
  return std::move(texts.front());
}

std::optional<long> QueryReader::Whole(const char* name, long least, long most) {
  const auto text = Text(name);
  if (!text) return std::nullopt;
  const auto number = ReadWhole(*text);
  if (number && *number >= least && *number <= most) return number;
  Refuse(name, *text,
         most == std::numeric_limits<long>::max()
             ? "a whole number, " + std::to_string(least) + " or more"
             : "a whole number, " + std::to_string(least) + " to " + std::to_string(most));
}

bool QueryReader::Flag(const char* name) {
  const auto text = Text(name);
  if (!text || *text == "0" || *text == "false") return false;
  if (*text == "1" || *text == "true") return true;
  Refuse(name, *text, "1 or 0");
}

std::optional<DayFields> QueryReader::Day(const char* name) {
  const auto text = Text(name);
  if (!text) return std::nullopt;
  const auto day = ReadDay(*text);
  if (!day) Refuse(name, *text, "a date that exists, such as 2026-11-21");
  return day;
}

void QueryReader::Refuse(const std::string& name, const std::string& value,
                         const std::string& wanted) {
  throw Problem("malformed",
                "the parameter " + Quoted(name) + " is " + Quoted(value) + "; give " + wanted);
}

void QueryReader::NoOthers() {
  for (const auto& parameter : request_.query) {
    if (std::find(known_.begin(), known_.end(), parameter.first) != known_.end()) continue;
    std::string names;
    for (const std::string& name : known_) names += (names.empty() ? "" : ", ") + name;
    throw Problem("malformed", "the parameter " + Quoted(parameter.first) +
                                   " is not known here; there " +
                                   (names.empty() ? "are none" : "are " + names));
  }
}

void NoQuery(const HttpRequest& request) { QueryReader(request).NoOthers(); }

nlohmann::json JsonBody(const HttpRequest& request) {
  auto parsed = ParseStrictJson(request.body);
  if (const auto* fault = std::get_if<JsonFault>(&parsed)) {
    throw Problem("malformed", "the body is not JSON that can be taken: " + fault->text);
  }
  return std::get<nlohmann::json>(std::move(parsed));
}

void ThrowIfWrong(const FieldErrors& errors) {
  if (!errors.empty()) throw Problem("invalid", ErrorText(errors), errors);
}

unsigned long NumberInPath(const HttpRequest& request, const char* name, const char* what) {
  const auto part = request.parts.find(name);
  const std::string text = part == request.parts.end() ? "" : part->second;
  const auto number = ReadWhole(text);
  // "007" is another path than "7".
  if (number && *number >= 1 && text.front() != '0' && text.front() != '+') {
    return static_cast<unsigned long>(*number);
  }
  throw Problem("not-found", "there is no " + std::string(what != nullptr ? what : name) + ' ' +
                                 Quoted(text) + "; give a number, 1 or more");
}

HttpResponse JsonAnswer(std::string body, int status) {
  HttpResponse response;
  response.status = status;
  response.body = std::move(body);
  return response;
}

HttpResponse JsonAnswer(const nlohmann::ordered_json& document, int status) {
  return JsonAnswer(JsonDump(document), status);
}

HttpResponse NoContent() {
  HttpResponse response;
  response.status = 204;
  response.contentType.clear();
  return response;
}

SavedAnswer::SavedAnswer(Respond respond)
    : state_(std::make_shared<State>(State{std::move(respond), {}})) {}

House::Saved SavedAnswer::Callback() const {
  return [state = state_](const std::string& trouble) {
    if (trouble.empty()) return state->respond(std::move(state->response));
    HttpResponse response =
        Problem("not-saved",
                "the change is in effect, but could not be saved yet: " + Printable(trouble, 500) +
                    "; it is saved as soon as that works again")
            .Response();
    auto body = nlohmann::ordered_json::parse(response.body);
    body["applied"] = true;
    response.body = JsonDump(body);
    state->respond(std::move(response));
  };
}

}  // namespace controller
