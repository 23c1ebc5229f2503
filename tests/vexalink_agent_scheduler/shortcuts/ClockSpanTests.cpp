// Far from the present the C library is asked no more than some hundred times: what is worked out
// from there is what it would have said.

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>

#include "tests/support/FakeHost.h"
#include "tests/support/TestClock.h"
#include "tests/vexalink_agent_scheduler/shortcuts/PlainCalendar.h"
#include "tests/vexalink_agent_scheduler/shortcuts/PlainRules.h"
#include "tests/vexalink_agent_scheduler/shortcuts/RandomInput.h"
#include "vexalink_agent_scheduler/vxw/ClockSpans.h"
#include "vexalink_agent_scheduler/vxw/LocalTime.h"
#include "vexalink_agent_scheduler/vxw/NthDay.h"
#include "vexalink_agent_scheduler/vxw/OccurrenceListing.h"

namespace {

constexpr std::time_t kDay = 86400;
constexpr std::time_t kYear9999 = 253402300799;

// Beside those that every test has: zones with leaps, with two hours in summer, without a rule, and
// texts with whatever a rule may say.
const std::vector<std::string>& ManyZones() {
  static const std::vector<std::string> zones = [] {
    std::vector<std::string> all = Zones();
    for (const char* name : {"Australia/Lord_Howe",
                             "Pacific/Kwajalein",
                             "Asia/Manila",
                             "America/Juneau",
                             "Europe/London",
                             "Europe/Dublin",
                             "Africa/Casablanca",
                             "Africa/Cairo",
                             "Africa/Monrovia",
                             "America/Nuuk",
                             "Asia/Gaza",
                             "Antarctica/Troll",
                             "America/Scoresbysund",
                             ":Europe/Paris",
                             "/usr/share/zoneinfo/America/Caracas",
                             "EST5EDT",
                             "XXX5YYY",
                             "No/Such_Zone",
                             "",
                             "<-02>2<-01>,M3.5.0/-1,M10.5.0/0",
                             "AAA12BBB-14,M1.1.0/-167,M12.5.6/167",
                             "XYZ3ABC,0/0,J365/25",
                             "AAA0BBB,J60/2,J300/2",
                             "AAA0BBB,59/2,300/2",
                             "AAA-24BBB-26,M10.1.0/167,M4.1.0/-167",
                             "AAA24BBB23:59:59,M3.2.0/12:34:56,M3.3.0",
                             "UTC-23:59:59"}) {
      all.emplace_back(name);
    }
    return all;
  }();
  return zones;
}

// So that spans are known from here on.
void AskOften() {
  for (int i = 0; i < 200; ++i) local_time::FindSpan(0);
}

testing::AssertionResult IsClockOf(const local_time::Clock& clock, std::time_t instant) {
  std::tm local{};
  if (localtime_r(&instant, &local) != nullptr && local.tm_gmtoff == clock.offset &&
      local.tm_isdst == clock.isdst && std::strcmp(local.tm_zone, clock.zone) == 0) {
    return testing::AssertionSuccess();
  }
  return testing::AssertionFailure()
         << instant << ": " << local.tm_gmtoff << " " << local.tm_isdst << " " << local.tm_zone
         << " and not " << clock.offset << " " << clock.isdst << " " << clock.zone;
}

// Whether the C library is of one mind about the fields of an instant, whatever it converted
// before: not where the date line moves or clocks by half a day, nor, with a flag, near any change.
bool IsSettled(std::time_t instant, int isdst) {
  std::tm there{};
  plain::Fields(instant, &there);
  for (const std::time_t other : {instant - 3 * kDay, instant + 3 * kDay}) {
    std::tm local{};
    plain::Fields(other, &local);
    const bool isSame = local.tm_gmtoff == there.tm_gmtoff && local.tm_isdst == isdst;
    if (isdst < 0 ? std::labs(local.tm_gmtoff - there.tm_gmtoff) > 3 * 3600 : !isSame) return false;
  }
  return isdst < 0 || there.tm_isdst == isdst;
}

// Instants of all centuries, many of them where the years of UTC meet.
std::time_t AnyInstant(Random& random) {
  if (random.OneIn(4)) {
    return local_time::CivilDays(random.Between(1800, 9999), 1, 1) * kDay +
           random.Between(-2 * kDay, 2 * kDay);
  }
  if (random.OneIn(3)) return random.Between(-5000000000, 5000000000);
  return random.Between(-100000000000, kYear9999 + 100000000000);
}

}  // namespace

