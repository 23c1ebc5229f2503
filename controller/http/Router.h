#pragma once

#include <deque>
#include <map>
#include <string>
#include <vector>

#include "controller/http/Http.h"

namespace controller {

/// The table of what is answered. Where several patterns fit a path the one with the earlier
/// literal segment wins: "/events/new" before "/events/{id}".
class Router {
 public:
  /// `route` must not be there already (same method, same path); throws a `Failure`.
  void Add(HttpRoute route);

  struct Match {
    /// As long as the router is there.
    const HttpRoute* route = nullptr;
    std::map<std::string, std::string> parts;
  };
  /// Who answers `method` (HEAD as GET) on the path of these decoded segments. Throws a `Problem`:
  /// "not-found" where the path is not there, else "method-not-allowed".
  Match Find(const std::string& method, const std::vector<std::string>& segments) const;
  /// What may be done on the path, for the Allow field: "GET, HEAD, OPTIONS". Empty where there is
  /// no such path.
  std::string Allowed(const std::vector<std::string>& segments) const;

 private:
  struct Path {
    /// A segment in braces takes any that is not empty.
    std::vector<std::string> pattern;
    std::deque<HttpRoute> routes;
  };

  const Path* FindPath(const std::vector<std::string>& segments) const;

  // Neither is ever moved: what `Find` has answered stays good.
  std::deque<Path> paths_;
};

}  // namespace controller
