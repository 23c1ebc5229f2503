// Local times that occur twice, and those that never do.

#include <array>
#include <ctime>
#include <gtest/gtest.h>
#include <random>

#include "tests/support/TestClock.h"
#include "tests/vexalink_agent_scheduler/Zones.h"
#include "vexalink_agent_scheduler/vxw/VxTime.h"

namespace {

struct Fields {
  int year, month, day, hour, minute, second;
};

VxTime Make(const Fields& f) {
  return VxTime(f.year, f.month, f.day, f.hour, f.minute, f.second, -1);
}

// Conversions after which the C library's own answer for a time that occurs twice may differ.
void Remember(std::time_t instant, int isdst) {
  std::tm local = *std::localtime(&instant);
  local.tm_isdst = isdst;
  std::mktime(&local);
}

TEST(TwiceOccurringTime, MeansTheFirstWhateverWasConvertedBefore) {
  const struct {
    const char* why;
    const char* zone;
    Fields local;
    std::time_t first;  // worked out from UTC by hand
  } rows[] = {
      {"New York: 01:30 EDT is 05:30 UTC", zones::kNewYork, {2024, 11, 3, 1, 30, 0}, 1730611800},
      {"its first second", zones::kNewYork, {2024, 11, 3, 1, 0, 0}, 1730610000},
      {"its last second", zones::kNewYork, {2024, 11, 3, 1, 59, 59}, 1730613599},
      {"Lord Howe: 01:45 at +11 is 14:45 UTC the day before",
       zones::kLordHowe,
       {2024, 4, 7, 1, 45, 0},
       1712414700},
      {"its first second", zones::kLordHowe, {2024, 4, 7, 1, 30, 0}, 1712413800},
      {"two hours: 01:30 at +02 is 23:30 UTC the day before",
       zones::kTroll,
       {2024, 10, 27, 1, 30, 0},
       1729985400},
      {"its last second", zones::kTroll, {2024, 10, 27, 2, 59, 59}, 1729990799},
      {"three hours: 03:00 at +11 is 16:00 UTC the day before",
       zones::kThreeHours,
       {2024, 10, 6, 3, 0, 0},
       1728144000},
      {"its first second: the second one is exactly three hours later",
       zones::kThreeHours,
       {2024, 10, 6, 2, 0, 0},
       1728140400},
      {"its last second", zones::kThreeHours, {2024, 10, 6, 4, 59, 59}, 1728151199},
      {"the hour before midnight: 23:30 at -02 is 01:30 UTC",
       zones::kMidnight,
       {2024, 2, 17, 23, 30, 0},
       1708219800},
      {"its last second, the end of a day",
       zones::kMidnight,
       {2024, 2, 17, 23, 59, 59},
       1708221599},
  };
  for (const auto& row : rows) {
    const ZoneScope zone(row.zone);
    EXPECT_EQ(Make(row.local).Seconds(), row.first) << row.why;
    // After a winter, a summer, the first and the second of the two, forced either way.
    for (const std::time_t before : {std::time_t{1705320000}, std::time_t{1721044800}, row.first,
                                     row.first + 1800, row.first + 3600, row.first + 10800}) {
      for (const int isdst : {-1, 0, 1}) {
        Remember(before, isdst);
        EXPECT_EQ(Make(row.local).Seconds(), row.first)
            << row.why << ", after " << before << " with " << isdst;
      }
    }
  }
}

TEST(TwiceOccurringTime, ItsNeighboursOccurOnce) {
  const struct {
    const char* why;
    const char* zone;
    Fields local;
    std::time_t instant;
  } rows[] = {
      {"a second before", zones::kNewYork, {2024, 11, 3, 0, 59, 59}, 1730609999},
      {"the second after", zones::kNewYork, {2024, 11, 3, 2, 0, 0}, 1730617200},
      {"a second before", zones::kThreeHours, {2024, 10, 6, 1, 59, 59}, 1728140399},
      {"the second after", zones::kThreeHours, {2024, 10, 6, 5, 0, 0}, 1728162000},
      {"a second before", zones::kMidnight, {2024, 2, 17, 22, 59, 59}, 1708217999},
      {"the midnight after", zones::kMidnight, {2024, 2, 18, 0, 0, 0}, 1708225200},
  };
  for (const auto& row : rows) {
    const ZoneScope zone(row.zone);
    EXPECT_EQ(Make(row.local).Seconds(), row.instant) << row.why << ", " << row.zone;
  }
}

TEST(TwiceOccurringTime, AForcedFlagPicksOne) {
  const ZoneScope zone(zones::kNewYork);
  EXPECT_EQ(VxTime(2024, 11, 3, 1, 30, 0, 1).Seconds(), 1730611800);
  EXPECT_EQ(VxTime(2024, 11, 3, 1, 30, 0, 0).Seconds(), 1730615400);
}

TEST(SkippedTime, IsMovedByTheGapToOneSide) {
  const struct {
    const char* why;
    const char* zone;
    Fields local;
    std::time_t asStandard;  // read with the offset before the gap, or with the one after
    std::time_t asDaylight;
  } rows[] = {
      {"New York: 02:30 as EST is 07:30 UTC",
       zones::kNewYork,
       {2024, 3, 10, 2, 30, 0},
       1710055800,
       1710052200},
      {"Lord Howe: 02:15 at +10:30 is 15:45 UTC",
       zones::kLordHowe,
       {2024, 10, 6, 2, 15, 0},
       1728143100,
       1728141300},
      {"a midnight that is none: 00:00 at -03 is 03:00 UTC",
       zones::kMidnight,
       {2024, 10, 20, 0, 0, 0},
       1729393200,
       1729389600},
  };
  for (const auto& row : rows) {
    const ZoneScope zone(row.zone);
    const std::time_t seconds = Make(row.local).Seconds();
    // Which of the two is the C library's choice.
    EXPECT_TRUE(seconds == row.asStandard || seconds == row.asDaylight)
        << row.why << ": " << seconds;
  }
}

// The whole rule, the slow way: of the instants with the same local fields as mktime's answer, the
// earliest within the three hours before it, looked for second by second.
std::time_t FirstOfTwo(const Fields& f) {
  std::tm wanted{};
  wanted.tm_year = f.year - 1900;
  wanted.tm_mon = f.month - 1;
  wanted.tm_mday = f.day;
  wanted.tm_hour = f.hour;
  wanted.tm_min = f.minute;
  wanted.tm_sec = f.second;
  wanted.tm_isdst = -1;
  const std::time_t answer = std::mktime(&wanted);
  for (std::time_t earlier = answer - 10800; earlier < answer; ++earlier) {
    std::tm local{};
    localtime_r(&earlier, &local);
    if (local.tm_sec == wanted.tm_sec && local.tm_min == wanted.tm_min &&
        local.tm_hour == wanted.tm_hour && local.tm_mday == wanted.tm_mday) {
      return earlier;
    }
  }
  return answer;
}

// Around each clock change of 2024 in these zones, at the minute, every quarter of an hour.
TEST(TwiceOccurringTime, IsTheFirstOnEveryQuarterRoundAClockChange) {
  const struct {
    const char* zone;
    int month, day;  // of the change back
  } rows[] = {{zones::kNewYork, 11, 3},    {zones::kLordHowe, 4, 7},  {zones::kTroll, 10, 27},
              {zones::kThreeHours, 10, 6}, {zones::kMidnight, 2, 17}, {zones::kMidnight, 2, 18}};
  for (const auto& row : rows) {
    const ZoneScope zone(row.zone);
    for (int minute = 0; minute < 24 * 60; minute += 15) {
      const Fields local{2024, row.month, row.day, 0, minute, 7};
      EXPECT_EQ(Make(local).Seconds(), FirstOfTwo(local)) << row.zone << ", minute " << minute;
    }
  }
}

constexpr std::array kAllZones = {zones::kUtc,     zones::kNewYork,    zones::kLordHowe,
                                  zones::kTroll,   zones::kThreeHours, zones::kMidnight,
                                  zones::kKolkata, zones::kStJohns};

void ExpectSameFields(std::time_t instant, const char* zone) {
  std::tm expected{};
  localtime_r(&instant, &expected);
  std::tm actual{};
  ASSERT_NE(VxTime(instant).GetLocalTm(&actual), nullptr);
  EXPECT_EQ(actual.tm_year, expected.tm_year) << zone << " " << instant;
  EXPECT_EQ(actual.tm_mon, expected.tm_mon) << zone << " " << instant;
  EXPECT_EQ(actual.tm_mday, expected.tm_mday) << zone << " " << instant;
  EXPECT_EQ(actual.tm_hour, expected.tm_hour) << zone << " " << instant;
  EXPECT_EQ(actual.tm_min, expected.tm_min) << zone << " " << instant;
  EXPECT_EQ(actual.tm_sec, expected.tm_sec) << zone << " " << instant;
  EXPECT_EQ(actual.tm_wday, expected.tm_wday) << zone << " " << instant;
  EXPECT_EQ(actual.tm_yday, expected.tm_yday) << zone << " " << instant;
  EXPECT_EQ(actual.tm_isdst, expected.tm_isdst) << zone << " " << instant;
  EXPECT_EQ(actual.tm_gmtoff, expected.tm_gmtoff) << zone << " " << instant;
  EXPECT_STREQ(actual.tm_zone, expected.tm_zone) << zone << " " << instant;
}

// Whatever is kept to save conversions: the answers are the C library's, also when the zone changes
// again and again between them.
TEST(LocalFields, AreTheCLibrarysInEveryZoneAndOrder) {
  std::mt19937 random(7);
  std::uniform_int_distribution<std::time_t> anyTime(-2208988800, 253402300799);  // 1900 to 9999
  std::uniform_int_distribution<std::time_t> thisYear(1704067200, 1735689600);    // 2024
  for (int round = 0; round < 200; ++round) {
    const char* const name = kAllZones[random() % kAllZones.size()];
    const ZoneScope zone(name);
    for (int i = 0; i < 100; ++i) {
      ExpectSameFields(i % 2 == 0 ? anyTime(random) : thisYear(random), name);
    }
  }
}

TEST(LocalFields, AreTheCLibrarysOnEachSideOfEveryMidnightAndClockChange) {
  for (const char* const name : kAllZones) {
    const ZoneScope zone(name);
    std::tm before{};
    std::time_t hour = 1704067200;  // 2024-01-01 00:00 UTC
    localtime_r(&hour, &before);
    for (; hour < 1735689600 + 7200; hour += 900) {
      std::tm local{};
      localtime_r(&hour, &local);
      const bool turns = local.tm_gmtoff != before.tm_gmtoff || local.tm_mday != before.tm_mday;
      before = local;
      if (!turns) continue;
      for (const int second : {-901, -1, 0, 1, 900}) ExpectSameFields(hour + second, name);
    }
  }
}

TEST(LocalFields, GoBackToTheSameInstantWhereTheTimeOccursOnce) {
  std::mt19937 random(11);
  std::uniform_int_distribution<std::time_t> anyTime(-2208988800, 253402300799);
  for (const char* const name : kAllZones) {
    const ZoneScope zone(name);
    for (int i = 0; i < 2000; ++i) {
      const VxTime time(anyTime(random));
      std::tm local{};
      ASSERT_NE(time.GetLocalTm(&local), nullptr);
      const VxTime back(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                        local.tm_min, local.tm_sec, -1);
      EXPECT_LE(back, time) << name;
      EXPECT_LE(time.Seconds() - back.Seconds(), 10800) << name;
      std::tm again{};
      ASSERT_NE(back.GetLocalTm(&again), nullptr);
      EXPECT_EQ(again.tm_sec, local.tm_sec) << name;
      EXPECT_EQ(again.tm_min, local.tm_min) << name;
      EXPECT_EQ(again.tm_hour, local.tm_hour) << name;
    }
  }
}

}  // namespace
