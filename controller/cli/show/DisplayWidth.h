#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace controller::cli {

/// How many columns a printable text (see `Printable`) takes on a terminal: 2 for a wide character
/// of East Asia or an emoji, 0 for one that combines with the character before it.
std::size_t DisplayWidth(std::string_view text);

/// The text, or, where it is wider than `columns`, as much of its beginning as leaves room for an
/// ellipsis, with that behind it. Combining characters stay with theirs.
std::string CutToWidth(std::string_view text, std::size_t columns);

/// Blanks behind the text up to `columns`; a wider text stays as it is.
std::string PadToWidth(std::string_view text, std::size_t columns);

}  // namespace controller::cli
