#pragma once

#include <ctime>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace controller {

/// Appends a text as a JSON string, quotes included. What is no UTF-8 becomes U+FFFD, because an
/// answer has to be JSON whatever a name holds.
void AppendJsonString(std::string& out, std::string_view text);

/// Appends a moment, RFC 3339 with the zone's offset, as a JSON string; `null` where there is none.
void AppendJsonMoment(std::string& out, std::optional<std::time_t> moment);

/// Appends a list, each of its values by `append(out, value)`.
template <typename Values, typename Append>
void AppendJsonList(std::string& out, const Values& values, Append append) {
  out += '[';
  const char* comma = "";
  for (const auto& value : values) {
    out += comma;
    append(out, value);
    comma = ",";
  }
  out += ']';
}

/// A moment as a value.
nlohmann::ordered_json MomentJson(std::optional<std::time_t> moment);

/// A text with U+FFFD for each byte that is no UTF-8.
std::string ValidUtf8(std::string_view text);

/// The document as text, whatever its strings hold.
std::string JsonDump(const nlohmann::ordered_json& document);

}  // namespace controller
