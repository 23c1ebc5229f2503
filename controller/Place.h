#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "controller/TimeZone.h"

namespace controller {

/// A point on the earth, in degrees, north and east positive.
struct Place {
  double latitude = 0;
  double longitude = 0;
};

/// Whether it is on the earth: both finite, the latitude within ±90, the longitude within ±180.
bool IsValid(const Place& place);

/// The shortest decimal text that reads back as the same number.
std::string DegreesText(double degrees);
/// The number that the whole text says; nothing where it is none.
std::optional<double> ReadDegrees(std::string_view text);
/// "52.5, 13.3667"
std::string PlaceText(const Place& place);

/// A place in the form of ISO 6709 that the zone table uses, `+5230+01322` or `+404251-0740023`.
std::optional<Place> ReadIso6709(std::string_view text);

/// The principal city of a time zone, from the zone table that comes with the zone data. A zone
/// with a second name is found by either. Nothing where the zone belongs to no city ("Etc/UTC"), or
/// is a rule, or the table is missing.
std::optional<Place> PlaceOfZone(const std::string& zone, const ZoneFiles& files = {});

/// The Royal Observatory: where the house is taken to be when nothing at all is known.
constexpr Place kGreenwich{51.4779, -0.0015};

}  // namespace controller
