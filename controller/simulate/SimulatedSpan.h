#pragma once

#include <optional>
#include <string>

#include "controller/EventElement.h"

namespace controller {

/// The days that are simulated, both ends included.
struct SimulatedSpan {
  DayFields from;
  DayFields to;

  long Days() const;
};

/// The span of "2026-11-21" to "2026-11-30". What is left out: from today, for a week. Throws a
/// `Failure` where a text is no day, the days are in the wrong order, or lie more than ten years
/// apart.
SimulatedSpan ReadSpan(const std::optional<std::string>& from,
                       const std::optional<std::string>& to);

}  // namespace controller
