// What happens over a span of days.

#include <chrono>

#include "tests/vexalink_agent_scheduler/AgentHelp.h"

namespace {

class Occurrences : public AgentTest {
 protected:
  Occurrences() { Start(); }

  // Of days "2024-03-06", as entries "1@2024-3-6 12:0".
  Lines List(const std::string& from, const std::string& to) {
    return Entries(Ask(from.substr(0, 4), from.substr(5, 2), from.substr(8), to.substr(0, 4),
                       to.substr(5, 2), to.substr(8)));
  }
  vx::auto_com<VxXML::INode> Ask(const std::string& fromYear, const std::string& fromMonth,
                                 const std::string& fromDay, const std::string& toYear,
                                 const std::string& toMonth, const std::string& toDay) {
    return agent->UIRequest(TestCommand("GET_EVENT_OCCURENCES", {{"FROM_YEAR", fromYear},
                                                                 {"FROM_MONTH", fromMonth},
                                                                 {"FROM_DAY", fromDay},
                                                                 {"TO_YEAR", toYear},
                                                                 {"TO_MONTH", toMonth},
                                                                 {"TO_DAY", toDay}}));
  }
  static Lines Entries(const vx::auto_com<VxXML::INode>& list) {
    Lines lines;
    for (const VxXML::INode* entry = list->GetFirstChild(); entry != nullptr;
         entry = entry->GetNextSibling()) {
      const VxXML::INode& time = *entry->GetChild("event_time");
      lines.push_back(entry->GetText("eventid") + "@" + time.GetText("year") + "-" +
                      time.GetText("month") + "-" + time.GetText("day") + " " +
                      time.GetText("hour") + ":" + time.GetText("min"));
    }
    return lines;
  }
  void Load(unsigned long id, int minutes) {
    agent->AddEvent(DailyXml(id, "e" + std::to_string(id), minutes), false, false);
  }
};

TEST_F(Occurrences, AreWrittenInTheirElements) {
  agent->AddEvent(DailyXml(7, "Porch &amp; hall", 425), false, false);
  EXPECT_EQ(Ask("2024", "3", "6", "2024", "3", "6")->ToString(),
            "<events><event><eventid>7</eventid><description>Porch &amp; hall</description>"
            "<event_time><year>2024</year><month>3</month><day>6</day><hour>7</hour><min>5</min>"
            "</event_time></event></events>");
}

TEST_F(Occurrences, IncludeBothEnds) {
  Load(1, 720);
  EXPECT_EQ(List("2024-03-06", "2024-03-06"), Lines{"1@2024-3-6 12:0"});
  EXPECT_EQ(List("2024-03-31", "2024-04-01"), (Lines{"1@2024-3-31 12:0", "1@2024-4-1 12:0"}));
}

TEST_F(Occurrences, OfAnEmptyOrReversedSpanAreNone) {
  EXPECT_EQ(Ask("2024", "3", "6", "2024", "3", "9")->ToString(), "<events/>") << "no events";
  Load(1, 720);
  EXPECT_TRUE(List("2024-03-07", "2024-03-06").empty());
  EXPECT_TRUE(List("2024-04-01", "2024-03-06").empty());
  EXPECT_TRUE(List("2025-01-01", "2024-12-31").empty());
  EXPECT_TRUE(List("2024-02-01", "2024-02-29").empty()) << "before it begins";
}

TEST_F(Occurrences, AreDayByDayInTheOrderOfIds) {
  Load(2, 480);
  Load(1, 720);
  EXPECT_EQ(List("2024-03-06", "2024-03-07"),
            (Lines{"1@2024-3-6 12:0", "2@2024-3-6 8:0", "1@2024-3-7 12:0", "2@2024-3-7 8:0"}));
}

TEST_F(Occurrences, SkipDaysOnWhichNothingHappens) {
  agent->AddEveryXDaysEvent("every fifth", 5, 720);
  EXPECT_EQ(List("2024-03-01", "2024-03-20"),
            (Lines{"1@2024-3-7 12:0", "1@2024-3-12 12:0", "1@2024-3-17 12:0"}))
      << "it begins at 7:00 of the 6th, and its steps are counted to each midnight: that of the "
         "6th comes before it, that of the 7th in its first step, that of the 12th in its sixth";
}

TEST_F(Occurrences, TellTheDayTheyBelongToAndTheTimeTheyFire) {
  Load(1, 1500);
  Load(2, -60);
  EXPECT_EQ(List("2024-03-06", "2024-03-06"), (Lines{"1@2024-3-6 1:0", "2@2024-3-6 23:0"}));
}

TEST_F(Occurrences, AreNotRandomised) {
  auto* const event = new Event(1, "spread", 0, 0);
  event->start = VxTime(Local("2024-03-01"));
  event->EndDate(NeverTime);
  event->frequency = Scheduler::kDaily;
  event->rate = 1;
  event->offset_minutes = 720;
  event->randomize = 600;
  agent->AddEvent(event, false, false);
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(List("2024-03-06", "2024-03-06"), Lines{"1@2024-3-6 12:0"});
  }
}

