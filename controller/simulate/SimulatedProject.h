#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

#include "controller/HousePlace.h"
#include "controller/simulate/Simulation.h"

namespace controller {

/// A project as it is simulated, and what there is to tell about it.
struct SimulatedProject {
  SimulatedHouse house;
  std::string name;
  HousePlace place;
  std::size_t events = 0;
};

/// Reads a project, which may be in use and stays as it is. `place` takes the place of its own.
/// Throws a `Failure`.
SimulatedProject ReadSimulatedProject(const std::filesystem::path& file,
                                      const std::optional<Place>& place);

}  // namespace controller
