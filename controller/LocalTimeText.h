#pragma once

#include <ctime>
#include <optional>
#include <string>

namespace controller {

/// The instant of "YYYY-MM-DDTHH:MM:SS", local time; nothing where the text has another form or no
/// such day or time can be. A time that occurs twice, because the clocks were set back, means the
/// first of the two; one in the gap of a clock change is what `mktime` makes of it.
std::optional<std::time_t> ParseLocalTime(const std::string& text);

}  // namespace controller
