#include "controller/Printable.h"

#include <array>
#include <cstdio>

#include "controller/Utf8.h"

namespace controller {

namespace {

bool IsUnprintable(char32_t code) {
  if (code < 0x20 || (code >= 0x7F && code <= 0x9F)) return true;
  if (code >= 0x200E && code <= 0x200F) return true;  // marks of the direction of writing
  if (code >= 0x2028 && code <= 0x202E) return true;  // separators, embeddings and overrides
  return (code >= 0x2066 && code <= 0x2069) || code == 0x061C || code == 0xFEFF;
}

std::string Escape(char32_t code) {
  switch (code) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      break;
  }
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), code < 0x100 ? "\\x%02x" : "\\u%04x",
                static_cast<unsigned>(code));
  return text.data();
}

/// What stands for the character that begins at `position`.
std::string Shown(std::string_view text, std::size_t position, const Utf8Char& character) {
  if (!character.valid) return Escape(static_cast<unsigned char>(text[position]));
  if (IsUnprintable(character.code)) return Escape(character.code);
  return std::string(text.substr(position, character.length));
}

}  // namespace

std::string Printable(std::string_view text, std::size_t limit) {
  std::string out;
  for (std::size_t position = 0; position < text.size();) {
    const Utf8Char character = DecodeUtf8(text, position);
    const std::string shown = Shown(text, position, character);
    if (out.size() + shown.size() > limit) {
      return out + "... (" + std::to_string(text.size()) + " bytes)";
    }
    out += shown;
    position += character.length;
  }
  return out;
}

std::string Quoted(std::string_view text) { return '"' + Printable(text, 200) + '"'; }

}  // namespace controller
