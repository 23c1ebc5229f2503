#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace controller {

/// One character of a UTF-8 text.
struct Utf8Char {
  /// The code point; meaningless where `valid` is false.
  char32_t code = 0;
  /// How many bytes it takes, 1 to 4; 1 where the byte is no part of a valid character.
  std::size_t length = 1;
  bool valid = false;
};

/// The character that begins at `position`, which must lie inside `text`. Overlong forms,
/// surrogates and code points beyond U+10FFFF are not valid.
Utf8Char DecodeUtf8(std::string_view text, std::size_t position);

/// Whether nothing is to be seen of a code point: spaces of every width, fillers, joiners and marks
/// of direction (Unicode's White_Space and Default_Ignorable_Code_Point below U+10000, and the
/// blank of Braille).
bool IsInvisible(char32_t code);

/// Appends the UTF-8 form of a valid code point.
void AppendUtf8(std::string& out, char32_t code);

}  // namespace controller
