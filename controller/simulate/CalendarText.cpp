#include "controller/simulate/CalendarText.h"

#include <array>

#include "controller/Utf8.h"

namespace controller {

namespace {

constexpr std::size_t kMostOctets = 75;
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

bool IsControl(char32_t code) { return (code < 0x20 && code != '\t') || code == 0x7F; }

}  // namespace

std::string CalendarLine(std::string_view name, std::string_view value) {
  const std::string whole = std::string(name) + ':' + std::string(value);
  std::string out;
  std::size_t octets = 0;
  for (std::size_t at = 0; at < whole.size();) {
    const std::size_t length = DecodeUtf8(whole, at).length;
    if (octets + length > kMostOctets) {
      out += "\r\n ";
      octets = 1;
    }
    out.append(whole, at, length);
    octets += length;
    at += length;
  }
  return out + "\r\n";
}

std::string CalendarValue(std::string_view text) {
  std::string out;
  for (std::size_t at = 0; at < text.size();) {
    const Utf8Char character = DecodeUtf8(text, at);
    const std::string_view bytes = text.substr(at, character.length);
    at += character.length;
    if (character.valid && character.code == '\n') {
      out += "\\n";
    } else if (!character.valid || IsControl(character.code)) {
      out += kReplacement;
    } else {
      if (bytes == "\\" || bytes == ";" || bytes == ",") out += '\\';
      out += bytes;
    }
  }
  return out;
}

std::string CalendarMoment(std::time_t moment) {
  std::tm fields{};
  std::array<char, 32> text{};
  if (gmtime_r(&moment, &fields) == nullptr) return "";
  std::strftime(text.data(), text.size(), "%Y%m%dT%H%M%SZ", &fields);
  return text.data();
}

}  // namespace controller
