// What the agent keeps over its lives.

#include "tests/vexalink_agent_scheduler/AgentHelp.h"

namespace {

constexpr char kAssert[] = "AssertWrite vexalink_agent_scheduler/vxw/vexalink_agent_scheduler:";

class AgentState : public AgentTest {
 protected:
  // The counter of the state and the ids of its events: "7: 2 7".
  std::string Summary() {
    const auto state = agent->GetPersistState(0);
    std::string text = state->GetText("current_id") + ":";
    const VxXML::INode* event = state->GetChild("events")->GetFirstChild();
    for (; event != nullptr; event = event->GetNextSibling()) {
      text += " " + event->GetText("eventid");
    }
    return text;
  }
};

TEST_F(AgentState, OfAnEmptyTableHasACounterAndNoEvents) {
  Start();
  EXPECT_EQ(State(), "<event_data><current_id>0</current_id><events/></event_data>");
}

TEST_F(AgentState, BeforeItIsInitialisedIsEmptyToo) {
  Create();
  EXPECT_EQ(State(), "<event_data><current_id>0</current_id><events/></event_data>");
}

TEST_F(AgentState, IsTakenUpInEveryForm) {
  const std::string two = DailyXml(2, "Two", 720);
  const std::string seven = DailyXml(7, "Seven", 720);
  const std::string one = DailyXml(1, "One", 720);
  const struct {
    const char* why;
    std::string persisted;
    const char* summary;
  } rows[] = {
      {"a counter below a loaded id is raised",
       "<event_data><current_id>3</current_id><events>" + two + seven + "</events></event_data>",
       "7: 2 7"},
      {"one above all is kept",
       "<event_data><current_id>3</current_id><events>" + one + two + "</events></event_data>",
       "3: 1 2"},
      {"one equal to the largest",
       "<event_data><current_id>2</current_id><events>" + one + two + "</events></event_data>",
       "2: 1 2"},
      {"no counter", "<event_data><events>" + two + one + "</events></event_data>", "2: 1 2"},
      {"a counter that is no number",
       "<event_data><current_id>x</current_id><events>" + two + "</events></event_data>", "2: 2"},
      {"a counter behind the events",
       "<event_data><events>" + two + "</events><current_id>9</current_id></event_data>", "9: 2"},
      {"a counter without events", "<event_data><current_id>9</current_id></event_data>", "9:"},
      {"the older form", "<events>" + seven + two + "</events>", "7: 2 7"},
      {"the older form, empty", "<events/>", "0:"},
      {"the older form reads no counter", "<events><current_id>9</current_id>" + two + "</events>",
       "2: 2"},
      {"a root of another name", "<state><events>" + two + "</events></state>", "0:"},
      {"of another case", "<Event_data><events>" + two + "</events></Event_data>", "0:"},
      {"an event without an id is dropped",
       "<events>" + DailyXml(0, "None", 720) + two + "</events>", "2: 2"},
      {"events below the list are no events", "<event_data>" + two + "</event_data>", "0:"},
  };
  for (const auto& row : rows) {
    const Lines calls = Start(row.persisted);
    EXPECT_EQ(Summary(), row.summary) << row.why;
    EXPECT_EQ(calls.back(), "AddTimer 1000 17") << row.why << ": the timer is armed in any case";
    agent.reset();
  }
}

TEST_F(AgentState, RegistersTheButtonsOfLoadedEventsFirst) {
  EXPECT_EQ(Start("<event_data><events>" + DailyXml(2, "Two", 720) + DailyXml(1, "One", 720) +
                  "</events></event_data>"),
            (Lines{"RegisterBinding 2 1 Two", "RegisterBindingClass 2 BUTTON_LINK",
                   "RegisterBinding 1 1 One", "RegisterBindingClass 1 BUTTON_LINK",
                   "VmRegisterListener 1 1001", "VmRegisterListener 1 1002", "AddTimer 1000 17"}));
}

TEST_F(AgentState, RecordsChildrenOfAnotherNameAndTriesThem) {
  const Lines listeners = {"VmRegisterListener 1 1001", "VmRegisterListener 1 1002",
                           "AddTimer 1000 17"};
  const Lines wrongRoot = {"AssertWrite vexalink_agent_scheduler/vxw/ScheduledEvent:55"};
  EXPECT_EQ(Start("<event_data><events><other><eventid>3</eventid></other></events></event_data>"),
            Lines{kAssert + std::string("346")} + wrongRoot + listeners);
  EXPECT_EQ(Summary(), "0:") << "it is no event, and so has no id";
  EXPECT_EQ(Start("<events><current_id>3</current_id></events>"),
            Lines{kAssert + std::string("374")} + wrongRoot + listeners);
}

TEST_F(AgentState, CommentsBetweenEventsAreNoChildren) {
  Start("<events><!-- x -->" + DailyXml(1, "One", 720) + "<?y z?> text </events>");
  EXPECT_EQ(Summary(), "1: 1");
}

TEST_F(AgentState, OfCollidingIdsTheFirstStays) {
  Start("<events>" + DailyXml(1, "First", 720) + DailyXml(1, "Second", 721) + "</events>");
  EXPECT_NE(State().find("First"), std::string::npos);
  EXPECT_EQ(State().find("Second"), std::string::npos);
}

TEST_F(AgentState, LeavesTheMediaScanOut) {
  Start();
  const std::string scan = "hostcore_mediascan_event";
  EXPECT_EQ(agent->AddDailyEvent(scan, 8, 0), 1U);
  EXPECT_EQ(agent->AddDailyEvent("hostcore_mediascan_event2", 9, 0), 2U);
  EXPECT_EQ(Summary(), "2: 2");
  EXPECT_EQ(Request("GET_ALL_EVENTS").find(scan + "<"), std::string::npos);
  EXPECT_NE(Request("GET_EVENT", {{"EVENT_ID", "1"}}).find(scan + "<"), std::string::npos);
  EXPECT_EQ(TickAt("2024-03-06 08:00:00"), Firing(1, scan)) << "it fires all the same";
}

TEST_F(AgentState, IsTheSameAfterItWasTakenUp) {
  Start();
  Command("ADD_EVENT", {{"EVENT_XML", DailyXml(0, "&lt;Porch&gt; &amp; more", 720)}});
  agent->AddDaysOfWeekEvent("Garden", 0x22, 450);
  agent->DeleteEvent(1);
  agent->AddDailyEvent("Hall", 6, 30);
  const std::string state = State();
  Start(state);
  EXPECT_EQ(State(), state);
}

TEST_F(AgentState, InitialisedAgainForgetsWhatItHad) {
  Start("<events>" + DailyXml(4, "Old", 720) + "</events>");
  const auto config = VxXML::CreateXmlNode("config", "");
  const auto document =
      VxXML::CreateXmlDocument("<events>" + DailyXml(2, "New", 721) + "</events>");
  agent->Initialize(5, *config, document->GetRoot());
  EXPECT_EQ(Summary(), "2: 2");
  EXPECT_EQ(TickAt("2024-03-06 13:00:00"), Firing(2, "New")) << "the old one does not fire";
  agent->Initialize(5, *config, nullptr);
  EXPECT_EQ(Summary(), "0:");
}

TEST_F(AgentState, DoesNotChangeThePersistedNode) {
  const std::string text = "<events>" + DailyXml(1, "One", 720) + "</events>";
  const auto document = VxXML::CreateXmlDocument(text);
  Create();
  const auto config = VxXML::CreateXmlNode("config", "");
  agent->Initialize(5, *config, document->GetRoot());
  EXPECT_EQ(document->GetRoot()->ToString(), text);
}

}  // namespace
