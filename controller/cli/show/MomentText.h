#pragma once

#include <string>

namespace controller::cli {

/// A moment of the API, "2026-12-04T15:23:07+01:00", as it is in the house: "Fri 2026-12-04 15:23",
/// whatever zone this program runs in. A text of another form stays as it is.
std::string MomentText(const std::string& moment);

/// With the seconds: "Fri 2026-12-04 15:23:07".
std::string ExactMomentText(const std::string& moment);

/// "15:23:07"
std::string ExactTimeText(const std::string& moment);

/// A day, "Fri 2026-12-04".
std::string LongDayText(const std::string& day);

}  // namespace controller::cli
