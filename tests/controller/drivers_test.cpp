// The live host with the real scheduler on it.

#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "TempFolder.h"
#include "controller/Clock.h"
#include "controller/Committer.h"
#include "controller/DriverInstance.h"
#include "controller/EventElement.h"
#include "controller/LiveDriverHost.h"
#include "controller/ProjectVariables.h"
#include "vexalink_agent_scheduler/vxw/IAgentScheduler.h"

namespace controller {
namespace {

using testing::HasSubstr;

constexpr std::time_t kMidnight = 1709683200;  // 2024-03-06 00:00:00 UTC

/// Keeps what the scheduler does, with the time of day in minutes.
class Recorder final : public IHostObserver {
 public:
  void OnEventFired(IDriver&, unsigned long eventId) override {
    fired.emplace_back(eventId, (Clock::Now() - kMidnight) / 60);
  }
  void OnBoundCall(IDriver&, unsigned long, const IBindMessage& message) override {
    calls.push_back(message.GetCommand() + ' ' + std::to_string(message.GetArgument()));
  }
  void OnUiData(IDriver&, const VxXML::INode& data) override { shown.emplace_back(data.GetName()); }
  void OnStateInvalidated(IDriver&) override { ++invalidated; }
  void OnProgrammingDropped(IDriver&, unsigned long ownerId, int kind) override {
    dropped.emplace_back(ownerId, kind);
  }
  bool OnTickBegins(IDriver&) override { return true; }
  void OnTickEnded(IDriver&) override { ++ticks; }
  void OnDriverLog(IDriver&, unsigned int, const char*) override { ++logged; }

  std::vector<std::pair<unsigned long, long>> fired;
  std::vector<std::string> calls;
  std::vector<std::string> shown;
  int invalidated = 0;
  int ticks = 0;
  int logged = 0;
  std::vector<std::pair<unsigned long, int>> dropped;
};

class DriversTest : public testing::Test {
 protected:
  DriversTest() {
    std::string error;
    loader = DriverLoader::Open(VEXALINK_AGENT, &error);
    if (loader == nullptr) throw std::runtime_error(error);
    Clock::Freeze(kMidnight);
  }
  ~DriversTest() override { Clock::Release(); }

  std::unique_ptr<DriverInstance> Start(const std::optional<std::string>& persisted = {}) {
    auto driver = std::make_unique<DriverInstance>(*loader, host);
    driver->Initialize(kSchedulerDevice, persisted);
    return driver;
  }
  IAgentScheduler& Interface() {
    return *static_cast<IAgentScheduler*>(host.FindQuery(kAgentSchedulerIid));
  }
  /// A tick a minute, `from` and `to` included, in minutes of the day.
  void TickThrough(long from, long to) {
    for (long minute = from; minute <= to; ++minute) {
      Clock::Freeze(kMidnight + minute * 60);
      host.ExpireTimers();
    }
  }

