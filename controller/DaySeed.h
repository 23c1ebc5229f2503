#pragma once

#include <functional>
#include <string>
#include <utility>

namespace controller {

/// Seeds the C library's generator, from which drivers draw the random spread of a day's events,
/// such that a project draws the same numbers again when it is restarted on the same local day: an
/// event that has fired does not come up once more at a later minute, and one that is due is not
/// lost.
class DaySeed {
 public:
  /// `projectId` keeps two houses from drawing the same days.
  explicit DaySeed(std::string projectId);

  /// Seeds for today: before a day's list is drawn for the first time.
  void Seed();
  /// Seeds if the local date is another than at the last seeding: before each tick.
  void SeedOnNewDay();
  /// What `Seed` would seed with now.
  unsigned int ValueToday() const;
  /// Is told each value that was seeded.
  void SetOnSeed(std::function<void(unsigned int value)> onSeed) { onSeed_ = std::move(onSeed); }

 private:
  std::string projectId_;
  std::function<void(unsigned int value)> onSeed_;
  int seededFor_ = 0;
};

/// The seed of a day, `date` as YYYYMMDD.
unsigned int SeedOfDay(const std::string& projectId, int date);

}  // namespace controller
