#include "controller/HousePlace.h"

#include "controller/Failure.h"
#include "controller/Printable.h"
#include "controller/TimeZone.h"

namespace controller {

namespace {

constexpr const char* kAdvice = "give --latitude and --longitude once, they are kept";

std::optional<Place> StoredPlace(ProjectStore& store) {
  const auto latitude = store.Setting("latitude");
  const auto longitude = store.Setting("longitude");
  if (!latitude && !longitude) return std::nullopt;
  const auto north = ReadDegrees(latitude.value_or(""));
  const auto east = ReadDegrees(longitude.value_or(""));
  if (north && east && IsValid({*north, *east})) return Place{*north, *east};
  throw Failure("the project keeps latitude " + Quoted(latitude.value_or("")) + " and longitude " +
                Quoted(longitude.value_or("")) + ", which is no place; " + kAdvice);
}

}  // namespace

HousePlace FindHousePlace(ProjectStore& store, const std::optional<Place>& given) {
  if (given) {
    store.SaveSettings(
        {{"latitude", DegreesText(given->latitude)}, {"longitude", DegreesText(given->longitude)}});
    return {*given, "as given, kept in the project"};
  }
  if (const auto stored = StoredPlace(store)) return {*stored, "kept in the project"};
  const std::string zone = TimeZoneName();
  if (const auto city = PlaceOfZone(zone)) {
    return {*city, "the principal city of the time zone " + Printable(zone, 200) + "; " + kAdvice,
            true};
  }
  const std::string which = zone.empty() ? "the time zone" : "the time zone " + Quoted(zone);
  return {kGreenwich,
          "Greenwich, because " + which +
              " belongs to no city; sunrise and sunset will be wrong elsewhere: " + kAdvice,
          true};
}

}  // namespace controller
