#include <gtest/gtest.h>

#include "controller/LocalTimeText.h"
#include "controller/firing/DayListing.h"

namespace controller {
namespace {

/// The time zone for as long as it lives.
class Zone {
 public:
  explicit Zone(const char* rule) {
    const char* before = std::getenv("TZ");
    if (before != nullptr) before_ = before;
    ::setenv("TZ", rule, 1);
    ::tzset();
  }
  ~Zone() {
    before_ ? ::setenv("TZ", before_->c_str(), 1) : ::unsetenv("TZ");
    ::tzset();
  }

 private:
  std::optional<std::string> before_;
};

constexpr const char* kNewYork = "EST5EDT,M3.2.0,M11.1.0";
constexpr DayFields kDay{2024, 3, 6};

TEST(DrawnMinutes, LeadFromThePlannedTimeToTheTimeThatWasSaid) {
  const Zone zone("UTC0");
  const struct {
    const char* why;
    int plannedHour, plannedMinute;
    long spread;
    int hour, minute;
    std::optional<long> drawn;
  } rows[] = {
      {"nothing drawn", 7, 0, 0, 7, 0, 0},
      {"later", 7, 0, 10, 7, 10, 10},
      {"earlier", 7, 0, 10, 6, 50, -10},
      {"more than there can be", 7, 0, 9, 7, 10, std::nullopt},
      {"over midnight", 23, 58, 10, 0, 3, 5},
      {"before midnight", 0, 2, 10, 23, 57, -5},
      {"of two the nearer", 12, 0, 1000, 13, 0, 60},
  };
  for (const auto& row : rows) {
    const std::time_t planned = LocalInstant(kDay, row.plannedHour, row.plannedMinute);
    EXPECT_EQ(DrawnMinutes(planned, row.spread, row.hour, row.minute), row.drawn) << row.why;
  }
}

TEST(DrawnMinutes, GoOverTheChangeOfTheClocks) {
  const Zone zone(kNewYork);
  const std::time_t before = LocalInstant({2024, 3, 10}, 1, 50);
  EXPECT_EQ(DrawnMinutes(before, 30, 3, 5), 15) << "an hour is left out";
  const std::time_t beforeAutumn = LocalInstant({2024, 11, 3}, 0, 50);
  EXPECT_EQ(DrawnMinutes(beforeAutumn, 120, 1, 20), 30) << "of the two 1:20 the nearer";
}

TEST(PlannedInstant, OfAClockTimeIsWhatTheEventSays) {
  const Zone zone(kNewYork);
  EventElement event;
  event.offset_minutes = 1500;
  EXPECT_EQ(PlannedInstant(event, kDay, 1, 0), LocalInstant({2024, 3, 7}, 1, 0));
  event.offset_minutes = -30;
  EXPECT_EQ(PlannedInstant(event, kDay, 23, 30), LocalInstant({2024, 3, 5}, 23, 30));
  event.offset_minutes = 450;
  EXPECT_EQ(PlannedInstant(event, {2024, 3, 10}, 8, 30), LocalInstant({2024, 3, 10}, 7, 30))
      << "minutes are those of the clock, not those that have passed";
}

TEST(PlannedInstant, OfASunTimeIsOfTheDayThatFits) {
  const Zone zone("UTC0");
  const struct {
    const char* why;
    OffsetBase base;
    int minutes, hour, minute;
    DayFields day;
  } rows[] = {
      {"sunset", OffsetBase::kSunset, 0, 17, 40, kDay},
      {"long after sunset", OffsetBase::kSunset, 480, 1, 40, {2024, 3, 7}},
      {"long before sunrise", OffsetBase::kSunrise, -480, 22, 20, {2024, 3, 5}},
      {"a day before sunrise", OffsetBase::kSunrise, -1440, 6, 20, {2024, 3, 5}},
      {"an early sunrise", OffsetBase::kSunrise, 0, 2, 10, kDay},
      {"a late sunset", OffsetBase::kSunset, 0, 23, 50, kDay},
  };
  for (const auto& row : rows) {
    EventElement event;
    event.offset = static_cast<int>(row.base);
    event.offset_minutes = row.minutes;
    EXPECT_EQ(PlannedInstant(event, kDay, row.hour, row.minute),
              LocalInstant(row.day, row.hour, row.minute))
        << row.why;
  }
}

}  // namespace
}  // namespace controller
