#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "controller/programming/ActionRunner.h"

namespace controller {

/// A web hook as it is sent, its placeholders replaced.
struct HookRequest {
  std::string method;
  std::string url;
  /// The writer's headers, each on one line, and a Content-Type where there is a body.
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;
  /// For the whole of one attempt, redirects included.
  long timeoutMilliseconds = 0;
};

HookRequest MakeHookRequest(const HookAction& hook, const FiringFacts& facts, Trigger trigger);

/// The request with which a redirect goes on, as browsers do it, or nothing where `location` (an
/// absolute URL) is neither http nor https. Another host gets no header of the writer's, nor user
/// and password.
std::optional<HookRequest> Redirected(const HookRequest& request, long status,
                                      const std::string& location);

}  // namespace controller
