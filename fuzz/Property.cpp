#include "fuzz/Property.h"

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <iterator>
#include <limits>

#include "controller/Clock.h"

namespace fuzz {
namespace {

// Rules, not names: no update of the zone data moves them.
constexpr const char* kZones[] = {
    "UTC0",
    "EST5EDT,M3.2.0,M11.1.0",
    "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0",  // half an hour
    "<-03>3<-02>,M10.3.0/0,M2.3.0/0",        // changes at midnight
    "<+0545>-5:45",
    "<-12>12",
    "<+14>-14",
};

constexpr std::time_t kClocks[] = {
    1709719230,            // 2024-03-06 10:00:30 UTC
    1730613599,            // a second before the clocks go back in New York
    1708221600,            // the hour that comes twice before midnight
    1709190000,            // 29 February 2024
    2147397247,            // a day before the largest 32-bit time
    253402300799,          // the last second of the year 9999
    -2208988800,           // 1900
    std::time_t{1} << 60,  // no date
};

struct Site {
  double latitude;
  double longitude;
};

constexpr Site kSites[] = {
    {0, 0},      {48.2, 16.4},    {70, 20},
    {-66, -175}, {1e300, -1e300}, {std::numeric_limits<double>::quiet_NaN(), 0},
};

// FNV-1a: the same on every machine.
std::uint64_t Hash(std::string_view input) {
  std::uint64_t hash = 14695981039346656037U;
  for (const char c : input) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
  return hash;
}

}  // namespace

void Require(bool holds, std::string_view property) {
  if (holds) return;
  std::cerr << "does not hold: " << property << std::endl;
  std::abort();
}

void RequireEqual(std::string_view first, std::string_view second, std::string_view property) {
  if (first != second) std::cerr << "first:  " << first << "\nsecond: " << second << '\n';
  Require(first == second, property);
}

Surroundings::Surroundings(std::string_view input) {
  const std::uint64_t hash = Hash(input);
  setenv("TZ", kZones[hash % std::size(kZones)], 1);
  tzset();
  controller::Clock::Freeze(kClocks[(hash >> 16) % std::size(kClocks)]);
  const Site& site = kSites[(hash >> 32) % std::size(kSites)];
  latitude_ = site.latitude;
  longitude_ = site.longitude;
}

}  // namespace fuzz
