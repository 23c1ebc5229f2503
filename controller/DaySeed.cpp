#include "controller/DaySeed.h"

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <utility>

namespace controller {

namespace {

int TodaysDate() {
  const std::time_t now = time(nullptr);
  tm fields{};
  if (localtime_r(&now, &fields) == nullptr) return 0;
  return (fields.tm_year + 1900) * 10000 + (fields.tm_mon + 1) * 100 + fields.tm_mday;
}

}  // namespace

DaySeed::DaySeed(std::string projectId) : projectId_(std::move(projectId)) {}

void DaySeed::Seed() {
  seededFor_ = TodaysDate();
  const unsigned int value = SeedOfDay(projectId_, seededFor_);
  std::srand(value);
  if (onSeed_) onSeed_(value);
}

unsigned int DaySeed::ValueToday() const { return SeedOfDay(projectId_, TodaysDate()); }

void DaySeed::SeedOnNewDay() {
  if (TodaysDate() != seededFor_) Seed();
}

unsigned int SeedOfDay(const std::string& projectId, int date) {
  // FNV-1a, so that days in succession have seeds far apart.
  std::uint32_t hash = 2166136261u;
  for (const char character : projectId + ':' + std::to_string(date)) {
    hash = (hash ^ static_cast<unsigned char>(character)) * 16777619u;
  }
  return hash;
}

}  // namespace controller
