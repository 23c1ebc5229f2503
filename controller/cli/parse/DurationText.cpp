#include "controller/cli/parse/DurationText.h"

#include <array>

#include "controller/Printable.h"
#include "controller/cli/parse/TextError.h"
#include "controller/cli/parse/TextParts.h"

namespace controller::cli {

namespace {

constexpr long kLongest = 3660 * kSecondsPerDay;

struct Unit {
  long seconds;
  std::array<std::string_view, 5> names;
};

constexpr std::array<Unit, 4> kUnits = {{
    {kSecondsPerDay, {"d", "day", "days", "", ""}},
    {kSecondsPerHour, {"h", "hour", "hours", "hr", ""}},
    {kSecondsPerMinute, {"m", "min", "mins", "minute", "minutes"}},
    {1, {"s", "sec", "secs", "second", "seconds"}},
}};

/// 0: no unit.
long UnitNamed(std::string_view name) {
  for (const Unit& unit : kUnits) {
    for (const std::string_view known : unit.names) {
      if (!known.empty() && known == name) return unit.seconds;
    }
  }
  return 0;
}

long UnitBelow(long unit) {
  for (const Unit& next : kUnits) {
    if (next.seconds < unit) return next.seconds;
  }
  return 0;
}

/// Takes the characters from `position` on that `belongs` says yes to, and the blanks behind them.
template <typename Belongs>
std::string_view TakeWhile(std::string_view text, std::size_t& position, Belongs belongs) {
  const std::size_t begin = position;
  while (position < text.size() && belongs(text[position])) ++position;
  const std::string_view taken = text.substr(begin, position - begin);
  while (position < text.size() && text[position] == ' ') ++position;
  return taken;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return c >= 'a' && c <= 'z'; }

/// "1:30"
std::optional<long> ReadHoursAndMinutes(std::string_view text) {
  const std::size_t colon = text.find(':');
  const auto hours = ReadNumber(text.substr(0, colon), kLongest / kSecondsPerHour);
  const auto minutes = ReadNumber(text.substr(colon + 1), 59);
  if (!hours || !minutes || text.size() - colon != 3) return std::nullopt;
  return *hours * kSecondsPerHour + *minutes * kSecondsPerMinute;
}

const char* UnitWord(long unit) { return unit == 1 ? "seconds" : "minutes"; }

}  // namespace

std::optional<long> ReadDuration(std::string_view text, long bareUnit) {
  if (text.find(':') != std::string_view::npos) return ReadHoursAndMinutes(text);
  const std::string lower = LowerCase(text);
  long total = 0;
  long last = 0;  // the unit before; 0: none yet
  for (std::size_t position = 0; position < lower.size() || last == 0;) {
    const auto number = ReadNumber(TakeWhile(lower, position, IsDigit), kLongest);
    const std::string_view name = TakeWhile(lower, position, IsLetter);
    long unit = UnitNamed(name);
    if (name.empty() && position == lower.size()) unit = last == 0 ? bareUnit : UnitBelow(last);
    if (!number || unit == 0 || (last != 0 && unit >= last)) return std::nullopt;
    if (*number > (kLongest - total) / unit) return std::nullopt;
    total += *number * unit;
    last = unit;
  }
  return total;
}

std::string MinutesText(long minutes) {
  if (minutes < 60) return std::to_string(minutes);
  const long rest = minutes % 60;
  const std::string hours = std::to_string(minutes / 60) + 'h';
  return rest == 0 ? hours : hours + std::to_string(rest);
}

std::string SecondsText(long seconds) {
  std::string text;
  long rest = seconds;
  for (const Unit& unit : kUnits) {
    const long count = rest / unit.seconds;
    rest %= unit.seconds;
    if (count > 0) text += std::to_string(count) + std::string(unit.names[0]);
  }
  return text.empty() ? "0s" : text;
}

long ParseDuration(const std::string& option, const std::string& text, long unit, long least,
                   long most) {
  const std::string range = "give " + std::to_string(least) + " to " + std::to_string(most) + ' ' +
                            UnitWord(unit) + ", " + (unit == 1 ? "90, 5m or 1h30m" : "10 or 1h30") +
                            " for example";
  const auto fail = [&](const std::string& problem) {
    throw TextError(option, text, 0, text.size(), problem + "; " + range);
  };
  const auto seconds = ReadDuration(text, unit);
  if (!seconds) fail("this is no length of time");
  if (*seconds % unit != 0) fail("this is no whole number of minutes");
  const long units = *seconds / unit;
  if (units < least) fail("this is too short");
  if (units > most) fail("this is too long");
  return units;
}

}  // namespace controller::cli
