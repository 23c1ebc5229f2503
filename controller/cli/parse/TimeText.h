#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "controller/cli/Json.h"

namespace controller::cli {

/// A time of day, "7:30", "07:30", "7:30pm", "7pm", "noon" or "midnight", in minutes after
/// midnight; nothing where it is none.
std::optional<int> ReadTimeOfDay(std::string_view text);

/// "07:30"
std::string TimeOfDayText(long minutes);

/// What `--at` was given, as the API's "time" without its random part: a time of day, "sunrise",
/// "sunset", or one of these, noon and midnight with a length of time added or taken away,
/// "sunset-1h30". Throws a `TextError`.
Json ParseAt(const std::string& option, const std::string& text);

/// The other way round, of what the controller answers: "07:30", "sunset-1h30", "midnight+26h".
std::string AtText(const Json& time);

}  // namespace controller::cli
