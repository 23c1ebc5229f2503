#include <cstdlib>
#include <gtest/gtest.h>

#include "tests/support/FakeHost.h"
#include "tests/support/TestClock.h"
#include "tests/vexalink_agent_scheduler/shortcuts/PlainCalendar.h"
#include "tests/vexalink_agent_scheduler/shortcuts/PlainRules.h"
#include "tests/vexalink_agent_scheduler/shortcuts/RandomInput.h"
#include "vexalink_agent_scheduler/vxw/LocalTime.h"
#include "vexalink_agent_scheduler/vxw/RuleTable.h"
#include "vexalink_agent_scheduler/vxw/ZoneWatch.h"

namespace {

// Zones of one standard offset, all with daylight-saving time, of which only the rules differ; then
// others.
const std::vector<std::string>& Rules() {
  static const std::vector<std::string> rules = {"EST5EDT,M3.2.0,M11.1.0",
                                                 "EST5EDT,M4.1.0,M10.5.0",
                                                 "EST5EDT4:30,M3.2.0,M11.1.0",
                                                 "XST5XDT,M3.2.0,M11.1.0",
                                                 "America/New_York",
                                                 "UTC0",
                                                 "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0"};
  return rules;
}

void ChangeZone(Random& random) {
  if (random.OneIn(6)) {
    unsetenv("TZ");
  } else {
    setenv("TZ", random.From(Rules()).c_str(), 1);
  }
  if (random.OneIn(3)) tzset();
  // Neighbours in the environment come and go, too.
  if (random.OneIn(4)) setenv("VEXALINK_TEST_A", random.OneIn(2) ? "1" : "2", 1);
  if (random.OneIn(4)) setenv("VEXALINK_TEST_B", random.OneIn(2) ? "1" : "2", 1);
  if (random.OneIn(4)) unsetenv("VEXALINK_TEST_A");
  if (random.OneIn(4)) unsetenv("VEXALINK_TEST_B");
}

struct Answers {
  std::tm fields{};
  std::time_t instant = 0;
  std::time_t eventTime = 0;
  std::vector<unsigned long> ids;
};

}  // namespace

// The agent is asked before the plain calendar is, which would make the C library take up the zone.
TEST(ZoneChange, IsSeenByWhateverIsAskedNext) {
  Random random(41);
  const ZoneScope before("UTC0");
  const Instants instants;
  for (int run = 0; run < 60; ++run) {
    const std::time_t about = 1700000000 + random.Between(-400, 400) * 86400;
    const TestClock clock(about);
    std::vector<Event> owned;
    for (unsigned long id = 1; id <= 6; ++id) {
      owned.push_back(RandomEvent(id, about, instants, random));
    }
    plain::Table events;
    for (Event& event : owned) events[event.eventid] = &event;
    RuleTable rules;
    for (int i = 0; i < 30; ++i) {
      const std::time_t instant = about + random.Between(-5, 5) * 86400 + random.Between(0, 86400);
      const int minute = static_cast<int>(random.Between(0, 1439));
      ChangeZone(random);
      const AssertLines lines;
      Answers agent;
      // Any of them may be the first to see the change.
      const long long order = random.Between(0, 3);
      for (long long part = order; part < order + 4; ++part) {
        if (part % 4 == 0) local_time::Fields(instant, &agent.fields);
        if (part % 4 == 1) agent.instant = local_time::Instant(2023, 11, 5, 0, minute, 0, -1);
        if (part % 4 == 2) agent.eventTime = owned[0].EventTime(VxTime(instant)).Seconds();
        if (part % 4 == 3) {
          for (const Event* event : rules.FindOnDate(events, VxTime(instant))) {
            agent.ids.push_back(event->eventid);
          }
        }
      }
      plain::Records records;
      std::tm fields{};
      plain::Fields(instant, &fields);
      const char* const zone = std::getenv("TZ");
      SCOPED_TRACE(testing::Message() << (zone == nullptr ? "no zone" : zone) << ", run " << run
                                      << ", change " << i << ", order " << order);
      ASSERT_EQ(agent.fields.tm_gmtoff, fields.tm_gmtoff);
      ASSERT_EQ(agent.fields.tm_hour, fields.tm_hour);
      ASSERT_EQ(agent.fields.tm_mday, fields.tm_mday);
      ASSERT_STREQ(agent.fields.tm_zone, fields.tm_zone);
      ASSERT_EQ(agent.instant, plain::Instant(2023, 11, 5, 0, minute, 0, -1));
      ASSERT_EQ(agent.eventTime, plain::EventTime(owned[0], instant, &records))
          << Describe(owned[0]);
      ASSERT_EQ(agent.ids, plain::IdsOnDate(events, instant, &records));
    }
  }
  unsetenv("VEXALINK_TEST_A");
  unsetenv("VEXALINK_TEST_B");
}

TEST(ZoneChange, IsSeenWhenAHoldHasEnded) {
  const ZoneScope before("UTC0");
  {
    const local_time::ZoneHold hold;
    EXPECT_EQ(VxTime(1700000000).GetHour(), 22);
    setenv("TZ", "EST5EDT,M3.2.0,M11.1.0", 1);
  }
  EXPECT_EQ(VxTime(1700000000).GetHour(), 17);
}

TEST(PresentMoment, IsThatOfTheHoldWhileThereIsOne) {
  TestClock clock(1700000000);
  {
    const local_time::ZoneHold hold;
    clock.Advance(5);
    const local_time::ZoneHold inner;
    EXPECT_EQ(local_time::Present(), 1700000000);
  }
  EXPECT_EQ(local_time::Present(), 1700000005);
}
