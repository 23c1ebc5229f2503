#include "controller/http/Router.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "controller/Failure.h"
#include "controller/http/Problem.h"
#include "controller/http/UrlText.h"

namespace controller {

namespace {

bool IsPart(const std::string& segment) {
  return segment.size() > 2 && segment.front() == '{' && segment.back() == '}';
}

bool Fits(const std::vector<std::string>& pattern, const std::vector<std::string>& segments) {
  if (pattern.size() != segments.size()) return false;
  for (std::size_t at = 0; at < pattern.size(); ++at) {
    if (IsPart(pattern[at]) ? segments[at].empty() : pattern[at] != segments[at]) return false;
  }
  return true;
}

/// Whether `left` says more than `right` about the first segment in which they differ so.
bool IsCloser(const std::vector<std::string>& left, const std::vector<std::string>& right) {
  for (std::size_t at = 0; at < left.size(); ++at) {
    if (IsPart(left[at]) != IsPart(right[at])) return IsPart(right[at]);
  }
  return false;
}

}  // namespace

void Router::Add(HttpRoute route) {
  std::optional<std::vector<std::string>> pattern = PathSegments(route.path);
  if (!pattern) throw Failure("the route " + route.path + " is no path");
  auto path = std::find_if(paths_.begin(), paths_.end(),
                           [&](const Path& there) { return there.pattern == *pattern; });
  if (path == paths_.end()) {
    paths_.push_back({*std::move(pattern), {}});
    path = std::prev(paths_.end());
  }
  for (const HttpRoute& there : path->routes) {
    if (there.method == route.method) {
      throw Failure("the route " + route.method + " " + route.path + " is there twice");
    }
  }
  path->routes.push_back(std::move(route));
}

const Router::Path* Router::FindPath(const std::vector<std::string>& segments) const {
  const Path* found = nullptr;
  for (const Path& path : paths_) {
    if (!Fits(path.pattern, segments)) continue;
    if (found == nullptr || IsCloser(path.pattern, found->pattern)) found = &path;
  }
  return found;
}

Router::Match Router::Find(const std::string& method,
                           const std::vector<std::string>& segments) const {
  const Path* path = FindPath(segments);
  if (path == nullptr) throw Problem("not-found", "there is nothing at this address");
  const std::string asked = method == "HEAD" ? "GET" : method;
  for (const HttpRoute& route : path->routes) {
    if (route.method != asked) continue;
    Match match{&route, {}};
    for (std::size_t at = 0; at < segments.size(); ++at) {
      const std::string& name = path->pattern[at];
      if (IsPart(name)) match.parts[name.substr(1, name.size() - 2)] = segments[at];
    }
    return match;
  }
  throw Problem("method-not-allowed",
                method + " cannot be done here; possible are " + Allowed(segments));
}

std::string Router::Allowed(const std::vector<std::string>& segments) const {
  const Path* path = FindPath(segments);
  if (path == nullptr) return "";
  std::string allowed;
  for (const HttpRoute& route : path->routes) {
    allowed += route.method + (route.method == "GET" ? ", HEAD, " : ", ");
  }
  return allowed + "OPTIONS";
}

}  // namespace controller
