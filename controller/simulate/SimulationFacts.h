#pragma once

#include <optional>
#include <string>

#include "controller/simulate/SimulatedProject.h"
#include "controller/simulate/SimulatedSpan.h"

namespace controller {

/// What a report says before all else.
struct SimulationFacts {
  const SimulatedProject& project;
  SimulatedSpan span;
  /// "Europe/Berlin", or what stands for it; may be empty.
  std::string zone;
  /// Only this one is told about.
  std::optional<unsigned long> event;
};

}  // namespace controller
