#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace controller {

/// The text that a percent-encoded one stands for; with `plusIsSpace`, as forms encode, "+" stands
/// for a space. Nothing where a "%" is not followed by two hexadecimal digits, or where the result
/// is no UTF-8 or holds a control character.
std::optional<std::string> PercentDecoded(std::string_view text, bool plusIsSpace = false);

/// The segments of a path, "/a/b%20c" gives "a" and "b c"; "/" gives one empty one. Nothing where
/// it does not begin with "/" or a segment cannot be decoded.
std::optional<std::vector<std::string>> PathSegments(std::string_view path);

using QueryFields = std::vector<std::pair<std::string, std::string>>;
/// The fields of a query, "a=1&b=2", in their order; one without "=" has the empty value. Nothing
/// where one cannot be decoded.
std::optional<QueryFields> ParseQuery(std::string_view query);

/// ASCII letters in lower case, all else as it is.
std::string LowerCase(std::string_view text);
/// Without spaces and tabs at both ends.
std::string_view WithoutBlanks(std::string_view text);

}  // namespace controller
