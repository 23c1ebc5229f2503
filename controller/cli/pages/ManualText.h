#pragma once

#include <string>
#include <string_view>

namespace controller::cli {

/// A text as it stands in a manual page: whatever roff would read as something else is escaped, and
/// characters beyond ASCII are named.
std::string RoffText(std::string_view text);

/// The text in lines of at most 78 characters, each sentence on a line of its own; with a line end.
std::string RoffLines(std::string_view text);

/// Bold, and italic.
std::string RoffBold(std::string_view text);
std::string RoffItalic(std::string_view text);

}  // namespace controller::cli
