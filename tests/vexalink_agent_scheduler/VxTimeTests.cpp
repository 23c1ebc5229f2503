#include <climits>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "tests/support/TestClock.h"
#include "tests/vexalink_agent_scheduler/Zones.h"
#include "vexalink_agent_scheduler/vxw/VxTime.h"

namespace {

std::string Text(VxTime time) {
  std::tm local{};
  if (time.GetLocalTm(&local) == nullptr) return "none";
  char text[40];
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
  return text;
}

TEST(VxTime, NormalisesFieldsOutOfRange) {
  const struct {
    const char* why;
    VxTime (*make)();
    const char* text;
  } rows[] = {
      {"plain", [] { return VxTime(2024, 3, 6, 7, 8, 9, -1); }, "2024-03-06 07:08:09"},
      {"30 February", [] { return VxTime(2024, 2, 30, 0, 0, 0, -1); }, "2024-03-01 00:00:00"},
      {"minute 1440", [] { return VxTime(2024, 1, 1, 0, 1440, 0, -1); }, "2024-01-02 00:00:00"},
      {"minute 1439", [] { return VxTime(2024, 1, 1, 0, 1439, 0, -1); }, "2024-01-01 23:59:00"},
      {"minute -1", [] { return VxTime(2024, 1, 1, 0, -1, 0, -1); }, "2023-12-31 23:59:00"},
      {"day 0", [] { return VxTime(2024, 3, 0, 0, 0, 0, -1); }, "2024-02-29 00:00:00"},
      {"day 32", [] { return VxTime(2024, 1, 32, 0, 0, 0, -1); }, "2024-02-01 00:00:00"},
      {"month 13", [] { return VxTime(2023, 13, 1, 0, 0, 0, -1); }, "2024-01-01 00:00:00"},
      {"month 0", [] { return VxTime(2024, 0, 1, 0, 0, 0, -1); }, "2023-12-01 00:00:00"},
      {"month -11", [] { return VxTime(2024, -11, 1, 0, 0, 0, -1); }, "2023-01-01 00:00:00"},
      {"hour 24", [] { return VxTime(2024, 2, 28, 24, 0, 0, -1); }, "2024-02-29 00:00:00"},
      {"hour -1", [] { return VxTime(2024, 1, 1, -1, 0, 0, -1); }, "2023-12-31 23:00:00"},
      {"second 60", [] { return VxTime(2024, 1, 1, 0, 0, 60, -1); }, "2024-01-01 00:01:00"},
      {"second -1", [] { return VxTime(2024, 1, 1, 0, 0, -1, -1); }, "2023-12-31 23:59:59"},
      {"all at once", [] { return VxTime(2023, 14, 30, 23, 59, 61, -1); }, "2024-03-02 00:00:01"},
      {"day 0 of month 0 of year 0", [] { return VxTime(0, 0, 0, 0, 0, 0, -1); },
       "-1-11-30 00:00:00"},
      {"before the epoch", [] { return VxTime(1901, 1, 1, 0, 0, 0, -1); }, "1901-01-01 00:00:00"},
      {"after 32 bits", [] { return VxTime(2100, 2, 29, 0, 0, 0, -1); }, "2100-03-01 00:00:00"},
  };
  for (const char* name : {zones::kUtc, zones::kNewYork, zones::kLordHowe, zones::kKolkata}) {
    const ZoneScope zone(name);
    for (const auto& row : rows) EXPECT_EQ(Text(row.make()), row.text) << row.why << ", " << name;
  }
}

TEST(VxTime, GettersReadTheLocalCalendar) {
  const ZoneScope zone(zones::kNewYork);
  const VxTime time(1709726889);  // 2024-03-06 12:08:09 UTC
  EXPECT_EQ(time.GetYear(), 2024);
  EXPECT_EQ(time.GetMonth(), 3);
  EXPECT_EQ(time.GetDay(), 6);
  EXPECT_EQ(time.GetHour(), 7);
  EXPECT_EQ(time.GetMinute(), 8);
  EXPECT_EQ(time.Seconds(), 1709726889);
}

TEST(VxTime, GetCurrentTimeAsksTheClock) {
  TestClock clock(1234567890);
  EXPECT_EQ(VxTime::GetCurrentTime().Seconds(), 1234567890);
  clock.Advance(1);
  EXPECT_EQ(VxTime::GetCurrentTime().Seconds(), 1234567891);
}

TEST(VxTime, AnswersFailureValuesWhereTheInstantCannotBeConverted) {
  const ZoneScope zone(zones::kNewYork);
  for (const std::time_t seconds :
       {std::numeric_limits<std::time_t>::max(), std::numeric_limits<std::time_t>::min()}) {
    const VxTime time(seconds);
    EXPECT_EQ(time.GetYear(), 0);
    EXPECT_EQ(time.GetMonth(), 0);
    EXPECT_EQ(time.GetDay(), 0);
    EXPECT_EQ(time.GetHour(), -1);
    EXPECT_EQ(time.GetMinute(), -1);
    EXPECT_EQ(time.GetLocalTm(nullptr), nullptr);
    std::tm untouched{};
    untouched.tm_mday = 77;
    EXPECT_EQ(time.GetLocalTm(&untouched), nullptr);
    EXPECT_EQ(untouched.tm_mday, 77);
  }
}

TEST(VxTime, IsMinusOneWhereNoInstantHasTheFields) {
  const ZoneScope zone(zones::kUtc);
  EXPECT_EQ(VxTime(INT_MAX, INT_MAX, INT_MAX, INT_MAX, INT_MAX, INT_MAX, -1).Seconds(), -1);
  EXPECT_EQ(VxTime(1969, 12, 31, 23, 59, 59, -1).Seconds(), -1) << "which is also an instant";
}

TEST(VxTime, TakesAnyNumbersWithoutOverflow) {
  const ZoneScope zone(zones::kNewYork);
  for (const int number : {INT_MIN, INT_MIN + 1900, -1, 0, INT_MAX - 1, INT_MAX}) {
    for (const int isdst : {-1, 0, 1}) {
      VxTime(number, 1, 1, 0, 0, 0, isdst).GetYear();
      VxTime(2024, number, 1, 0, 0, 0, isdst).GetYear();
      VxTime(2024, 1, number, 0, 0, 0, isdst).GetYear();
      VxTime(2024, 1, 1, number, 0, 0, isdst).GetYear();
      VxTime(2024, 1, 1, 0, number, 0, isdst).GetYear();
      VxTime(2024, 1, 1, 0, 0, number, isdst).GetYear();
      VxTime(number, number, number, number, number, number, isdst).GetYear();
    }
  }
}

TEST(VxTime, GetLocalTmCopiesAllFields) {
  const ZoneScope zone(zones::kNewYork);
  std::tm local{};
  const VxTime time(1721044800);  // 2024-07-15 12:00 UTC, a Monday
  EXPECT_EQ(time.GetLocalTm(&local), &local);
  EXPECT_EQ(local.tm_year, 124);
  EXPECT_EQ(local.tm_mon, 6);
  EXPECT_EQ(local.tm_mday, 15);
  EXPECT_EQ(local.tm_hour, 8);
  EXPECT_EQ(local.tm_min, 0);
  EXPECT_EQ(local.tm_sec, 0);
  EXPECT_EQ(local.tm_wday, 1);
  EXPECT_EQ(local.tm_yday, 196);
  EXPECT_EQ(local.tm_isdst, 1);
  EXPECT_EQ(local.tm_gmtoff, -4 * 3600);
  EXPECT_STREQ(local.tm_zone, "EDT");
}

TEST(VxTime, GetLocalTmWithoutOutIsReadBeforeTheNextCall) {
  const ZoneScope zone(zones::kUtc);
  const std::tm* const local = VxTime(0).GetLocalTm(nullptr);
  ASSERT_NE(local, nullptr);
  EXPECT_EQ(local->tm_year, 70);
  EXPECT_EQ(local->tm_yday, 0);
}

TEST(VxTime, AForcedFlagCountsInTheOtherSeasonToo) {
  const ZoneScope zone(zones::kNewYork);
  EXPECT_EQ(Text(VxTime(2024, 7, 1, 12, 0, 0, 0)), "2024-07-01 13:00:00") << "noon EST is 13 EDT";
  EXPECT_EQ(Text(VxTime(2024, 1, 1, 12, 0, 0, 1)), "2024-01-01 11:00:00") << "noon EDT is 11 EST";
  EXPECT_EQ(Text(VxTime(2024, 7, 1, 12, 0, 0, 1)), "2024-07-01 12:00:00");
  EXPECT_EQ(Text(VxTime(2024, 1, 1, 12, 0, 0, 0)), "2024-01-01 12:00:00");
}

TEST(VxTime, FollowsTheZoneThatIsInForceWhenAsked) {
  const VxTime time(1721044800);  // 2024-07-15 12:00 UTC
  const ZoneScope utc(zones::kUtc);
  EXPECT_EQ(time.GetHour(), 12);
  {
    const ZoneScope newYork(zones::kNewYork);
    EXPECT_EQ(time.GetHour(), 8);
    EXPECT_EQ(VxTime(2024, 7, 15, 8, 0, 0, -1), time);
    setenv("TZ", zones::kKolkata, 1);  // and no tzset: the next conversion takes it up
    EXPECT_EQ(time.GetHour(), 17);
    EXPECT_EQ(time.GetMinute(), 30);
    EXPECT_EQ(VxTime(2024, 7, 15, 17, 30, 0, -1), time);
    setenv("TZ", "EST5", 1);
    EXPECT_EQ(time.GetHour(), 7) << "another rule of the same offset";
    setenv("TZ", zones::kNewYork, 1);
    EXPECT_EQ(time.GetHour(), 8);
    unsetenv("TZ");
    tzset();
    const std::time_t seconds = time.Seconds();
    const std::tm local = *std::localtime(&seconds);
    EXPECT_EQ(time.GetHour(), local.tm_hour) << "the machine's own zone";
  }
  EXPECT_EQ(time.GetHour(), 12);
}

TEST(VxTime, ComparesAsAnInstant) {
  EXPECT_LT(VxTime(-1), VxTime(0));
  EXPECT_LE(VxTime(7), VxTime(7));
  EXPECT_EQ(VxTime(), VxTime(0));
  EXPECT_GT(VxTime(4294967296), VxTime(2147483647));
}

TEST(YMD, ComparesLocalDatesOnly) {
  const ZoneScope zone(zones::kNewYork);
  const struct {
    const char* why;
    const char* a;
    const char* b;
    bool equal;
  } rows[] = {
      {"the first and the last second of a day", "2024-03-06 00:00:01", "2024-03-06 23:59:59",
       true},
      {"a second apart, a day apart", "2024-03-06 23:59:59", "2024-03-07 00:00:00", false},
      {"less than a day apart", "2024-03-06 12:00:00", "2024-03-07 11:00:00", false},
      {"the same day of another month", "2024-03-06 12:00:00", "2024-04-06 12:00:00", false},
      {"the same day of another year", "2024-03-06 12:00:00", "2023-03-06 12:00:00", false},
      {"a day of 25 hours", "2024-11-03 00:00:00", "2024-11-03 23:59:59", true},
      {"a day of 23 hours", "2024-03-10 00:00:00", "2024-03-10 23:59:59", true},
  };
  for (const auto& row : rows) {
    const VxTime a(Local(row.a));
    const VxTime b(Local(row.b));
    EXPECT_EQ(YMD(a) == YMD(b), row.equal) << row.why;
    EXPECT_EQ(YMD(b) == YMD(a), row.equal) << row.why;
  }
}

TEST(YMD, ComparesTheDatesOfTheZoneInForce) {
  const VxTime a(1709679600);  // 2024-03-05 23:00 UTC
  const VxTime b(1709686800);  // 2024-03-06 01:00 UTC
  {
    const ZoneScope zone(zones::kUtc);
    EXPECT_FALSE(YMD(a) == YMD(b));
  }
  const ZoneScope zone(zones::kNewYork);
  EXPECT_TRUE(YMD(a) == YMD(b));
}

TEST(YMD, TwoInstantsThatCannotBeConvertedAreEqual) {
  // Both dates count as 0, 0, 0.
  EXPECT_TRUE(YMD(VxTime(std::numeric_limits<std::time_t>::max())) ==
              YMD(VxTime(std::numeric_limits<std::time_t>::min())));
  EXPECT_FALSE(YMD(VxTime(std::numeric_limits<std::time_t>::max())) == YMD(VxTime(0)));
}

}  // namespace
