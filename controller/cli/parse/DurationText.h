#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace controller::cli {

constexpr long kSecondsPerMinute = 60;
constexpr long kSecondsPerHour = 3600;
constexpr long kSecondsPerDay = 86400;

/// A length of time in seconds: numbers with units from the greatest to the smallest, "1h30m",
/// "90 s", "2 days", "1 hour 30 minutes", or "1:30" (hours and minutes). A last number without a
/// unit counts the unit below the one before it ("1h30"); alone it counts `bareUnit` seconds.
/// Nothing where it is none of these, or longer than ten years.
std::optional<long> ReadDuration(std::string_view text, long bareUnit);

/// Minutes as `ReadDuration` reads them: "15", "1h30", "26h".
std::string MinutesText(long minutes);

/// Seconds likewise, always with units: "90s", "5m", "1h30m", "0s".
std::string SecondsText(long seconds);

/// What `--delay`, `--spread` or `--timeout` was given. Throws a `TextError` where it is no length
/// of time, not a whole number of `unit` (seconds: 1, minutes: 60), or not `least` to `most` units.
long ParseDuration(const std::string& option, const std::string& text, long unit, long least,
                   long most);

}  // namespace controller::cli
