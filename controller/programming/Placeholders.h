#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "controller/programming/ActionRunner.h"

namespace controller {

/// What the value of a placeholder must not break out of.
enum class Escaping {
  kNone,
  /// Percent-encoded, for URLs and forms.
  kPercent,
  /// As inside a JSON string.
  kJson,
  /// As inside an XML text or attribute.
  kXml,
  /// On one line: what is left of control characters is a blank.
  kHeader,
};

/// The first placeholder of `text` that does not exist, "{day}"; nothing where all do. A
/// placeholder is a name in braces; a brace before anything else stands for itself, and "{{" for
/// one brace.
std::optional<std::string> UnknownPlaceholder(std::string_view text);
/// Whether `text` holds any placeholder.
bool HasPlaceholder(std::string_view text);

/// `text` with its placeholders replaced and every "{{" halved; what is replaced is not looked at
/// again.
std::string Replaced(std::string_view text, const std::map<std::string, std::string>& values,
                     Escaping escaping);

/// What the placeholders of an action on `trigger` stand for.
std::map<std::string, std::string> PlaceholderValues(const FiringFacts& facts, Trigger trigger);

/// How values are escaped in a body of this Content-Type; an empty one means JSON.
Escaping EscapingOfBody(std::string_view contentType);

}  // namespace controller
