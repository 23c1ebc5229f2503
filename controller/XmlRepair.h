#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace controller {

/// A text that was made XML-proof.
struct RepairedXml {
  std::string text;
  /// How many characters had to be replaced; 0: the text is as it was.
  std::size_t replaced = 0;
};

/// Puts U+FFFD in the place of whatever no XML text can hold: bytes that are no UTF-8, control
/// characters but tab and line ends, U+FFFE and U+FFFF, and character references to any of these.
/// A description may hold such bytes when another driver made it; written into the persisted state
/// they would make the whole state unreadable. Mends nothing else: what is not well-formed stays
/// so.
RepairedXml RepairXml(std::string_view text);

}  // namespace controller
