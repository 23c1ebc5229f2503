#pragma once

#include <string>

#include "controller/TimeZone.h"

namespace controller {

/// The cities of the zone table that comes with the zone data, for choosing a place by name.
class Cities {
 public:
  explicit Cities(ZoneFiles files = {}) : files_(std::move(files)) {}

  /// {"cities": [{"city", "zone", "country", "latitude", "longitude"}]} by name; read once. Where
  /// there is no table the list is empty.
  const std::string& Text();

 private:
  ZoneFiles files_;
  std::string text_;
};

}  // namespace controller