TEST(ClockSpans, ShowWhatTheCLibraryShowsFromEndToEnd) {
  Random random(51);
  for (const std::string& name : ManyZones()) {
    SCOPED_TRACE(name);
    const ZoneScope zone(name);
    // A conversion by the C library may change `timezone`, with which all would be forgotten.
    const local_time::ZoneHold hold;
    AskOften();
    int known = 0;
    for (int i = 0; i < 2000; ++i) {
      const std::time_t instant = AnyInstant(random);
      const local_time::ClockSpan* const found = local_time::FindSpan(instant);
      if (found == nullptr) continue;
      ++known;
      const local_time::ClockSpan span = *found;
      ASSERT_TRUE(span.Holds(instant)) << instant;
      ASSERT_TRUE(IsClockOf(span.clock, instant));
      ASSERT_TRUE(IsClockOf(span.clock, span.begin));
      ASSERT_TRUE(IsClockOf(span.clock, span.end - 1));
      ASSERT_TRUE(IsClockOf(span.clock, random.Between(span.begin, span.end - 1)));
    }
    EXPECT_GT(known, 1000);
  }
}

TEST(ClockSpans, AreNotLookedForBeforeAZoneHasBeenAskedForOften) {
  const ZoneScope zone("America/New_York");
  for (int minute = 0; minute < 3; ++minute) {
    local_time::ForgetZone();
    for (int i = 0; i < 50; ++i) EXPECT_EQ(local_time::FindSpan(1700000000 + i), nullptr);
  }
  AskOften();
  EXPECT_NE(local_time::FindSpan(1700000000), nullptr);
}

TEST(ClockSpans, AreForgottenWithTheZone) {
  Random random(52);
  for (int i = 0; i < 200; ++i) {
    const ZoneScope zone(random.From(ManyZones()));
    if (!random.OneIn(4)) AskOften();
    for (int j = 0; j < 20; ++j) {
      const std::time_t instant = AnyInstant(random);
      std::tm ours{};
      ASSERT_TRUE(local_time::Fields(instant, &ours));
      ASSERT_TRUE(IsClockOf({ours.tm_gmtoff, ours.tm_isdst, ours.tm_zone}, instant));
    }
  }
}

