#pragma once

#include <string>

#include "controller/cli/Json.h"

namespace controller::cli {

/// What `--if` was given, as the API's condition: "time between 22:00 and 02:00", "time is night",
/// "within 30 minutes before sunset", "weekday in sat,sun", "day is 1", "date after 2026-12-24",
/// "month between 11 and 2", "year eq 2027", "leap". A comparison is one of eq ne gt ge lt le, its
/// sign (= != > >= < <=) or a word (is, is not, in, not in, after, before, from, until). Throws a
/// `TextError`. `what` is the option, or what else errors are to call the text.
Json ParseCondition(const std::string& what, const std::string& text);

/// The other way round: "time between 22:00 and 02:00".
std::string ConditionWords(const Json& condition);

}  // namespace controller::cli
