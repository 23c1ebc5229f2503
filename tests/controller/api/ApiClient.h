#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "FakeHouse.h"
#include "controller/api/Api.h"
#include "controller/http/Problem.h"

/// Asks the resources of a house without a server between.
class ApiClient {
 public:
  explicit ApiClient(FakeHouse& house) : house_(house), api_(house), routes_(api_.Routes()) {}

  struct Answer {
    int status = 0;
    std::string type;
    std::string text;
    std::map<std::string, std::string> headers;

    nlohmann::json Json() const { return nlohmann::json::parse(text); }
    /// "invalid", from the type of a problem; empty where it is none.
    std::string Problem() const;
    /// What is wrong with the field, or the empty text.
    std::string Error(const std::string& pointer) const;
  };

  /// `target` is a path below /api/v1 with its query, which is not percent-encoded. The house
  /// settles before this returns; an answer that has not come by then is a failure.
  Answer Ask(const std::string& method, const std::string& target, const std::string& body = "",
             const std::map<std::string, std::string>& headers = {});
  Answer Get(const std::string& target) { return Ask("GET", target); }
  Answer Post(const std::string& target, const std::string& body = "") {
    return Ask("POST", target, body);
  }

  controller::Role role = controller::Role::kEdit;

 private:
  const controller::HttpRoute* Find(const std::string& method, const std::string& path,
                                    std::map<std::string, std::string>& parts) const;

  FakeHouse& house_;
  controller::Api api_;
  std::vector<controller::HttpRoute> routes_;
};
