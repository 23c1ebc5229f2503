#pragma once

#include <ctime>
#include <optional>
#include <string>

namespace controller {

/// The instant of an RFC 3339 text with an offset, "2026-11-21T16:04:00+01:00" or with Z; a
/// fraction of a second is left out. Nothing where the text has another form, or no such day or
/// time can be.
std::optional<std::time_t> ParseMoment(const std::string& text);

}  // namespace controller
