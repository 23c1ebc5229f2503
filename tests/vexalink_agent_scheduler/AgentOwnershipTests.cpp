// Who owns what: records that are set aside, and the order in which deletion takes things out. To
// be run with the address sanitizer.

#include <random>

#include "tests/vexalink_agent_scheduler/AgentHelp.h"

namespace {

class AgentOwnership : public AgentTest {
 protected:
  AgentOwnership() { Start(); }

  void Load(unsigned long id, const std::string& description, int minutes) {
    const AssertLines ignored;
    agent->AddEvent(DailyXml(id, description, minutes), /*assignNewId=*/false,
                    /*registerButton=*/false);
  }
};

TEST_F(AgentOwnership, ARecordSetAsideFiresOnItsDayAndNotOnTheNext) {
  Load(1, "table", 480);
  Load(1, "aside", 540);
  EXPECT_EQ(TickAt("2024-03-06 08:00:00"), Firing(1, "table"));
  EXPECT_EQ(TickAt("2024-03-06 09:00:00"), Firing(1, "aside"));
  TickAt("2024-03-07 00:00:00");
  EXPECT_EQ(TickAt("2024-03-07 12:00:00"), Firing(1, "table"));
}

TEST_F(AgentOwnership, DeletionTakesTheFirstOfTodaysEntriesWithItsId) {
  Load(1, "table", 600);
  Load(1, "aside", 540);  // fires first, so stands first
  agent->DeleteEvent(1);
  // The first entry is that of the record set aside; the record of the table goes with its entry.
  EXPECT_TRUE(TickAt("2024-03-06 12:00:00").empty());
}

TEST_F(AgentOwnership, DeletionLeavesTheRecordSetAsideWhereTheTablesStandsFirst) {
  Load(1, "table", 540);
  Load(1, "aside", 600);
  agent->DeleteEvent(1);
  EXPECT_EQ(TickAt("2024-03-06 12:00:00"), Firing(1, "aside")) << "never dangling";
}

TEST_F(AgentOwnership, DeletionOfAnIdThatOnlyFiresTakesOneEntryAtATime) {
  Load(1, "table", 540);
  Load(1, "aside", 600);
  Load(1, "aside too", 660);
  agent->DeleteEvent(1);
  EXPECT_FALSE(agent->DoesEventExist(1));
  agent->DeleteEvent(1);  // the table has none any more, today's list has two
  EXPECT_EQ(TickAt("2024-03-06 12:00:00"), Firing(1, "aside too"));
}

TEST_F(AgentOwnership, ANewRecordOfADeletedIdStandsBesideTheOneSetAside) {
  Load(1, "table", 540);
  Load(1, "aside", 600);
  agent->DeleteEvent(1);
  Load(1, "new", 660);
  EXPECT_EQ(TickAt("2024-03-06 12:00:00"), Firing(1, "aside") + Firing(1, "new"));
}

TEST_F(AgentOwnership, ARefusedDuplicateIsNotLeaked) {
  agent->AddDailyEvent("same", 8, 0);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(agent->AddDailyEvent("same", 9, 0), 0U);
  EXPECT_EQ(agent->AddEvent(new Event(0, "none", 0, 0), false, false), 0U);
}

TEST_F(AgentOwnership, RecordsSetAsideGoWithTheAgent) {
  for (int i = 0; i < 100; ++i) Load(1, "one of many", 480 + i);
  agent.reset();
}

TEST_F(AgentOwnership, ClearingForgetsWhatWasSetAside) {
  Load(1, "table", 540);
  Load(1, "aside", 600);
  agent->ClearAllEvents();
  EXPECT_TRUE(TickAt("2024-03-06 12:00:00").empty());
}

TEST_F(AgentOwnership, ADeletedEventsNodeOutlivesIt) {
  agent->AddDailyEvent("Porch", 8, 0);
  const auto node = agent->GetEvent(1);
  agent->DeleteEvent(1);
  EXPECT_EQ(node->GetText("description"), "Porch");
}

// Anything in any order: no leak, nothing dangling, no id 0, and whatever fires was put there.
TEST_F(AgentOwnership, SurvivesAnyOrderOfChanges) {
  std::mt19937 random(5);
  const AssertLines ignored;
  for (int i = 0; i < 20000; ++i) {
    const unsigned long id = random() % 12;
    const int minutes = static_cast<int>(random() % 1440);
    const std::string description = "d" + std::to_string(random() % 6);
    switch (random() % 9) {
      case 0:
        agent->AddEvent(DailyXml(id, description, minutes), true, false);
        break;
      case 1:
        agent->AddEvent(DailyXml(id, description, minutes), false, true);
        break;
      case 2:
        agent->ModifyEvent(DailyXml(id, description, minutes));
        break;
      case 3:
        agent->DeleteEvent(id);
        break;
      case 4:
        agent->DeleteEvent(id, true);
        break;
      case 5:
        agent->AddDailyEvent(description, 7, static_cast<unsigned int>(minutes));
        break;
      case 6:
        clock.Advance(static_cast<std::time_t>(random() % 20000));
        Tick();
        break;
      case 7:
        State();
        break;
      default:
        if (random() % 50 == 0) agent->ClearAllEvents();
        EXPECT_FALSE(agent->DoesEventExist(0));
    }
    host.TakeCalls();
  }
}

}  // namespace