TEST_F(Occurrences, DaysOutOfRangeRollOver) {
  Load(1, 720);
  EXPECT_EQ(Entries(Ask("2024", "2", "30", "2024", "3", "1")), Lines{"1@2024-3-1 12:0"});
  EXPECT_EQ(Entries(Ask("2023", "15", "0", "2024", "3", "1")), Lines{"1@2024-3-1 12:0"});
  EXPECT_TRUE(Entries(Ask("", "", "", "", "", "")).empty());
}

// The step from day to day is 86400 seconds, from local midnight.
TEST_F(Occurrences, ShowTheDayOfTheChangeBackTwice) {
  const ZoneScope newYork(zones::kNewYork);
  Load(1, 720);
  EXPECT_EQ(List("2024-11-02", "2024-11-04"), (Lines{"1@2024-11-2 12:0", "1@2024-11-3 12:0",
                                                     "1@2024-11-3 12:0", "1@2024-11-4 12:0"}));
}

TEST_F(Occurrences, GoOnAtOneAfterTheChangeForward) {
  const ZoneScope newYork(zones::kNewYork);
  Load(1, 720);
  EXPECT_EQ(List("2024-03-09", "2024-03-11"),
            (Lines{"1@2024-3-9 12:0", "1@2024-3-10 12:0", "1@2024-3-11 12:0"}));
}

TEST_F(Occurrences, AlsoWhereTheLastHourComesTwice) {
  const ZoneScope midnight(zones::kMidnight);
  agent->AddEvent(
      "<event><eventid>1</eventid><start><offset_minutes>720</offset_minutes>"
      "<start_date><start_day>1</start_day><start_month>2</start_month>"
      "<start_year>2024</start_year></start_date></start><repeat>"
      "<frequency>1</frequency><rate>1</rate></repeat></event>",
      false, false);
  EXPECT_EQ(List("2024-02-16", "2024-02-18"), (Lines{"1@2024-2-16 12:0", "1@2024-2-17 12:0",
                                                     "1@2024-2-17 12:0", "1@2024-2-18 12:0"}));
}

TEST_F(Occurrences, RecordWhatEachDayRecords) {
  agent->AddEveryXDaysEvent("never", 0, 720);
  auto* const event = new Event(9, "unknown base", 0, 0);
  event->start = VxTime(Local("2024-03-07"));
  event->EndDate(NeverTime);
  event->frequency = Scheduler::kDaily;
  event->rate = 1;
  event->offset = static_cast<Scheduler::OFFSET_TYPE>(3);
  agent->AddEvent(event, false, false);
  const AssertLines asserts;
  EXPECT_EQ(List("2024-03-06", "2024-03-08"), (Lines{"9@2024-3-7 0:0", "9@2024-3-8 0:0"}));
  EXPECT_EQ(asserts.lines, (std::vector<int>{363, 233, 363, 233}))
      << "on the 6th midnight lies before the start of the one and the other";
}

TEST_F(Occurrences, UpToTheYear9999AreAnsweredAtOnce) {
  Load(1, 720);
  agent->AddEveryXDaysEvent("rare", 1000000, 720);
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(List("2038-01-17", "9999-12-31"), (Lines{"1@2038-1-17 12:0", "1@2038-1-18 12:0"}));
  EXPECT_TRUE(List("2038-01-20", "9999-12-31").empty());
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
}

TEST_F(Occurrences, ChangeNothing) {
  Load(1, 720);
  const std::string state = State();
  host.TakeCalls();
  List("2024-01-01", "2025-12-31");
  EXPECT_TRUE(host.TakeCalls().empty());
  EXPECT_EQ(State(), state);
  EXPECT_EQ(TickAt("2024-03-06 12:00:00"), Firing(1, "e1"));
}

}  // namespace
