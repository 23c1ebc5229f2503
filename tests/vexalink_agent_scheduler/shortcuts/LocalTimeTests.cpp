#include <cstring>
#include <gtest/gtest.h>
#include <limits>

#include "tests/support/TestClock.h"
#include "tests/vexalink_agent_scheduler/shortcuts/PlainCalendar.h"
#include "tests/vexalink_agent_scheduler/shortcuts/PlainRules.h"
#include "tests/vexalink_agent_scheduler/shortcuts/RandomInput.h"
#include "vexalink_agent_scheduler/vxw/LocalTime.h"
#include "vexalink_agent_scheduler/vxw/NthDay.h"
#include "vexalink_agent_scheduler/vxw/VxTime.h"

namespace {

testing::AssertionResult SameFields(std::time_t instant) {
  std::tm ours{};
  std::tm theirs{};
  const bool known = local_time::Fields(instant, &ours);
  if (plain::Fields(instant, &theirs) != known) {
    return testing::AssertionFailure() << instant << (known ? " is known" : " is not known");
  }
  const VxTime time(instant);
  const bool same = ours.tm_sec == theirs.tm_sec && ours.tm_min == theirs.tm_min &&
                    ours.tm_hour == theirs.tm_hour && ours.tm_mday == theirs.tm_mday &&
                    ours.tm_mon == theirs.tm_mon && ours.tm_year == theirs.tm_year &&
                    ours.tm_wday == theirs.tm_wday && ours.tm_yday == theirs.tm_yday &&
                    ours.tm_isdst == theirs.tm_isdst && ours.tm_gmtoff == theirs.tm_gmtoff &&
                    (!known || std::strcmp(ours.tm_zone, theirs.tm_zone) == 0) &&
                    time.GetHour() == (known ? theirs.tm_hour : -1) &&
                    time.GetMinute() == (known ? theirs.tm_min : -1) &&
                    time.GetDay() == (known ? theirs.tm_mday : 0) &&
                    time.GetMonth() == (known ? theirs.tm_mon + 1 : 0) &&
                    time.GetYear() == (known ? static_cast<int>(theirs.tm_year + 1900LL) : 0);
  if (same) return testing::AssertionSuccess();
  return testing::AssertionFailure()
         << instant << " is " << std::asctime(&theirs) << " and not " << std::asctime(&ours);
}

testing::AssertionResult SameInstant(const plain::Date& day, int hour, int minute, int second,
                                     int isdst) {
  const std::time_t ours =
      local_time::Instant(day.year, day.month, day.day, hour, minute, second, isdst);
  const unsigned long unsettled = plain::UnsettledTimes();
  const std::time_t theirs =
      plain::Instant(day.year, day.month, day.day, hour, minute, second, isdst);
  if (ours == theirs || unsettled != plain::UnsettledTimes()) return testing::AssertionSuccess();
  return testing::AssertionFailure()
         << day.year << "-" << day.month << "-" << day.day << " " << hour << ":" << minute << ":"
         << second << " (" << isdst << ") is " << theirs << " and not " << ours;
}

}  // namespace

TEST(KeptDays, GiveTheFieldsThatTheCLibraryGives) {
  Random random(1);
  for (const std::string& name : Zones()) {
    SCOPED_TRACE(name);
    const ZoneScope zone(name);
    const Instants instants;
    for (int i = 0; i < 6000; ++i) ASSERT_TRUE(SameFields(instants.Any(random)));
  }
}

TEST(KeptDays, GiveTheFieldsOfDayAfterDayForwardsAndBackwards) {
  Random random(2);
  for (const std::string& name : Zones()) {
    SCOPED_TRACE(name);
    const ZoneScope zone(name);
    const Instants instants;
    for (int walk = 0; walk < 30; ++walk) {
      const std::time_t begin = instants.Any(random);
      const std::time_t step = random.Of<long long>({86400, -86400, 43200, 3600, -3600, 86399});
      for (int i = -20; i < 20; ++i) ASSERT_TRUE(SameFields(begin + i * step));
    }
  }
}

TEST(KeptDays, AreSoToTheSecondAboutEveryClockChange) {
  for (const std::string& name : Zones()) {
    SCOPED_TRACE(name);
    const ZoneScope zone(name);
    const Instants instants;
    for (const std::time_t change : instants.Changes()) {
      for (const long from : {-90000, -10800, -7200, -3600, -60, 0, 60, 3600, 7200, 10800, 86400}) {
        for (long second = -1; second <= 1; ++second) {
          ASSERT_TRUE(SameFields(change + from + second));
        }
      }
    }
  }
}

TEST(KeptDays, CopeWithInstantsThatNoCalendarHas) {
  constexpr std::time_t kMost = std::numeric_limits<std::time_t>::max();
  constexpr std::time_t kLeast = std::numeric_limits<std::time_t>::min();
  for (const std::string& name : Zones()) {
    SCOPED_TRACE(name);
    const ZoneScope zone(name);
    for (const std::time_t extreme :
         {kMost, kLeast, std::time_t{0}, std::time_t{1} << 31, -(std::time_t{1} << 31),
          std::time_t{1} << 60, -(std::time_t{1} << 60), std::time_t{-62167219200},
          std::time_t{253402300799}, std::time_t{67768036191676799},
          std::time_t{-67768040609740800}}) {
      for (long second = -2; second <= 2; ++second) {
        if (extreme == kMost && second > 0) continue;
        if (extreme == kLeast && second < 0) continue;
        ASSERT_TRUE(SameFields(extreme + second));
        ASSERT_TRUE(SameFields(1700000000 + second));
      }
    }
  }
}

