#include "ApiClient.h"

#include <gtest/gtest.h>
#include <sstream>

using namespace controller;

namespace {

std::vector<std::string> Split(const std::string& text, char at) {
  std::vector<std::string> parts;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, at);) parts.push_back(part);
  return parts;
}

bool Matches(const std::string& pattern, const std::string& path,
             std::map<std::string, std::string>& parts) {
  const auto wanted = Split(pattern, '/');
  const auto given = Split(path, '/');
  if (wanted.size() != given.size()) return false;
  parts.clear();
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    if (wanted[i].starts_with('{')) {
      parts[wanted[i].substr(1, wanted[i].size() - 2)] = given[i];
    } else if (wanted[i] != given[i]) {
      return false;
    }
  }
  return true;
}

}  // namespace

std::string ApiClient::Answer::Problem() const {
  if (type != "application/problem+json") return "";
  const std::string name = Json()["type"].get<std::string>();
  return name.substr(name.rfind(':') + 1);
}

std::string ApiClient::Answer::Error(const std::string& pointer) const {
  if (Problem().empty()) return "";
  const nlohmann::json problem = Json();
  if (!problem.contains("errors")) return "";
  for (const auto& error : problem["errors"]) {
    if (error["pointer"] == pointer) return error["detail"];
  }
  return "";
}

const HttpRoute* ApiClient::Find(const std::string& method, const std::string& path,
                                 std::map<std::string, std::string>& parts) const {
  for (const HttpRoute& route : routes_) {
    if (route.method == method && Matches(route.path, path, parts)) return &route;
  }
  return nullptr;
}

ApiClient::Answer ApiClient::Ask(const std::string& method, const std::string& target,
                                 const std::string& body,
                                 const std::map<std::string, std::string>& headers) {
  HttpRequest request;
  request.method = method;
  const std::size_t question = target.find('?');
  request.path = "/api/v1" + target.substr(0, question);
  if (question != target.npos) {
    for (const std::string& parameter : Split(target.substr(question + 1), '&')) {
      const std::size_t equals = parameter.find('=');
      request.query.emplace_back(parameter.substr(0, equals),
                                 equals == parameter.npos ? "" : parameter.substr(equals + 1));
    }
  }
  request.headers = headers;
  request.body = body;
  request.actor = "local";
  request.role = role;
  std::optional<HttpResponse> response;
  int answers = 0;
  const HttpRoute* route = Find(method, request.path, request.parts);
  if (route == nullptr) {
    ADD_FAILURE() << "there is no route for " << method << ' ' << request.path;
    return {};
  }
  EXPECT_LE(route->role, role) << "the server would not let it through";
  try {
    route->handler(request, [&](HttpResponse given) {
      ++answers;
      response = std::move(given);
    });
  } catch (const controller::Problem& problem) {
    EXPECT_EQ(answers, 0) << "answered, and thrown";
    return {problem.Status(), "application/problem+json", problem.Response().body, {}};
  }
  house_.Settle();
  EXPECT_EQ(answers, 1) << method << ' ' << target;
  if (!response) return {};
  return {response->status, response->contentType, response->body,
          std::map<std::string, std::string>(response->headers.begin(), response->headers.end())};
}
