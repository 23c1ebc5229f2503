#pragma once

#include <functional>
#include <string>

namespace controller::cli {

/// Answers the date that it is in the house now, "2026-11-21".
using HouseToday = std::function<std::string()>;

/// A day as the API writes it, from "2026-11-21", "today", "tomorrow" or "yesterday"; `today` is
/// asked only where it is needed. Throws a `TextError`.
std::string ParseDay(const std::string& option, const std::string& text, const HouseToday& today);

/// The day that is `days` later; of a text that is no day itself.
std::string DaysLater(const std::string& day, long days);

/// "Mon" .. "Sun"; of a text that is no day the empty text.
std::string WeekdayOf(const std::string& day);

}  // namespace controller::cli
