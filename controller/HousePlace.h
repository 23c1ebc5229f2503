#pragma once

#include <optional>
#include <string>

#include "controller/Place.h"
#include "controller/ProjectStore.h"

namespace controller {

/// Where the house is, and how that is known.
struct HousePlace {
  Place place;
  /// A sentence for the log, with what to do where the place is only a guess.
  std::string origin;
  bool guessed = false;
};

/// The place that was given, which is kept in the project from then on; else the one that the
/// project keeps; else the principal city of the time zone; else Greenwich. Throws a `Failure`
/// where what the project keeps is no place.
HousePlace FindHousePlace(ProjectStore& store, const std::optional<Place>& given);

}  // namespace controller
