#include "controller/programming/HookRequest.h"

#include <algorithm>

#include "controller/programming/HookRules.h"
#include "controller/programming/Placeholders.h"

namespace controller {

namespace {

constexpr const char* kContentType = "Content-Type";

// Without a port that goes without saying.
std::string HostAndPort(const UrlParts& parts) {
  const std::string port = parts.scheme == "https" ? ":443" : ":80";
  const std::string& host = parts.host;
  const bool isPlain =
      host.size() > port.size() && host.compare(host.size() - port.size(), port.size(), port) == 0;
  return isPlain ? host.substr(0, host.size() - port.size()) : host;
}

bool SameOrigin(const UrlParts& a, const UrlParts& b) {
  return a.scheme == b.scheme && HostAndPort(a) == HostAndPort(b);
}

bool TurnsIntoGet(const std::string& method, long status) {
  if (status == 303) return true;
  return (status == 301 || status == 302) && method == "POST";
}

}  // namespace

HookRequest MakeHookRequest(const HookAction& hook, const FiringFacts& facts, Trigger trigger) {
  const auto values = PlaceholderValues(facts, trigger);
  HookRequest request;
  request.method = hook.method;
  request.url = Replaced(hook.url, values, Escaping::kPercent);
  request.timeoutMilliseconds = hook.timeoutSeconds * 1000L;
  std::string contentType;
  for (const auto& [name, value] : hook.headers) {
    request.headers.emplace_back(name, Replaced(value, values, Escaping::kHeader));
    if (SameName(name, kContentType)) contentType = request.headers.back().second;
  }
  request.body = Replaced(hook.body, values, EscapingOfBody(contentType));
  if (!request.body.empty() && contentType.empty()) {
    request.headers.emplace_back(kContentType, "application/json");
  }
  return request;
}

std::optional<HookRequest> Redirected(const HookRequest& request, long status,
                                      const std::string& location) {
  const auto from = SplitUrl(request.url);
  const auto to = SplitUrl(location);
  if (!from || !to) return std::nullopt;
  const bool sameOrigin = SameOrigin(*from, *to);
  HookRequest next = request;
  const std::string user = sameOrigin && !from->user.empty() ? from->user + '@' : "";
  next.url = to->scheme + "://" + user + to->host + to->path + to->query;
  const bool toGet = TurnsIntoGet(request.method, status);
  if (toGet) {
    next.method = "GET";
    next.body.clear();
  }
  const auto isDropped = [&](const auto& header) {
    return SameName(header.first, kContentType) ? toGet : !sameOrigin;
  };
  next.headers.erase(std::remove_if(next.headers.begin(), next.headers.end(), isDropped),
                     next.headers.end());
  return next;
}

}  // namespace controller
