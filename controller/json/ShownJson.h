#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace controller {

/// A value as a message quotes it: a text in double quotes and printable, a number as JSON writes
/// it, of a list or an object only what it is.
std::string ShownJson(const nlohmann::json& value);

/// A name as one step of a JSON pointer (RFC 6901): "~" and "/" escaped, no slash before it.
std::string PointerStep(const std::string& name);

}  // namespace controller
