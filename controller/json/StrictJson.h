#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <variant>

namespace controller {

/// What a text from outside may cost.
struct JsonLimits {
  std::size_t bytes = 1UL << 20;
  /// How many arrays and objects may stand in each other.
  std::size_t depth = 16;
};

/// Why a text is no JSON document: what, and where in the text.
struct JsonFault {
  std::string text;
};

/// Parses a whole text. Refuses what parsers are free to let pass: a key that stands twice in one
/// object, bytes that are no UTF-8, numbers that no double holds, anything behind the document, and
/// what is beyond the limits.
std::variant<nlohmann::json, JsonFault> ParseStrictJson(std::string_view text,
                                                        const JsonLimits& limits = {});

}  // namespace controller