TEST(DaysFarAhead, AreThoseOfTheCLibrary) {
  Random random(53);
  for (const std::string& name : ManyZones()) {
    SCOPED_TRACE(name);
    const ZoneScope zone(name);
    const local_time::ZoneHold hold;
    AskOften();
    for (int i = 0; i < 600; ++i) {
      std::time_t instant = AnyInstant(random);
      const local_time::ClockSpan* const span = local_time::FindSpan(instant);
      if (span != nullptr && !random.OneIn(3)) {
        instant = (random.OneIn(2) ? span->begin : span->end) +
                  random.Of<long long>(
                      {0, -1, 1, random.Between(-2 * kDay, 2 * kDay), random.Between(-8000, 8000)});
      }
      std::tm ours{};
      std::tm theirs{};
      ASSERT_EQ(local_time::Fields(instant, &ours), plain::Fields(instant, &theirs)) << instant;
      ASSERT_TRUE(ours.tm_year == theirs.tm_year && ours.tm_yday == theirs.tm_yday &&
                  ours.tm_mon == theirs.tm_mon && ours.tm_mday == theirs.tm_mday &&
                  ours.tm_wday == theirs.tm_wday && ours.tm_hour == theirs.tm_hour &&
                  ours.tm_min == theirs.tm_min && ours.tm_sec == theirs.tm_sec &&
                  ours.tm_isdst == theirs.tm_isdst && ours.tm_gmtoff == theirs.tm_gmtoff)
          << instant << " is " << std::asctime(&theirs) << " and not " << std::asctime(&ours);
      const plain::Date day(instant);
      const int minute = static_cast<int>(random.Between(0, 1439));
      const int isdst = static_cast<int>(random.Between(-1, 1));
      const std::time_t before =
          local_time::Instant(day.year, day.month, day.day, 0, minute, 0, isdst);
      const unsigned long unsettled = plain::UnsettledTimes();
      const std::time_t expected =
          plain::Instant(day.year, day.month, day.day, 0, minute, 0, isdst);
      if (unsettled != plain::UnsettledTimes() || !IsSettled(expected, isdst)) continue;
      ASSERT_EQ(before, expected) << day.year << "-" << day.month << "-" << day.day << " " << minute
                                  << " minutes, flag " << isdst;
    }
  }
}

TEST(DaysFarAhead, HaveTheNthWeekdaysOfTheWalk) {
  Random random(54);
  for (const std::string& name : ManyZones()) {
    SCOPED_TRACE(name);
    const ZoneScope zone(name);
    const local_time::ZoneHold hold;
    for (int i = 0; i < 200; ++i) {
      const int year = static_cast<int>(random.Between(1840, random.OneIn(3) ? 9999 : 2200));
      const int month = static_cast<int>(random.Between(1, 12));
      const int weekday = static_cast<int>(random.Between(0, 8));
      const int period = static_cast<int>(random.Between(1, 6));
      EXPECT_EQ(nth_day::Find(month, weekday, year, period).Seconds(),
                plain::NthDayOfMonth(month, weekday, year, period))
          << period << ". " << weekday << " of " << year << "-" << month;
    }
  }
}

TEST(ListingFarAhead, IsThePlainWalk) {
  Random random(55);
  for (const std::string& name : ManyZones()) {
    SCOPED_TRACE(name);
    const ZoneScope zone(name);
    const Instants instants;
    for (int i = 0; i < 3; ++i) {
      const std::time_t from = AnyInstant(random);
      const std::time_t to = from + random.Between(1, random.OneIn(4) ? 12 : 2) * 365 * kDay;
      std::vector<Event> owned;
      const auto count = static_cast<unsigned long>(random.Between(1, random.OneIn(2) ? 1 : 5));
      for (unsigned long id = 1; id <= count; ++id) {
        owned.push_back(RandomEvent(id, from + random.Between(-100, 300) * kDay, instants, random));
        if (random.OneIn(2)) owned.back().end_date = VxTime(to);
        if (random.OneIn(3)) owned.back().rate = static_cast<int>(random.Between(1, 40));
      }
      plain::Table table;
      std::map<unsigned long, Event*> events;
      for (Event& event : owned) {
        table[event.eventid] = &event;
        events[event.eventid] = &event;
      }
      const TestClock clock(from);
      const AssertLines lines;
      const local_time::ZoneHold hold;
      std::vector<plain::Listed> listed;
      OccurrenceListing listing(events, VxTime(from), VxTime(to));
      for (std::vector<ListedOccurrence> some; listing.Next(&some);) {
        for (const ListedOccurrence& one : some) {
          listed.push_back(
              {one.event->eventid, one.year, one.month, one.day, one.hour, one.minute});
        }
      }
      plain::Records records;
      ASSERT_EQ(listed, plain::List(table, from, to, &records))
          << from << " to " << to << ": " << Describe(owned[0]);
      ASSERT_EQ(lines.lines, records);
    }
  }
}
