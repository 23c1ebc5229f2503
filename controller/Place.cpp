#include "controller/Place.h"

#include <array>
#include <charconv>
#include <cmath>
#include <fstream>
#include <sstream>

namespace controller {

namespace fs = std::filesystem;

namespace {

/// `digits` is DDMM, DDMMSS, DDDMM or DDDMMSS; `degreeDigits` is 2 or 3.
std::optional<double> ReadAngle(std::string_view text, std::size_t degreeDigits) {
  if (text.empty() || (text[0] != '+' && text[0] != '-')) return std::nullopt;
  const std::string_view digits = text.substr(1);
  if (digits.size() != degreeDigits + 2 && digits.size() != degreeDigits + 4) return std::nullopt;
  if (digits.find_first_not_of("0123456789") != std::string_view::npos) return std::nullopt;
  const auto number = [&](std::size_t at, std::size_t count) {
    double value = 0;
    for (const char digit : digits.substr(at, count)) value = value * 10 + (digit - '0');
    return value;
  };
  const double seconds = digits.size() == degreeDigits + 4 ? number(degreeDigits + 2, 2) : 0;
  const double angle = number(0, degreeDigits) + number(degreeDigits, 2) / 60 + seconds / 3600;
  return text[0] == '-' ? -angle : angle;
}

/// A table's line: countries, coordinates, zone, comments, separated by tabs.
std::optional<Place> FindInTable(const fs::path& table, const std::string& zone) {
  std::ifstream in(table);
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with('#')) continue;
    std::istringstream columns(line);
    std::string countries;
    std::string coordinates;
    std::string name;
    std::getline(columns, countries, '\t');
    std::getline(columns, coordinates, '\t');
    std::getline(columns, name, '\t');
    if (name == zone) return ReadIso6709(coordinates);
  }
  return std::nullopt;
}

std::optional<Place> FindInTables(const ZoneFiles& files, const std::string& zone) {
  if (const auto place = FindInTable(files.zoneinfo / "zone1970.tab", zone)) return place;
  // The older table has a city for every country, also where several countries share a zone.
  return FindInTable(files.zoneinfo / "zone.tab", zone);
}

double RoundedToSixDigits(double degrees) { return std::round(degrees * 1e6) / 1e6; }

}  // namespace

bool IsValid(const Place& place) {
  return std::isfinite(place.latitude) && std::isfinite(place.longitude) &&
         std::fabs(place.latitude) <= 90 && std::fabs(place.longitude) <= 180;
}

std::string DegreesText(double degrees) {
  std::array<char, 64> text{};
  const auto result = std::to_chars(text.data(), text.data() + text.size(), degrees);
  return {text.data(), result.ptr};
}

std::optional<double> ReadDegrees(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  double value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec != std::errc() || result.ptr != text.data() + text.size()) return std::nullopt;
  return value;
}

std::string PlaceText(const Place& place) {
  return DegreesText(place.latitude) + ", " + DegreesText(place.longitude);
}

std::optional<Place> ReadIso6709(std::string_view text) {
  const auto split = text.find_first_of("+-", 1);
  if (text.empty() || split == std::string_view::npos) return std::nullopt;
  const auto latitude = ReadAngle(text.substr(0, split), 2);
  const auto longitude = ReadAngle(text.substr(split), 3);
  if (!latitude || !longitude) return std::nullopt;
  const Place place{RoundedToSixDigits(*latitude), RoundedToSixDigits(*longitude)};
  return IsValid(place) ? std::optional(place) : std::nullopt;
}

std::optional<Place> PlaceOfZone(const std::string& zone, const ZoneFiles& files) {
  if (zone.empty()) return std::nullopt;
  if (const auto place = FindInTables(files, zone)) return place;
  // An older or second name of a zone is a link to the one in the table.
  std::error_code error;
  const fs::path root = fs::canonical(files.zoneinfo, error);
  if (error) return std::nullopt;
  const fs::path file = fs::canonical(root / zone, error);
  if (error) return std::nullopt;
  return FindInTables(files, file.lexically_relative(root).string());
}

}  // namespace controller
