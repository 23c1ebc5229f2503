#pragma once

#include <string>

#include "controller/cli/Json.h"
#include "controller/cli/show/Terminal.h"

namespace controller::cli {

// An event as the API answers it, in words. What is odd about it is told, not thrown.

/// `event 7 "Porch"`, printable.
std::string EventName(const Json& event);
/// "sunset-30 ±10"
std::string EventTimeText(const Json& event);
/// "every 2 weeks on mon,fri until 2027-03-31", "once on 2026-11-20"
std::string EventRepeatText(const Json& event);
/// "Fri 2026-12-04 15:23", or "never".
std::string EventNextText(const Json& event);

/// What keeps the event from doing something, or how much it does: "disabled", "paused until
/// 2026-12-01", "skips the next", "2 actions". `programming` is the event's own summary, or the
/// whole of it.
std::string ProgrammingStateText(const Json& programming);
/// Whether it is disabled or paused: in lists these stand back.
bool IsAsleep(const Json& programming);

/// An action: "on push, after 5m, if time is night: run curl http://hub/".
std::string ActionWords(const Json& action);

}  // namespace controller::cli
