#pragma once

#include <string>
#include <utility>
#include <vector>

#include "controller/cli/Json.h"
#include "controller/cli/net/HttpClient.h"

namespace controller::cli {

/// The API of one controller, as docs/api.md describes it. Paths are given without "/api/v1".
/// Everything throws a `Failure` where the answer is no success, with what the controller says of
/// it and the exit status that belongs to it.
class Api {
 public:
  using Query = std::vector<std::pair<std::string, std::string>>;

  explicit Api(const ClientOptions& options) : http_(options) {}

  Json Get(const std::string& path, const Query& query = {});
  /// Answers null where the answer has no body.
  Json Send(const std::string& method, const std::string& path, const Json& body,
            long seconds = 30);
  /// Without a body.
  Json Send(const std::string& method, const std::string& path);
  /// The next `Send` is obeyed only if this is still the version; empty: any.
  void IfMatch(const std::string& version) { ifMatch_ = version; }
  /// Of what was answered last; empty where it has none.
  const std::string& Version() const { return version_; }

  /// Every event whose description holds `part`, by id; all where it is empty. The answer of the
  /// API with all pages put together.
  Json Events(const std::string& part = {});
  /// The date that it is in the house.
  std::string Today();

  const HttpClient& Http() const { return http_; }

 private:
  Json Ask(HttpCall call);

  HttpClient http_;
  std::string ifMatch_;
  std::string version_;
};

/// Throws what a refused request is to be told as. `body` is a problem in JSON, or not.
[[noreturn]] void ThrowRefusal(const HttpAnswer& answer, const std::string& address);

}  // namespace controller::cli
