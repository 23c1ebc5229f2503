#include "controller/cli/parse/TimeText.h"

#include <array>
#include <cstdio>

#include "controller/Printable.h"
#include "controller/cli/parse/DurationText.h"
#include "controller/cli/parse/TextParts.h"

namespace controller::cli {

namespace {

constexpr const char* kRight =
    "give a time of day (07:30, 7:30pm, noon), sunrise, sunset, or sunset-1h30 and its like";
constexpr long kMinutesPerDay = 1440;
// What an event may be away from midnight; from the sun it is a day.
constexpr long kEarliest = -kMinutesPerDay;
constexpr long kLatest = 2 * kMinutesPerDay;

struct Base {
  std::string_view word;
  const char* base;
  long minutes;
};

constexpr std::array<Base, 4> kBases = {{{"sunrise", "sunrise", 0},
                                         {"sunset", "sunset", 0},
                                         {"noon", "clock", 720},
                                         {"midnight", "clock", 0}}};

const Base* FindBase(std::string_view word) {
  for (const Base& base : kBases) {
    if (base.word == word) return &base;
  }
  return nullptr;
}

/// 0 to 23, from the hour of a clock with two halves.
std::optional<long> FullHour(long hour, bool afternoon) {
  if (hour < 1 || hour > 12) return std::nullopt;
  return hour % 12 + (afternoon ? 12 : 0);
}

/// The `--at` text in its pieces; positions are of the whole text.
struct AtPieces {
  std::string word;
  std::size_t wordBegin = 0;
  char sign = 0;
  std::string_view offset;
  std::size_t offsetBegin = 0;
};

std::string_view WithoutBlanks(std::string_view text, std::size_t& begin) {
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  while (!text.empty() && text.front() == ' ') {
    text.remove_prefix(1);
    ++begin;
  }
  return text;
}

AtPieces Cut(std::string_view text) {
  AtPieces pieces;
  const std::size_t sign = text.find_first_of("+-");
  pieces.word = LowerCase(WithoutBlanks(text.substr(0, sign), pieces.wordBegin));
  if (sign == std::string_view::npos) return pieces;
  pieces.sign = text[sign];
  pieces.offsetBegin = sign + 1;
  pieces.offset = WithoutBlanks(text.substr(sign + 1), pieces.offsetBegin);
  return pieces;
}

long ReadOffset(const TextParts& parts, const AtPieces& pieces) {
  const std::size_t begin = pieces.offsetBegin;
  const std::size_t length = pieces.offset.size();
  if (length == 0) parts.FailAt(begin, 0, "a length of time is missing; give 15 or 1h30");
  const auto seconds = ReadDuration(pieces.offset, kSecondsPerMinute);
  if (!seconds || *seconds % kSecondsPerMinute != 0) {
    parts.FailAt(begin, length,
                 Quoted(pieces.offset) + " is no number of minutes; give 15 or 1h30");
  }
  const long minutes = *seconds / kSecondsPerMinute;
  return pieces.sign == '-' ? -minutes : minutes;
}

void CheckRange(const TextParts& parts, const AtPieces& pieces, const Base& base, long minutes) {
  const bool clock = base.base == std::string_view("clock");
  const long latest = clock ? kLatest : kMinutesPerDay;
  if (minutes >= kEarliest && minutes <= latest) return;
  parts.FailAt(pieces.offsetBegin, pieces.offset.size(),
               Quoted(pieces.offset) + " leads too far; give at most " +
                   (clock ? "24h before and 48h after midnight" : "24h"));
}

Json Time(const char* base, long minutes) { return {{"base", base}, {"minutes", minutes}}; }

}  // namespace

std::optional<int> ReadTimeOfDay(std::string_view text) {
  std::string rest = LowerCase(text);
  if (rest == "noon") return 720;
  if (rest == "midnight") return 0;
  bool halves = false;
  bool afternoon = false;
  for (const std::string_view half : {"am", "pm"}) {
    if (!rest.ends_with(half)) continue;
    halves = true;
    afternoon = half == "pm";
    rest.resize(rest.size() - half.size());
    while (!rest.empty() && rest.back() == ' ') rest.pop_back();
    break;
  }
  const std::size_t colon = rest.find(':');
  if (colon == std::string::npos && !halves) return std::nullopt;
  if (colon != std::string::npos && rest.size() - colon != 3) return std::nullopt;
  if (rest.substr(0, colon).size() > 2) return std::nullopt;
  auto hour = ReadNumber(std::string_view(rest).substr(0, colon), 23);
  const auto minute = colon == std::string::npos
                          ? std::optional<long>(0)
                          : ReadNumber(std::string_view(rest).substr(colon + 1), 59);
  if (hour && halves) hour = FullHour(*hour, afternoon);
  if (!hour || !minute) return std::nullopt;
  return static_cast<int>(*hour * 60 + *minute);
}

std::string TimeOfDayText(long minutes) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%02d:%02d", static_cast<int>(minutes / 60 % 100),
                static_cast<int>(minutes % 60));
  return text.data();
}

Json ParseAt(const std::string& option, const std::string& text) {
  const TextParts parts(option, text);
  const AtPieces pieces = Cut(text);
  if (pieces.word.empty()) {
    parts.FailAt(pieces.wordBegin, 0, std::string("a time is missing; ") + kRight);
  }
  if (const Base* base = FindBase(pieces.word)) {
    const long minutes = base->minutes + (pieces.sign == 0 ? 0 : ReadOffset(parts, pieces));
    CheckRange(parts, pieces, *base, minutes);
    return Time(base->base, minutes);
  }
  const auto minutes = ReadTimeOfDay(pieces.word);
  if (!minutes) {
    parts.FailAt(
        pieces.wordBegin, pieces.word.size(),
        Quoted(text.substr(pieces.wordBegin, pieces.word.size())) + " is no time; " + kRight);
  }
  if (pieces.sign != 0) {
    parts.FailAt(pieces.offsetBegin - 1, text.size() - pieces.offsetBegin + 1,
                 "nothing is added to a time of day; give the time that is meant");
  }
  return Time("clock", *minutes);
}

std::string AtText(const Json& time) {
  const std::string base = TextField(time, "base", "?");
  const long minutes = NumberField(time, "minutes");
  if (base == "clock" && minutes >= 0 && minutes < kMinutesPerDay) return TimeOfDayText(minutes);
  const std::string word = base == "clock" ? "midnight" : Printable(base);
  if (minutes == 0) return word;
  return word + (minutes < 0 ? '-' : '+') + MinutesText(minutes < 0 ? -minutes : minutes);
}

}  // namespace controller::cli
