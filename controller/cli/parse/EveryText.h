#pragma once

#include <string>

#include "controller/cli/Json.h"

namespace controller::cli {

/// What `--every` was given, as the API's "repeat" without its end: "day", "3 days", "week on mon",
/// "2 weeks on mon,fri", "weekday", "weekend", "month" (on the day of the start), "month on the 2nd
/// tue", "2 months on the last fri", "year", "year on the last sun"; a word "every" before it does
/// no harm. "once" is null. Throws a `TextError`.
Json ParseEvery(const std::string& option, const std::string& text);

/// The other way round, without the end: "2 weeks on mon,fri", "once".
std::string EveryText(const Json& repeat);

}  // namespace controller::cli
