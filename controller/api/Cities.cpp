#include "controller/api/Cities.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <tuple>
#include <vector>

#include "controller/Place.h"
#include "controller/api/JsonText.h"

namespace controller {

namespace fs = std::filesystem;

namespace {

struct City {
  std::string city;
  std::string zone;
  std::string country;
  Place place;
};

/// The columns of each line that is no comment, separated by tabs.
std::vector<std::vector<std::string>> ReadTable(const fs::path& file) {
  std::vector<std::vector<std::string>> lines;
  std::ifstream in(file);
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream columns(line);
    std::vector<std::string> read;
    for (std::string column; std::getline(columns, column, '\t');) read.push_back(column);
    lines.push_back(std::move(read));
  }
  return lines;
}

std::map<std::string, std::string> CountryNames(const ZoneFiles& files) {
  std::map<std::string, std::string> names;
  for (const auto& line : ReadTable(files.zoneinfo / "iso3166.tab")) {
    if (line.size() >= 2) names[line[0]] = line[1];
  }
  return names;
}

/// "America/Argentina/Buenos_Aires" is called "Buenos Aires".
std::string CityOfZone(const std::string& zone) {
  const std::size_t slash = zone.rfind('/');
  std::string city = slash == zone.npos ? zone : zone.substr(slash + 1);
  std::replace(city.begin(), city.end(), '_', ' ');
  return city;
}

std::vector<City> ReadCities(const ZoneFiles& files) {
  const auto countries = CountryNames(files);
  std::vector<City> cities;
  std::set<std::string> known;
  // The older table has a city for every country; the newer one may have more zones.
  for (const char* name : {"zone.tab", "zone1970.tab"}) {
    for (const auto& line : ReadTable(files.zoneinfo / name)) {
      if (line.size() < 3) continue;
      const auto place = ReadIso6709(line[1]);
      if (!place || !known.insert(line[2]).second) continue;
      const std::string code = line[0].substr(0, line[0].find(','));
      const auto country = countries.find(code);
      cities.push_back({CityOfZone(line[2]), line[2],
                        country == countries.end() ? code : country->second, *place});
    }
  }
  std::sort(cities.begin(), cities.end(), [](const City& a, const City& b) {
    return std::tie(a.city, a.zone) < std::tie(b.city, b.zone);
  });
  return cities;
}

void AppendCity(std::string& out, const City& city) {
  out += "{\"city\":";
  AppendJsonString(out, city.city);
  out += ",\"zone\":";
  AppendJsonString(out, city.zone);
  out += ",\"country\":";
  AppendJsonString(out, city.country);
  out += ",\"latitude\":" + DegreesText(city.place.latitude);
  out += ",\"longitude\":" + DegreesText(city.place.longitude) + '}';
}

}  // namespace

const std::string& Cities::Text() {
  if (!text_.empty()) return text_;
  text_ = "{\"cities\":";
  AppendJsonList(text_, ReadCities(files_), AppendCity);
  text_ += '}';
  return text_;
}

}  // namespace controller
