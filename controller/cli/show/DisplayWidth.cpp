#include "controller/cli/show/DisplayWidth.h"

#include <clocale>
#include <cwchar>
#include <locale.h>

#include "controller/Utf8.h"

namespace controller::cli {

namespace {

constexpr const char* kEllipsis = "…";

/// The widths of the C library's own Unicode locale, whatever the user's is: what is written is
/// UTF-8 in any case. In effect for the calling thread as long as this lives.
class UnicodeScope {
 public:
  UnicodeScope() : before_(uselocale(Unicode())) {}
  ~UnicodeScope() { uselocale(before_); }
  UnicodeScope(const UnicodeScope&) = delete;
  UnicodeScope& operator=(const UnicodeScope&) = delete;

 private:
  static locale_t Unicode() {
    static const locale_t unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return unicode;  // null (there is none): `uselocale` then only looks
  }

  locale_t before_;
};

/// To be called where a `UnicodeScope` is.
std::size_t WidthOf(const Utf8Char& character) {
  if (character.valid && character.code < 0x7F) return 1;
  const int width = character.valid ? wcwidth(static_cast<wchar_t>(character.code)) : 1;
  // Unknown to the C library: most of what Unicode adds nowadays is as wide as an emoji, the rest
  // is shown as one box.
  if (width < 0) return character.code >= 0x1F000 ? 2 : 1;
  return static_cast<std::size_t>(width);
}

}  // namespace

std::size_t DisplayWidth(std::string_view text) {
  const UnicodeScope unicode;
  std::size_t width = 0;
  for (std::size_t position = 0; position < text.size();) {
    const Utf8Char character = DecodeUtf8(text, position);
    width += WidthOf(character);
    position += character.length;
  }
  return width;
}

std::string CutToWidth(std::string_view text, std::size_t columns) {
  if (DisplayWidth(text) <= columns) return std::string(text);
  if (columns == 0) return {};
  const UnicodeScope unicode;
  std::size_t width = 0;
  std::size_t position = 0;
  while (position < text.size()) {
    const Utf8Char character = DecodeUtf8(text, position);
    width += WidthOf(character);
    if (width > columns - 1) break;
    position += character.length;
  }
  return std::string(text.substr(0, position)) + kEllipsis;
}

std::string PadToWidth(std::string_view text, std::size_t columns) {
  const std::size_t width = DisplayWidth(text);
  std::string padded(text);
  if (width < columns) padded.append(columns - width, ' ');
  return padded;
}

}  // namespace controller::cli
