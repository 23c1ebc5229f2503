#include "controller/api/Moments.h"

#include <cctype>
#include <string_view>

#include "controller/LocalTimeText.h"
#include "controller/json/ObjectReader.h"

namespace controller {

namespace {

/// Whether `text` begins with `form`: 0 is a digit, all else itself, letters in either case.
bool BeginsAs(std::string_view text, std::string_view form) {
  if (text.size() < form.size()) return false;
  for (std::size_t i = 0; i < form.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (form[i] == '0' ? std::isdigit(byte) == 0 : std::toupper(byte) != form[i]) return false;
  }
  return true;
}

int Number(std::string_view text) {
  int number = 0;
  for (const char digit : text) number = number * 10 + (digit - '0');
  return number;
}

/// Seconds east of UTC of "Z" or "+01:00".
std::optional<long> ReadOffset(std::string_view text) {
  if (text == "Z" || text == "z") return 0;
  if (text.size() != 6 || (text[0] != '+' && text[0] != '-')) return std::nullopt;
  if (!BeginsAs(text.substr(1), "00:00")) return std::nullopt;
  const int hours = Number(text.substr(1, 2));
  const int minutes = Number(text.substr(4, 2));
  if (hours > 23 || minutes > 59) return std::nullopt;
  const long seconds = hours * 3600L + minutes * 60L;
  return text[0] == '-' ? -seconds : seconds;
}

}  // namespace

std::optional<std::time_t> ParseMoment(const std::string& text) {
  constexpr std::string_view kForm = "0000-00-00T00:00:00";
  if (!BeginsAs(text, kForm)) return std::nullopt;
  std::string_view rest = std::string_view(text).substr(kForm.size());
  if (BeginsAs(rest, ".0")) {
    const std::size_t end = rest.find_first_not_of("0123456789", 1);
    if (end == rest.npos) return std::nullopt;
    rest.remove_prefix(end);
  }
  const auto offset = ReadOffset(rest);
  const auto day = ReadDay(text.substr(0, 10));
  const std::string_view time = std::string_view(text).substr(11, 8);
  const int hour = Number(time.substr(0, 2));
  const int minute = Number(time.substr(3, 2));
  const int second = Number(time.substr(6, 2));
  if (!offset || !day || hour > 23 || minute > 59 || second > 60) return std::nullopt;
  return DaysBetween({1970, 1, 1}, *day) * 86400 + hour * 3600L + minute * 60L + second - *offset;
}

}  // namespace controller
