#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "controller/cli/parse/TextParts.h"

namespace controller::cli {

/// As the API writes them; 0 is Sunday.
constexpr std::array<const char*, 7> kWeekdays = {"sun", "mon", "tue", "wed", "thu", "fri", "sat"};

/// "sun", "Sunday", "sundays", ...
std::optional<int> ReadWeekday(std::string_view lowerCase);

/// Takes one weekday. Throws a `TextError`.
int TakeWeekday(TextParts& parts);

/// Takes weekdays with commas, blanks or "and" between them; "mon-fri", "weekdays" and "weekend"
/// stand for several. Each is there once, in the order of the week. Throws a `TextError`.
std::vector<int> TakeWeekdays(TextParts& parts);

/// Takes the comma or "and" between two parts of a list, if there is one.
bool TakeSeparator(TextParts& parts);

}  // namespace controller::cli
