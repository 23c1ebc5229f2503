#include "controller/XmlRepair.h"

#include <charconv>

#include "controller/Utf8.h"

namespace controller {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsXmlChar(char32_t code) {
  if (code == '\t' || code == '\n' || code == '\r') return true;
  return code >= 0x20 && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF) && code != 0xFFFE &&
         code != 0xFFFF;
}

/// The length of the reference `&#...;` at `position` if it is one that XML forbids, else 0.
std::size_t ForbiddenReference(std::string_view text, std::size_t position) {
  const std::string_view rest = text.substr(position);
  if (!rest.starts_with("&#")) return 0;
  const bool hex = rest.starts_with("&#x");
  const char* begin = rest.data() + (hex ? 3 : 2);
  const char* end = rest.data() + rest.size();
  unsigned long code = 0;
  const auto [stop, error] = std::from_chars(begin, end, code, hex ? 16 : 10);
  if (stop == begin || stop == end || *stop != ';') return 0;
  const bool fits = error == std::errc() && code <= 0x10FFFF;
  if (fits && IsXmlChar(static_cast<char32_t>(code))) return 0;
  return static_cast<std::size_t>(stop + 1 - rest.data());
}

}  // namespace

RepairedXml RepairXml(std::string_view text) {
  RepairedXml result;
  result.text.reserve(text.size());
  for (std::size_t position = 0; position < text.size();) {
    const Utf8Char character = DecodeUtf8(text, position);
    const std::size_t reference = ForbiddenReference(text, position);
    if (reference == 0 && character.valid && IsXmlChar(character.code)) {
      result.text += text.substr(position, character.length);
      position += character.length;
      continue;
    }
    AppendUtf8(result.text, kReplacement);
    ++result.replaced;
    position += reference == 0 ? character.length : reference;
  }
  return result;
}

}  // namespace controller