TEST(KeptDays, GiveTheInstantThatTheWalkFinds) {
  Random random(3);
  for (const std::string& name : Zones()) {
    SCOPED_TRACE(name);
    const ZoneScope zone(name);
    const Instants instants;
    for (int i = 0; i < 3000; ++i) {
      const std::time_t about = instants.Any(random);
      ASSERT_TRUE(SameFields(about));
      const plain::Date day(about);
      std::tm local{};
      plain::Fields(about, &local);
      ASSERT_TRUE(SameInstant(day, local.tm_hour, local.tm_min, local.tm_sec, -1));
      ASSERT_TRUE(SameInstant(day, static_cast<int>(random.Between(-30, 50)),
                              static_cast<int>(random.Between(-90, 1500)),
                              static_cast<int>(random.Between(0, 59)), -1));
      ASSERT_TRUE(SameInstant(day, 0, static_cast<int>(random.Between(0, 1439)), 0, -1));
    }
  }
}

TEST(KeptDays, GiveTheInstantOfAForcedFlag) {
  Random random(4);
  for (const char* name : {"UTC0", "EST5EDT,M3.2.0,M11.1.0", "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0",
                           "<+00>0<+02>-2,M3.5.0/1,M10.5.0/3", "IST-1GMT0,M10.5.0,M3.5.0/1"}) {
    SCOPED_TRACE(name);
    const ZoneScope zone(name);
    const Instants instants;
    for (int i = 0; i < 2000; ++i) {
      const std::time_t about = instants.Any(random);
      ASSERT_TRUE(SameFields(about));
      ASSERT_TRUE(SameInstant(plain::Date(about), static_cast<int>(random.Between(-5, 29)),
                              static_cast<int>(random.Between(-90, 90)), 0,
                              random.OneIn(2) ? 0 : 1));
    }
  }
}

TEST(KeptDays, GiveTheFirstOfTwoAsASecondBySecondWalkDoes) {
  Random random(5);
  for (const std::string& name : Zones()) {
    SCOPED_TRACE(name);
    const ZoneScope zone(name);
    const Instants instants;
    if (instants.Changes().empty()) continue;
    for (int i = 0; i < 12; ++i) {
      const std::time_t about = random.From(instants.Changes()) + random.Between(-7300, 7300);
      std::tm local{};
      ASSERT_TRUE(plain::Fields(about, &local));
      const plain::Date day(about);
      EXPECT_EQ(local_time::Instant(day.year, day.month, day.day, local.tm_hour, local.tm_min,
                                    local.tm_sec, -1),
                plain::InstantBySeconds(day.year, day.month, day.day, local.tm_hour, local.tm_min,
                                        local.tm_sec))
          << about;
    }
  }
}

TEST(KeptDays, NormaliseWhateverNumbersFieldsHold) {
  constexpr int kMost = std::numeric_limits<int>::max();
  constexpr int kLeast = std::numeric_limits<int>::min();
  Random random(6);
  for (const char* name : {"UTC0", "EST5EDT,M3.2.0,M11.1.0"}) {
    const ZoneScope zone(name);
    for (int i = 0; i < 4000; ++i) {
      const auto number = [&](int usual) {
        return random.OneIn(4) ? random.Of({kMost, kLeast, 0, -1, 100000, -100000, 9999}) : usual;
      };
      const int year = random.OneIn(4) ? random.Of({0, -1, 1, 9999, 10000, 2000000000, -2000000000})
                                       : static_cast<int>(random.Between(1960, 2040));
      const int fields[] = {number(3), number(10), number(2), number(30), 59};
      EXPECT_EQ(
          local_time::Instant(year, fields[0], fields[1], fields[2], fields[3], fields[4], -1),
          plain::Instant(year, fields[0], fields[1], fields[2], fields[3], fields[4], -1))
          << name << ": " << year << " " << fields[0] << " " << fields[1] << " " << fields[2] << " "
          << fields[3] << " " << fields[4];
    }
  }
}

TEST(KeptNthWeekday, IsTheOneThatTheWalkFinds) {
  Random random(7);
  for (const std::string& name : Zones()) {
    SCOPED_TRACE(name);
    const ZoneScope zone(name);
    const Instants instants;
    for (int i = 0; i < 1500; ++i) {
      const plain::Date about(instants.Any(random));
      const int weekday = static_cast<int>(random.Between(-1, 9));
      const int period =
          random.OneIn(6) ? random.Of({-1, 6, 13}) : static_cast<int>(random.Between(1, 5));
      const std::time_t walked = plain::NthDayOfMonth(about.month, weekday, about.year, period);
      const CivilDay kept = nth_day::FindDay(about.month, weekday, about.year, period);
      EXPECT_EQ(nth_day::Find(about.month, weekday, about.year, period).Seconds(), walked);
      const plain::Date day(walked);
      EXPECT_TRUE(kept.year == day.year && kept.month == day.month && kept.day == day.day)
          << period << ". " << weekday << " of " << about.year << "-" << about.month << ": "
          << walked;
    }
  }
}
