#include "controller/Utf8.h"

#include <algorithm>
#include <iterator>

namespace controller {

namespace {

/// The length that a first byte announces, 0 where no character begins with it.
std::size_t AnnouncedLength(unsigned char first) {
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return 2;
  if (first >= 0xE0 && first <= 0xEF) return 3;
  if (first >= 0xF0 && first <= 0xF4) return 4;
  return 0;
}

bool IsScalar(char32_t code, std::size_t length) {
  static constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  return code >= kSmallest[length] && code <= 0x10FFFF && !surrogate;
}

}  // namespace

Utf8Char DecodeUtf8(std::string_view text, std::size_t position) {
  const auto first = static_cast<unsigned char>(text[position]);
  const std::size_t length = AnnouncedLength(first);
  if (length == 0 || length > text.size() - position) return {};
  if (length == 1) return {first, 1, true};
  char32_t code = first & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(text[position + i]);
    if ((next & 0xC0u) != 0x80) return {};
    code = (code << 6) | (next & 0x3Fu);
  }
  if (!IsScalar(code, length)) return {};
  return {code, length, true};
}

bool IsInvisible(char32_t code) {
  struct Span {
    char32_t first;
    char32_t last;
  };
  static constexpr Span kSpans[] = {
      {0x00, 0x20},     {0x7F, 0xA0},     {0xAD, 0xAD},     {0x34F, 0x34F},   {0x61C, 0x61C},
      {0x115F, 0x1160}, {0x1680, 0x1680}, {0x17B4, 0x17B5}, {0x180B, 0x180F}, {0x2000, 0x200F},
      {0x2028, 0x202F}, {0x205F, 0x206F}, {0x2800, 0x2800}, {0x3000, 0x3000}, {0x3164, 0x3164},
      {0xFE00, 0xFE0F}, {0xFEFF, 0xFEFF}, {0xFFA0, 0xFFA0}, {0xFFF0, 0xFFF8}};
  return std::any_of(std::begin(kSpans), std::end(kSpans),
                     [code](const Span& span) { return code >= span.first && code <= span.last; });
}

void AppendUtf8(std::string& out, char32_t code) {
  const auto tail = [&](int shift) { out += static_cast<char>(0x80u | ((code >> shift) & 0x3Fu)); };
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0u | (code >> 6));
    tail(0);
  } else if (code < 0x10000) {
    out += static_cast<char>(0xE0u | (code >> 12));
    tail(6);
    tail(0);
  } else {
    out += static_cast<char>(0xF0u | (code >> 18));
    tail(12);
    tail(6);
    tail(0);
  }
}

}  // namespace controller