  const EnvironmentScope zone{"TZ", "UTC0"};
  const EventBase base = MakeEventBase();
  DaySeed seed{"a project"};
  Recorder recorder;
  LiveDriverHost host{base.get(), seed, recorder};
  std::unique_ptr<DriverLoader> loader;
};

TEST_F(DriversTest, AnEventFiresWithItsBoundCalls) {
  const auto driver = Start();
  EXPECT_EQ(Interface().AddDailyEvent("Porch", 7, 0), 1u);
  TickThrough(0, 600);
  EXPECT_THAT(recorder.fired, testing::ElementsAre(std::pair(1ul, 420l)));
  EXPECT_THAT(recorder.calls, testing::ElementsAre("DO_PUSH 1", "DO_CLICK 1"));
}

TEST_F(DriversTest, CommandsAreShownAndInvalidateTheState) {
  const auto driver = Start();
  EventElement event;
  event.description = "Once";
  event.start = {2024, 3, 6};
  driver->Command("ADD_EVENT", {{"EVENT_XML", MakeEventElement(event)->ToString()}});
  driver->Command("DELETE_EVENT", {{"EVENT_ID", "1"}});
  EXPECT_THAT(recorder.shown, testing::ElementsAre("event_added", "event_deleted"));
  EXPECT_EQ(recorder.invalidated, 2);
  EXPECT_THAT(recorder.dropped, testing::ElementsAre(std::pair(1ul, 3)));
}

TEST_F(DriversTest, TheFirstDayKnowsThePlace) {
  host.SetVariable(kProjectDevice, kLatitudeVariable, "52.5");
  host.SetVariable(kProjectDevice, kLongitudeVariable, "13.4");
  const auto driver = Start(
      "<events><event><eventid>4</eventid><description>Sun</description><start><offset>1</offset>"
      "<start_date><start_day>1</start_day><start_month>1</start_month><start_year>2024</"
      "start_year>"
      "</start_date></start><repeat><frequency>1</frequency><rate>1</rate></repeat></event></"
      "events>");
  TickThrough(0, 1439);
  ASSERT_EQ(recorder.fired.size(), 1u);
  // Berlin, 6 March 2024: sunrise at 06:39 CET by the almanac, 05:39 UTC.
  EXPECT_NEAR(static_cast<double>(recorder.fired[0].second), 339, 6);
}

TEST_F(DriversTest, AVariableThatChangesIsTold) {
  const auto driver = Start();
  host.SetVariable(kProjectDevice, kLatitudeVariable, "0");
  const auto before =
      driver->Request("GET_SUNRISE_SUNSET", {{"DAY", "21"}, {"MONTH", "6"}, {"YEAR", "2024"}});
  host.SetVariable(kProjectDevice, kLatitudeVariable, "52");
  const auto after =
      driver->Request("GET_SUNRISE_SUNSET", {{"DAY", "21"}, {"MONTH", "6"}, {"YEAR", "2024"}});
  ASSERT_TRUE(before && after);
  EXPECT_NE(before->ToString(), after->ToString());
}

TEST_F(DriversTest, ADriverThatHasGoneLeavesNothingBehind) {
  auto driver = Start();
  EXPECT_NE(host.FindQuery(kAgentSchedulerIid), nullptr);
  const IDriver* address = &driver->Driver();
  driver.reset();
  host.Forget(address);
  EXPECT_EQ(host.FindQuery(kAgentSchedulerIid), nullptr);
  host.ExpireTimers();
  host.SetVariable(kProjectDevice, kLatitudeVariable, "1");
  const auto next = Start();
  EXPECT_NE(host.FindQuery(kAgentSchedulerIid), nullptr);
}

/// Forty events at noon, each with a spread of three hours.
std::string SpreadEvents() {
  auto events = VxXML::CreateXmlNode("events", "");
  for (unsigned long id = 1; id <= 40; ++id) {
    EventElement event;
    event.eventid = id;
    event.description = "Lamp " + std::to_string(id);
    event.offset_minutes = 720;
    event.randomize = 180;
    event.start = {2024, 1, 1};
    event.frequency = 1;
    event.rate = 1;
    events->AddChild(*MakeEventElement(event));
  }
  return events->ToString();
}

TEST_F(DriversTest, ARestartDoesNotDrawTheDayAnew) {
  Clock::Freeze(kMidnight - 60);
  auto driver = Start(SpreadEvents());
  recorder.fired.clear();
  TickThrough(0, 1439);
  const auto whole = recorder.fired;
  ASSERT_EQ(whole.size(), 40u);
  const IDriver* address = &driver->Driver();
  driver.reset();
  host.Forget(address);

  Clock::Freeze(kMidnight + 720 * 60);
  recorder.fired.clear();
  std::srand(12345);  // whatever was drawn meanwhile
  driver = Start(SpreadEvents());
  TickThrough(720, 1439);
  std::vector<std::pair<unsigned long, long>> afternoon;
  for (const auto& fired : whole) {
    if (fired.second > 720) afternoon.push_back(fired);
  }
  ASSERT_GT(afternoon.size(), 5u);
  EXPECT_EQ(recorder.fired, afternoon);
}

TEST_F(DriversTest, AnotherDayIsDrawnAnew) {
  Clock::Freeze(kMidnight - 60);
  const auto driver = Start(SpreadEvents());
  recorder.fired.clear();
  TickThrough(0, 1439);
  const auto first = std::exchange(recorder.fired, {});
  TickThrough(1440, 2879);
  for (auto& [id, minute] : recorder.fired) minute -= 1440;
  EXPECT_EQ(recorder.fired.size(), 40u);
  EXPECT_NE(recorder.fired, first);
}

TEST_F(DriversTest, ADescriptionThatXmlCannotHoldDoesNotCostTheSchedule) {
  const TempFolder folder;
  ProjectStore store(folder / "project.db", ProjectStore::Use::kKeep);
  const auto driver = Start();
  Committer saver(
      base.get(), store, kSchedulerName, [&] { return driver->PersistText(); },
      [](const std::string&) {});
  Interface().AddDailyEvent("Porch", 7, 0);
  Interface().AddDailyEvent("Bell \x07 and \x1b[31m \xFF", 8, 0);
  testing::internal::CaptureStderr();
  ASSERT_TRUE(saver.SaveNow());
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              HasSubstr("3 characters that XML cannot hold"));
  const auto document = ParseXml(store.State(kSchedulerName)->xml, "the state");
  const VxXML::INode* event = document->GetRoot()->GetChild("events")->GetFirstChild();
  EXPECT_EQ(event->GetText("description"), "Porch");
  EXPECT_EQ(event->GetNextSibling()->GetText("description"),
            "Bell \xEF\xBF\xBD and \xEF\xBF\xBD[31m \xEF\xBF\xBD");
}

TEST_F(DriversTest, TimersTickByTheLoop) {
  const auto driver = Start();
  Interface().AddDailyEvent("Soon", 0, 1);
  Clock::Freeze(kMidnight + 60);
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (recorder.fired.empty() && std::chrono::steady_clock::now() < end) {
    event_base_loop(base.get(), EVLOOP_ONCE);
  }
  EXPECT_EQ(recorder.fired.size(), 1u);
}

TEST(DriverTimers, TickShortlyAfterTheSecond) {
  const struct {
    const char* why;
    long interval;
    long wall;
    long delay;
  } rows[] = {
      {"just ticked", 1000, 20, 1000},
      {"ticked late", 1000, 700, 320},
      {"very late: the second that begins is not left out", 1000, 999, 21},
      {"early: into the next second", 1000, 0, 1020},
      {"several seconds", 5000, 500, 4520},
      {"no whole second: as it is", 250, 700, 250},
      {"no whole second: as it is", 1500, 700, 1500},
  };
  for (const auto& row : rows) EXPECT_EQ(DelayToTick(row.interval, row.wall), row.delay) << row.why;
}

TEST(DriverTimers, MayBeKilledByTheirOwnExpiry) {
  const EventBase base = MakeEventBase();
  DriverTimers timers(base.get());
  int ticks = 0;
  unsigned long id = 0;
  id = timers.Add(1, [&](unsigned long expired) {
    ++ticks;
    timers.Kill(expired);
  });
  EXPECT_EQ(id, 1u);
  event_base_dispatch(base.get());
  EXPECT_EQ(ticks, 1);
  timers.ExpireAll();
  EXPECT_EQ(ticks, 1);
}

TEST(DriverTimers, RefuseIntervalsThatMakeNoSense) {
  const EventBase base = MakeEventBase();
  DriverTimers timers(base.get());
  EXPECT_EQ(timers.Add(0, [](unsigned long) {}), 0u);
  EXPECT_EQ(timers.Add(86400001, [](unsigned long) {}), 0u);
  EXPECT_EQ(timers.Add(86400000, [](unsigned long) {}), 1u);
}

TEST(LoopQueue, RunsWhatIsPostedInOrderAndAfterwards) {
  const EventBase base = MakeEventBase();
  LoopQueue queue(base.get());
  std::vector<int> ran;
  queue.Post([&] {
    ran.push_back(1);
    queue.Post([&] { ran.push_back(3); });
  });
  queue.Post([&] { ran.push_back(2); });
  EXPECT_TRUE(ran.empty());
  event_base_dispatch(base.get());
  EXPECT_THAT(ran, testing::ElementsAre(1, 2, 3));
}

TEST(DaySeed, DiffersByDayAndByProject) {
  EXPECT_EQ(SeedOfDay("a", 20240306), SeedOfDay("a", 20240306));
  EXPECT_NE(SeedOfDay("a", 20240306), SeedOfDay("a", 20240307));
  EXPECT_NE(SeedOfDay("a", 20240306), SeedOfDay("b", 20240306));
}

}  // namespace
}  // namespace controller
