#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

namespace controller {

/// "Name: value" as the name and the value. Throws a `TextError`.
std::pair<std::string, std::string> ParseHeader(const std::string& option, const std::string& text);

/// "1.2001=on" as the API's "variable": {"device": 1, "variable": 2001, "value": "on"}. Throws a
/// `TextError`.
nlohmann::ordered_json ParseVariable(const std::string& option, const std::string& text);

/// What `--catch-up` was given, as the API's "catch_up": "ignore", "always", or a length of time,
/// "10m". Throws a `TextError`.
nlohmann::ordered_json ParseCatchUp(const std::string& option, const std::string& text);

/// The other way round: "ignore", "always", "10m".
std::string CatchUpText(const nlohmann::json& catchUp);

}  // namespace controller
