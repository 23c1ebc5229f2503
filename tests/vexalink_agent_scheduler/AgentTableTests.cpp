// What goes into the event table, what comes out, what is looked up.

#include <climits>

#include "tests/vexalink_agent_scheduler/AgentHelp.h"

namespace {

constexpr char kAssert[] = "AssertWrite vexalink_agent_scheduler/vxw/vexalink_agent_scheduler:";

std::string Assert(int line) { return kAssert + std::to_string(line); }

class AgentTable : public AgentTest {
 protected:
  AgentTable() { Start(); }

  unsigned long Add(const std::string& xml, bool assignNewId, bool registerButton = false) {
    host.TakeCalls();
    return agent->AddEvent(xml, assignNewId, registerButton);
  }
  std::string Counter() { return agent->GetPersistState(0)->GetText("current_id"); }
};

TEST_F(AgentTable, HandsOutIdsInAscendingOrder) {
  EXPECT_EQ(agent->AddDailyEvent("a", 1, 0), 1U);
  EXPECT_EQ(agent->AddDailyEvent("b", 1, 0), 2U);
  agent->DeleteEvent(2);
  EXPECT_EQ(agent->AddDailyEvent("c", 1, 0), 3U) << "a deleted event's id does not come again";
}

TEST_F(AgentTable, ADescriptionIsTakenOnce) {
  EXPECT_EQ(agent->AddDailyEvent("Porch", 1, 0), 1U);
  EXPECT_EQ(agent->AddDailyEvent("Porch", 2, 0), 0U);
  EXPECT_EQ(agent->AddDaysOfWeekEvent("Porch", 1, 0), 0U);
  EXPECT_EQ(agent->AddEveryXDaysEvent("Porch", 1, 0), 0U);
  EXPECT_EQ(Counter(), "1") << "and costs no id";
  EXPECT_EQ(agent->AddDailyEvent("porch", 1, 0), 2U) << "another case is another description";
  EXPECT_EQ(agent->AddDailyEvent("Porch ", 1, 0), 3U) << "so is a blank";
  EXPECT_EQ(agent->AddDailyEvent("", 1, 0), 4U) << "and nothing at all";
  EXPECT_EQ(agent->AddDailyEvent("", 1, 0), 0U) << "once";
  agent->DeleteEvent(1);
  EXPECT_EQ(agent->AddDailyEvent("Porch", 1, 0), 5U) << "free again";
}

TEST_F(AgentTable, OnlyTheDescriptionMakesADuplicate) {
  agent->AddDailyEvent("Porch", 1, 0);
  Event same(0, "Porch", 50, 60);
  Event other(1, "Garden", 0, 0);
  EXPECT_TRUE(agent->IsDuplicateEvent(&same));
  EXPECT_FALSE(agent->IsDuplicateEvent(&other));
}

TEST_F(AgentTable, ANullEventIsRecordedAndRefused) {
  EXPECT_EQ(agent->AddEvent(static_cast<Event*>(nullptr), true, true), 0U);
  EXPECT_EQ(host.TakeCalls(), Lines{Assert(100)});
}

TEST_F(AgentTable, ANewEventGetsANewIdWhateverItBrings) {
  EXPECT_EQ(Add(DailyXml(42, "Porch", 1), /*assignNewId=*/true), 1U);
  EXPECT_EQ(host.TakeCalls(), Lines{Assert(107)});
  EXPECT_TRUE(agent->DoesEventExist(1));
  EXPECT_FALSE(agent->DoesEventExist(42));
}

TEST_F(AgentTable, ADuplicateKeepsTheIdItBrings) {
  Add(DailyXml(0, "Porch", 1), true);
  EXPECT_EQ(Add(DailyXml(42, "Porch", 1), true), 42U);
  EXPECT_EQ(host.TakeCalls(), Lines{Assert(107)});
  EXPECT_TRUE(agent->DoesEventExist(42));
  EXPECT_EQ(Counter(), "1");
  EXPECT_EQ(Add(DailyXml(0, "Porch", 1), true), 0U) << "one that brings none is refused";
  EXPECT_TRUE(host.TakeCalls().empty());
}

TEST_F(AgentTable, ATakenIdIsRecordedAndKeepsTheOldRecord) {
  Add(DailyXml(3, "Old", 1), false);
  EXPECT_EQ(Add(DailyXml(3, "New", 720), false), 3U);
  EXPECT_EQ(host.TakeCalls(), Lines{Assert(116)});
  EXPECT_EQ(agent->GetEvent(3)->GetText("description"), "Old");
  EXPECT_EQ(agent->GetEventIdByDescription("New"), 0U);
  EXPECT_EQ(TickAt("2024-03-06 12:00:00"), Firing(3, "New")) << "but the new one is scheduled";
}

TEST_F(AgentTable, RegistersAButtonUnderTheIdAndTheDescription) {
  Add(DailyXml(0, "Porch", 1), true, /*registerButton=*/true);
  EXPECT_EQ(host.TakeCalls(),
            (Lines{"RegisterBinding 1 1 Porch", "RegisterBindingClass 1 BUTTON_LINK"}));
  host.registerBindingResult = 5;
  Add(DailyXml(0, "Garden", 1), true, true);
  EXPECT_EQ(host.TakeCalls().size(), 2U) << "any number from 0 on is a success";
}

TEST_F(AgentTable, ARefusedButtonIsRecordedAndTheEventStays) {
  host.registerBindingResult = -1;
  EXPECT_EQ(Add(DailyXml(0, "Porch", 1), true, true), 1U);
  EXPECT_EQ(host.TakeCalls(), (Lines{"RegisterBinding 1 1 Porch", Assert(133)}));
  EXPECT_TRUE(agent->DoesEventExist(1));
}

TEST_F(AgentTable, RecordsComeInTheOrderOfTheSteps) {
  Add(DailyXml(1, "Porch", 1), true);
  host.registerBindingResult = -1;
  // A duplicate that brings a taken id: has an id, id taken, button refused, repeats by zero.
  const std::string xml =
      "<event><eventid>1</eventid><description>Porch</description><start/>"
      "<repeat><frequency>1</frequency><rate>0</rate></repeat></event>";
  EXPECT_EQ(Add(xml, true, true), 1U);
  EXPECT_EQ(host.TakeCalls(),
            (Lines{"AssertWrite vexalink_agent_scheduler/vxw/ScheduledEvent:146", Assert(107),
                   Assert(116), "RegisterBinding 1 1 Porch", Assert(133),
                   "AssertWrite vexalink_agent_scheduler/vxw/ScheduledEvent:363"}));
}

TEST_F(AgentTable, WhatDoesNotParseIsRefusedSilently) {
  for (const char* xml : {"", "<event>", "Porch", "<!DOCTYPE event><event/>"}) {
    EXPECT_EQ(Add(xml, true, true), 0U) << xml;
    EXPECT_TRUE(host.TakeCalls().empty()) << xml;
  }
}

TEST_F(AgentTable, AnElementOfAnotherNameBecomesAnEmptyEvent) {
  // Nothing is read of it, but a new id is handed out.
  EXPECT_EQ(Add("<other/>", true), 1U);
  EXPECT_EQ(host.TakeCalls(), Lines{"AssertWrite vexalink_agent_scheduler/vxw/ScheduledEvent:55"});
  EXPECT_EQ(agent->GetEventIdByDescription(""), 1U);
}

TEST_F(AgentTable, GivesEventsItsSite) {
  agent->OnVariableChanged(1, 1001, "51.5");
  agent->OnVariableChanged(1, 1002, "-0.1");
  agent->AddEveryXDaysEvent("a", 1, 0);
  Add(DailyXml(0, "b", 1), true);
  std::list<Event*> today;
  agent->GetEventsOnDate(VxTime::GetCurrentTime(), &today);
  ASSERT_EQ(today.size(), 2U);
  for (const Event* event : today) {
    EXPECT_EQ(event->latitude, 51.5) << event->description;
    EXPECT_EQ(event->longitude, -0.1) << event->description;
  }
}

TEST_F(AgentTable, OtherDriversEventsAreBuiltAsGiven) {
  agent->AddDailyEvent("daily", 7, 30);
  agent->AddEveryXDaysEvent("same", 1, 450);
  agent->AddEveryXDaysEvent("every third", 3, 90);
  agent->AddDaysOfWeekEvent("weekdays", 0x3E, 1439);
  const auto field = [this](unsigned long id, const char* group, const char* name) {
    return agent->GetEvent(id)->GetChild(group)->GetText(name);
  };
  EXPECT_EQ(field(1, "start", "offset_minutes"), "450");
  EXPECT_EQ(field(2, "start", "offset_minutes"), "450");
  EXPECT_EQ(field(1, "repeat", "rate"), field(2, "repeat", "rate"));
  EXPECT_EQ(field(3, "repeat", "rate"), "3");
  EXPECT_EQ(field(3, "start", "offset_minutes"), "90") << "minutes of the day, not of an hour";
  EXPECT_EQ(field(4, "repeat", "frequency"), "2");
  EXPECT_EQ(field(4, "repeat", "daymask"), "62");
  EXPECT_EQ(field(4, "start", "offset_minutes"), "1439");
}

TEST_F(AgentTable, OtherDriversNumbersWrap) {
  EXPECT_EQ(agent->AddDailyEvent("wrap", 71582789, 0), 1U);  // * 60 is 2^32 + 44
  EXPECT_EQ(agent->GetEvent(1)->GetChild("start")->GetText("offset_minutes"), "44");
  agent->AddEveryXDaysEvent("all", UINT_MAX, UINT_MAX);
  EXPECT_EQ(agent->GetEvent(2)->GetChild("start")->GetText("offset_minutes"), "-1");
  EXPECT_EQ(agent->GetEvent(2)->GetChild("repeat")->GetText("rate"), "-1");
}

TEST_F(AgentTable, OtherDriversEventsGetNoButton) {
  host.TakeCalls();
  agent->AddDailyEvent("a", 1, 0);
  agent->AddEveryXDaysEvent("b", 1, 0);
  agent->AddDaysOfWeekEvent("c", 1, 0);
  agent->DeleteEvent(1);
  EXPECT_TRUE(host.TakeCalls().empty()) << "nor does their deletion take one away";
}

TEST_F(AgentTable, DeletesWithOrWithoutTheButton) {
  agent->AddDailyEvent("a", 8, 0);
  agent->AddDailyEvent("b", 8, 0);
  host.TakeCalls();
  agent->DeleteEvent(1, /*unregisterBinding=*/true);
  EXPECT_EQ(host.TakeCalls(), Lines{"UnregisterBinding 1"});
  agent->DeleteEvent(2, /*unregisterBinding=*/false);
  EXPECT_TRUE(host.TakeCalls().empty());
  EXPECT_FALSE(agent->DoesEventExist(1));
  EXPECT_FALSE(agent->DoesEventExist(2));
  EXPECT_TRUE(TickAt("2024-03-06 08:00:00").empty()) << "they do not fire any more";
}

TEST_F(AgentTable, DeletingAnUnknownIdDoesNothing) {
  agent->AddDailyEvent("a", 8, 0);
  host.TakeCalls();
  for (const unsigned long id : {0UL, 2UL, ~0UL}) agent->DeleteEvent(id, true);
  EXPECT_TRUE(host.TakeCalls().empty());
  EXPECT_TRUE(agent->DoesEventExist(1));
}

TEST_F(AgentTable, FindsTheLowestIdOfADescription) {
  EXPECT_EQ(agent->GetEventIdByDescription(""), 0U);
  Add(DailyXml(7, "same", 1), false);
  Add(DailyXml(3, "same", 1), false);
  Add(DailyXml(5, "", 1), false);
  Add(DailyXml(4, "", 1), false);
  EXPECT_EQ(agent->GetEventIdByDescription("same"), 3U);
  EXPECT_EQ(agent->GetEventIdByDescription(""), 4U);
  EXPECT_EQ(agent->GetEventIdByDescription("sam"), 0U);
  EXPECT_EQ(agent->GetEventIdByDescription("Same"), 0U);
  agent->DeleteEvent(3);
  EXPECT_EQ(agent->GetEventIdByDescription("same"), 7U);
}

TEST_F(AgentTable, ModifyReplacesUnderTheSameId) {
  Add(DailyXml(0, "Old", 480), true);
  host.TakeCalls();
  EXPECT_EQ(agent->ModifyEvent(DailyXml(1, "New", 540)), 1U);
  EXPECT_TRUE(host.TakeCalls().empty()) << "its button stays as it is";
  EXPECT_EQ(agent->GetEvent(1)->GetText("description"), "New");
  EXPECT_TRUE(TickAt("2024-03-06 08:59:59").empty());
  EXPECT_EQ(TickAt("2024-03-06 09:00:00"), Firing(1, "New"));
}

TEST_F(AgentTable, ModifyOfAnUnknownIdAddsIt) {
  EXPECT_EQ(agent->ModifyEvent(DailyXml(9, "New", 540)), 9U);
  EXPECT_TRUE(agent->DoesEventExist(9));
  EXPECT_EQ(Counter(), "0") << "ids handed out are not touched";
}

TEST_F(AgentTable, ModifyWithoutAnIdChangesNothing) {
  Add(DailyXml(0, "Old", 480), true);
  const std::string state = State();
  for (const char* xml : {"", "<event", "<event/>", "<event><eventid>x</eventid></event>"}) {
    const AssertLines ignored;
    EXPECT_EQ(agent->ModifyEvent(xml), 0U) << xml;
  }
  EXPECT_EQ(State(), state);
}

TEST_F(AgentTable, ModifyAnswersTheIdOfWhatItOnlyDeletes) {
  Add(DailyXml(0, "Old", 480), true);
  host.TakeCalls();
  EXPECT_EQ(agent->ModifyEvent("<other><eventid>1</eventid></other>"), 1U);
  EXPECT_EQ(host.TakeCalls(), Lines{"AssertWrite vexalink_agent_scheduler/vxw/ScheduledEvent:55"});
  EXPECT_FALSE(agent->DoesEventExist(1)) << "what replaces it was refused, the old one is gone";
}

TEST_F(AgentTable, ModifyMayTakeAnothersDescription) {
  Add(DailyXml(0, "a", 480), true);
  Add(DailyXml(0, "b", 480), true);
  EXPECT_EQ(agent->ModifyEvent(DailyXml(2, "a", 480)), 2U);
  EXPECT_EQ(agent->GetEvent(2)->GetText("description"), "a");
}

TEST_F(AgentTable, GetEventOfAnUnknownIdIsNull) {
  EXPECT_FALSE(agent->GetEvent(0));
  EXPECT_FALSE(agent->GetEvent(1));
}

TEST_F(AgentTable, ClearingLeavesTheCounter) {
  agent->AddDailyEvent("a", 8, 0);
  agent->ClearAllEvents();
  EXPECT_EQ(State(), "<event_data><current_id>1</current_id><events/></event_data>");
  EXPECT_TRUE(TickAt("2024-03-06 08:00:00").empty());
  EXPECT_EQ(agent->AddDailyEvent("a", 8, 0), 2U) << "its description is free again";
}

}  // namespace
