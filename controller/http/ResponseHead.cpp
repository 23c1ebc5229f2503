#include "controller/http/ResponseHead.h"

#include <algorithm>
#include <ctime>

#include "controller/http/UrlText.h"

namespace controller {

namespace {

/// Nothing but what the program itself serves is loaded, run, framed or sent to.
constexpr const char* kContentPolicy =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
    "connect-src 'self'; font-src 'self'; manifest-src 'self'; base-uri 'none'; "
    "form-action 'self'; frame-ancestors 'none'";

bool HasField(const HttpResponse& response, const std::string& lowerName) {
  return std::any_of(response.headers.begin(), response.headers.end(),
                     [&](const auto& field) { return LowerCase(field.first) == lowerName; });
}

std::string HttpDate() {
  const std::time_t now = std::time(nullptr);
  std::tm fields{};
  gmtime_r(&now, &fields);
  char text[64];
  const std::size_t size = std::strftime(text, sizeof(text), "%a, %d %b %Y %H:%M:%S GMT", &fields);
  return {text, size};
}

}  // namespace

const char* StatusText(int status) {
  switch (status) {
    case 200:
      return "OK";
    case 201:
      return "Created";
    case 202:
      return "Accepted";
    case 204:
      return "No Content";
    case 304:
      return "Not Modified";
    case 400:
      return "Bad Request";
    case 401:
      return "Unauthorized";
    case 403:
      return "Forbidden";
    case 404:
      return "Not Found";
    case 405:
      return "Method Not Allowed";
    case 408:
      return "Request Timeout";
    case 409:
      return "Conflict";
    case 412:
      return "Precondition Failed";
    case 413:
      return "Content Too Large";
    case 414:
      return "URI Too Long";
    case 415:
      return "Unsupported Media Type";
    case 417:
      return "Expectation Failed";
    case 422:
      return "Unprocessable Content";
    case 429:
      return "Too Many Requests";
    case 431:
      return "Request Header Fields Too Large";
    case 500:
      return "Internal Server Error";
    case 501:
      return "Not Implemented";
    case 503:
      return "Service Unavailable";
    case 505:
      return "HTTP Version Not Supported";
    default:
      return "Status";
  }
}

bool StatusHasBody(int status) { return status >= 200 && status != 204 && status != 304; }

std::vector<std::pair<std::string, std::string>> ResponseFields(const HttpResponse& response) {
  std::vector<std::pair<std::string, std::string>> fields;
  const bool hasBody = StatusHasBody(response.status);
  if (hasBody && !response.contentType.empty()) {
    fields.emplace_back("Content-Type", response.contentType);
  }
  fields.insert(fields.end(), response.headers.begin(), response.headers.end());
  if (!HasField(response, "cache-control")) fields.emplace_back("Cache-Control", "no-store");
  fields.emplace_back("Content-Security-Policy", kContentPolicy);
  fields.emplace_back("X-Content-Type-Options", "nosniff");
  fields.emplace_back("Referrer-Policy", "no-referrer");
  fields.emplace_back("Cross-Origin-Opener-Policy", "same-origin");
  fields.emplace_back("Cross-Origin-Resource-Policy", "same-origin");
  return fields;
}

std::string LastAnswer(const HttpResponse& response) {
  std::string text =
      "HTTP/1.1 " + std::to_string(response.status) + " " + StatusText(response.status) + "\r\n";
  for (const auto& [name, value] : ResponseFields(response)) text += name + ": " + value + "\r\n";
  text += "Date: " + HttpDate() + "\r\nContent-Length: " + std::to_string(response.body.size()) +
          "\r\nConnection: close\r\n\r\n";
  return text + response.body;
}

}  // namespace controller
