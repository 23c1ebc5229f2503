#pragma once

#include <string>
#include <utility>
#include <vector>

#include "controller/cli/Json.h"

namespace controller::cli {

/// "Name: value" as the name and the value. Throws a `TextError`.
std::pair<std::string, std::string> ParseHeader(const std::string& option, const std::string& text);

/// "1.2001=on" as the API's "variable": {"device": 1, "variable": 2001, "value": "on"}. Throws a
/// `TextError`.
Json ParseVariable(const std::string& option, const std::string& text);

/// What `--catch-up` was given, as the API's "catch_up": "ignore", "always", or a length of time,
/// "10m". Throws a `TextError`.
Json ParseCatchUp(const std::string& option, const std::string& text);

/// The other way round: "ignore", "always", "10m".
std::string CatchUpText(const Json& catchUp);

}  // namespace controller::cli
