// Today's schedule: what is on it, when it fires, and when the day changes.

#include <cstdlib>
#include <set>

#include "tests/vexalink_agent_scheduler/AgentHelp.h"

namespace {

class Schedule : public AgentTest {
 protected:
  Schedule() { Start(); }

  // Events of these minutes, ids from 1 on, loaded at the present moment.
  void Load(const std::vector<int>& minutes) {
    unsigned long id = 0;
    for (const int minute : minutes) {
      ++id;
      agent->AddEvent(DailyXml(id, "e" + std::to_string(id), minute), false, false);
    }
  }
  // Today's list: "2@8:00 1@9:00".
  std::string Today() {
    host.TakeCalls();
    agent->DumpTodaysEvents();
    std::string list;
    for (const std::string& line : host.TakeCalls()) {
      const std::size_t at = line.find(" will fire at ");
      if (at == std::string::npos) continue;
      const std::size_t id = line.find("Event: ") + 7;
      if (!list.empty()) list += " ";
      list += line.substr(id, line.find(' ', id) - id) + "@" + line.substr(at + 14);
    }
    return list;
  }
};

TEST_F(Schedule, IsInTheOrderOfTimeThenOfScheduling) {
  Load({600, 480, 600, 540, 480});
  EXPECT_EQ(Today(), "2@8:0 5@8:0 4@9:0 1@10:0 3@10:0");
}

TEST_F(Schedule, LeavesOutWhatIsNotInTheFuture) {
  Load({419, 420, 421});  // it is 7:00
  EXPECT_EQ(Today(), "3@7:1");
  agent->CalculateTodaysEvents(/*skipPast=*/true);
  EXPECT_EQ(Today(), "3@7:1");
  agent->CalculateTodaysEvents(/*skipPast=*/false);
  EXPECT_EQ(Today(), "1@6:59 2@7:0 3@7:1");
}

TEST_F(Schedule, FiresToTheSecond) {
  Load({480});
  EXPECT_TRUE(TickAt("2024-03-06 07:59:59").empty());
  EXPECT_EQ(TickAt("2024-03-06 08:00:00"), Firing(1, "e1"));
  EXPECT_TRUE(TickAt("2024-03-06 08:00:01").empty()) << "once";
}

TEST_F(Schedule, FiresAllThatIsDueInTheOrderOfTheList) {
  Load({600, 480, 600, 540});
  EXPECT_EQ(TickAt("2024-03-06 10:00:00"),
            Firing(2, "e2") + Firing(4, "e4") + Firing(1, "e1") + Firing(3, "e3"));
}

TEST_F(Schedule, ATickOfAnotherTimerIsIgnored) {
  Load({480});
  clock.Set("2024-03-06 08:00:00");
  host.TakeCalls();
  agent->OnTimerExpired(host.lastTimer + 1, 0);
  agent->OnTimerExpired(0, 0);
  EXPECT_TRUE(host.TakeCalls().empty());
  EXPECT_EQ(Tick(), Firing(1, "e1"));
}

TEST_F(Schedule, WithoutABindMessageOnlyTheCallsAreLeftOut) {
  Load({480});
  host.givesBindMessage = false;
  EXPECT_EQ(TickAt("2024-03-06 08:00:00"),
            (Lines{"FireEvent 1", "LogMessage 7 Scheduler Event 1, e1", "CreateBindMessage"}));
  EXPECT_TRUE(Tick().empty());
}

TEST_F(Schedule, ANewEventWhoseTimeHasPassedWaitsForTomorrow) {
  Load({360});
  EXPECT_TRUE(TickAt("2024-03-06 23:59:59").empty());
  TickAt("2024-03-07 00:00:00");
  EXPECT_EQ(TickAt("2024-03-07 06:00:00"), Firing(1, "e1"));
}

TEST_F(Schedule, AnEventThatDoesNotHappenTodayIsNotOnIt) {
  agent->AddDaysOfWeekEvent("Thursdays", 1U << 4, 720);
  EXPECT_EQ(Today(), "");
  TickAt("2024-03-07 00:00:00");
  EXPECT_EQ(Today(), "1@12:0");
}

TEST_F(Schedule, ATimeOnAnotherDayIsScheduledFromThisDaysList) {
  Load({1500, -60});
  EXPECT_EQ(Today(), "1@1:0") << "1:00 tomorrow; 23:00 yesterday has passed";
  TickAt("2024-03-06 23:59:59");
  TickAt("2024-03-07 00:00:00");
  EXPECT_EQ(Today(), "2@23:0 1@1:0") << "today's, which replace what was pending";
}

TEST_F(Schedule, TheTraceHasNoLeadingZeros) {
  agent->AddEvent(DailyXml(3, "Porch &amp; hall", 425), false, false);
  host.TakeCalls();
  agent->DumpTodaysEvents();
  EXPECT_EQ(host.TakeCalls(),
            (Lines{"LogMessage 7 SCHEDULE_TRACE:  For: 3/6/2024",
                   "LogMessage 7 SCHEDULE_TRACE:  Event: 3 (Porch & hall) will fire at 7:5"}));
}

TEST_F(Schedule, RandomTimesLieWithinTheSpread) {
  agent->AddEvent(DailyXml(1, "spread", 720), false, false);
  std::set<std::time_t> offsets;
  std::list<Event*> today;
  agent->GetEventsOnDate(VxTime::GetCurrentTime(), &today);
  Event* const event = today.front();
  event->randomize = 5;
  const std::time_t noon = Local("2024-03-06 12:00:00");
  for (int i = 0; i < 2000; ++i) {
    agent->CalculateTodaysEvents(true);
    offsets.insert(event->next_fire.Seconds() - noon);
  }
  EXPECT_EQ(offsets.size(), 11U) << "every whole minute from -5 to 5";
  EXPECT_EQ(*offsets.begin(), -300);
  EXPECT_EQ(*offsets.rbegin(), 300);
}

TEST_F(Schedule, FollowsTheLibrarysRandomNumbers) {
  agent->AddEvent(DailyXml(1, "spread", 720), false, false);
  std::list<Event*> today;
  agent->GetEventsOnDate(VxTime::GetCurrentTime(), &today);
  const std::time_t noon = Local("2024-03-06 12:00:00");
  for (const int spread : {1, 5, 60, 1000000, 2147483647}) {
    today.front()->randomize = spread;
    std::srand(99);
    const long long drawn = std::rand();
    std::srand(99);
    agent->CalculateTodaysEvents(/*skipPast=*/false);
    EXPECT_EQ(today.front()->next_fire.Seconds() - noon, (drawn % (2LL * spread + 1) - spread) * 60)
        << spread;
  }
}

TEST_F(Schedule, DrawsNoNumberWithoutASpread) {
  for (const int spread : {0, -1, -2147483647 - 1}) {
    auto* const event = new Event(1, "none", 0, 0);
    event->start = VxTime(Local("2024-03-06"));
    event->EndDate(NeverTime);
    event->offset_minutes = 720;
    event->randomize = spread;
    std::srand(7);
    const int first = std::rand();
    std::srand(7);
    agent->AddEvent(event, false, false);
    EXPECT_EQ(Today(), "1@12:0");
    EXPECT_EQ(std::rand(), first) << spread;
    agent->ClearAllEvents();
  }
}

TEST_F(Schedule, DrawsForWhatIsThenLeftOut) {
  auto* const event = new Event(1, "past", 0, 0);
  event->start = VxTime(Local("2024-03-06"));
  event->EndDate(NeverTime);
  event->offset_minutes = 60;
  event->randomize = 5;
  std::srand(7);
  std::rand();
  const int second = std::rand();
  std::srand(7);
  agent->AddEvent(event, false, false);
  EXPECT_EQ(Today(), "");
  EXPECT_EQ(std::rand(), second);
  EXPECT_EQ(event->next_fire, VxTime()) << "what is left out keeps its time";
}

TEST_F(Schedule, GetEventsOnDateReplacesTheListInTheOrderOfIds) {
  Load({600, 480, 540});
  std::list<Event*> day{nullptr, nullptr};
  agent->GetEventsOnDate(VxTime(Local("2024-03-10")), &day);
  std::vector<unsigned long> ids;
  for (const Event* event : day) ids.push_back(event->eventid);
  EXPECT_EQ(ids, (std::vector<unsigned long>{1, 2, 3}));
  agent->GetEventsOnDate(VxTime(Local("2024-02-10")), &day);
  EXPECT_TRUE(day.empty());
}

TEST_F(Schedule, KeepsAThousandEventsInOrder) {
  for (unsigned long id = 1; id <= 1000; ++id) {
    agent->AddEvent(DailyXml(id, "e" + std::to_string(id), 430 + static_cast<int>(id * 7919 % 900)),
                    false, false);
  }
  const Lines fired = TickAt("2024-03-06 23:59:59");
  EXPECT_EQ(fired.size(), 5000U);
  int before = 0;
  unsigned long idBefore = 0;
  for (const std::string& line : fired) {
    if (line.rfind("FireEvent ", 0) != 0) continue;
    const unsigned long id = std::stoul(line.substr(10));
    const int minute = 430 + static_cast<int>(id * 7919 % 900);
    EXPECT_TRUE(minute > before || (minute == before && id > idBefore)) << line;
    before = minute;
    idBefore = id;
  }
}

class DayChange : public Schedule {
 protected:
  // Whether a tick at this moment works out a new day.
  bool ChangesAt(const std::string& local) {
    for (const std::string& line : TickAt(local)) {
      if (line.find("SCHEDULE_TRACE") != std::string::npos) return true;
    }
    return false;
  }
};

TEST_F(DayChange, BuildsTheNewDayAndWritesTheTrace) {
  Load({480, 420});
  TickAt("2024-03-06 23:59:59");
  EXPECT_EQ(TickAt("2024-03-07 00:00:00"),
            (Lines{"LogMessage 7 SCHEDULE_TRACE:  For: 3/7/2024",
                   "LogMessage 7 SCHEDULE_TRACE:  Event: 2 (e2) will fire at 7:0",
                   "LogMessage 7 SCHEDULE_TRACE:  Event: 1 (e1) will fire at 8:0"}));
  EXPECT_TRUE(Tick().empty()) << "once";
}

TEST_F(DayChange, FiresWhatIsPendingThenDropsTheRest) {
  Load({1500, 480});
  const Lines calls = TickAt("2024-03-07 00:30:00");
  ASSERT_GE(calls.size(), 5U);
  EXPECT_EQ(Lines(calls.begin(), calls.begin() + 5), Firing(2, "e2"));
  EXPECT_EQ(Today(), "2@8:0 1@1:0") << "1:00 of the 8th, yesterday's 1:00 is dropped";
}

TEST_F(DayChange, SchedulesWhatHasPassedAlready) {
  Load({480});
  Lines calls = TickAt("2024-03-08 09:00:00");  // the controller slept
  EXPECT_EQ(Lines(calls.begin(), calls.begin() + 5), Firing(1, "e1")) << "that of the 6th";
  EXPECT_EQ(Tick(), Firing(1, "e1")) << "that of today, on the next tick";
  EXPECT_TRUE(Tick().empty());
}

// A later date changes the day; an earlier one does where one of year, month and day is greater.
TEST_F(DayChange, ComparesFieldByField) {
  const struct {
    const char* why;
    const char* scheduled;
    const char* now;
    bool changes;
  } rows[] = {
      {"the next day", "2024-03-10 12:00:00", "2024-03-11 00:00:00", true},
      {"the same day", "2024-03-10 12:00:00", "2024-03-10 23:59:59", false},
      {"the first of the next month", "2024-03-31 12:00:00", "2024-04-01 00:00:00", true},
      {"the first of the next year", "2023-12-31 12:00:00", "2024-01-01 00:00:00", true},
      {"set back to a greater day", "2024-03-10 12:00:00", "2024-02-15 12:00:00", true},
      {"set back to a smaller day", "2024-03-10 12:00:00", "2024-02-05 12:00:00", false},
      {"set back to the same day of another month", "2024-03-10 12:00:00", "2024-02-10 12:00:00",
       false},
      {"set back by a day", "2024-03-10 12:00:00", "2024-03-09 12:00:00", false},
      {"set back by a year to a greater month", "2024-03-10 12:00:00", "2023-11-05 12:00:00", true},
      {"set back by a year to a smaller month and day", "2024-03-10 12:00:00",
       "2023-02-05 12:00:00", false},
      {"set back by hours", "2024-03-10 12:00:00", "2024-03-10 00:00:00", false},
  };
  for (const auto& row : rows) {
    clock.Set(row.scheduled);
    Start();
    EXPECT_EQ(ChangesAt(row.now), row.changes) << row.why;
    EXPECT_FALSE(ChangesAt(row.now)) << row.why << ": the day is now this one";
  }
}

TEST_F(DayChange, FollowsTheLocalDate) {
  const ZoneScope newYork(zones::kNewYork);
  clock.Set("2024-03-06 23:00:00");
  Start();
  EXPECT_FALSE(ChangesAt("2024-03-06 23:59:59")) << "in Greenwich it is the 7th";
  EXPECT_TRUE(ChangesAt("2024-03-07 00:00:00"));
}

TEST_F(DayChange, ComesOnceInANightOfAClockChange) {
  const ZoneScope zoneOfMidnight(zones::kMidnight);
  clock.Set("2024-02-17 22:00:00");  // at midnight the clocks go back to 23:00
  Start();
  int changes = 0;
  for (int minute = 0; minute < 6 * 60; ++minute) {
    clock.Advance(60);
    for (const std::string& line : Tick()) {
      if (line.find("For: ") != std::string::npos) ++changes;
    }
  }
  EXPECT_EQ(changes, 1);
}

}  // namespace
