#pragma once

#include <ctime>
#include <string>
#include <string_view>

namespace controller {

/// The content lines of an iCalendar stream (RFC 5545).

/// "NAME:value" and its line end, folded to lines of at most 75 octets, no character divided. The
/// value stands as it is.
std::string CalendarLine(std::string_view name, std::string_view value);

/// A value of type TEXT: backslash, semicolon, comma and line ends escaped; what no calendar may
/// hold (control characters, bytes that are no UTF-8) as U+FFFD.
std::string CalendarValue(std::string_view text);

/// "20261121T150400Z"
std::string CalendarMoment(std::time_t moment);

}  // namespace controller
