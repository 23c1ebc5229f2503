#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace controller {

/// The text as it may stand in a log line or on a terminal: on one line, and with nothing in it
/// that a terminal would obey or that would disguise the rest. Control characters (C0, DEL, C1),
/// line and paragraph separators, marks that turn the direction of writing, and bytes that are no
/// UTF-8 are written as escapes (`\n`, `\x1b`, `\u202e`); all else stands as it is, a backslash
/// too, so that a text that has been through here once comes out unchanged. Beyond `limit` bytes of
/// result the text is cut, and "... (N bytes)" tells how long it was.
std::string Printable(std::string_view text, std::size_t limit = 8192);

/// A name for a message: `Printable` in double quotes, cut after 200 bytes.
std::string Quoted(std::string_view text);

}  // namespace controller
