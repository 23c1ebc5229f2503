// How the agent comes, meets its host, and goes.

#include "tests/vexalink_agent_scheduler/AgentHelp.h"

extern "C" VX_API VxCreateFunc GetCreationFunc();

namespace {

const std::string kIid = "7C2E51A0-3B9D-4e06-A8F1-9D44B0C7E315";

class AgentFrame : public AgentTest {};

TEST_F(AgentFrame, IsCreatedThroughTheEntryPoint) {
  const VxCreateFunc create = GetCreationFunc();
  ASSERT_NE(create, nullptr);
  const std::unique_ptr<IDriver> driver(create(host));
  ASSERT_NE(driver, nullptr);
  EXPECT_NE(dynamic_cast<vexalink_agent_scheduler*>(driver.get()), nullptr);
  EXPECT_EQ(host.TakeCalls(), Lines{"RegisterQuery " + kIid});
}

TEST_F(AgentFrame, PublishesItsInterfaceWhileItLives) {
  Create();
  EXPECT_EQ(host.FindQuery(kIid.c_str()), static_cast<IAgentScheduler*>(agent.get()));
  EXPECT_EQ(agent->GetDriverType(), VxDriverType::kAgent);
  EXPECT_EQ(static_cast<int>(agent->GetMultiplicity()), 0);
  agent.reset();
  EXPECT_EQ(host.FindQuery(kIid.c_str()), nullptr);
}

TEST_F(AgentFrame, ARefusedRegistrationIsNotTakenBack) {
  host.registerQueryResult = 0;
  Create();
  EXPECT_EQ(Destroy(), (Lines{"VmUnregisterListener 1 1001", "VmUnregisterListener 1 1002"}));
}

TEST_F(AgentFrame, QueryInterfaceComparesToTheLetter) {
  Create();
  void* out = nullptr;
  EXPECT_EQ(agent->QueryInterface(kIid, &out), 0);
  EXPECT_EQ(out, static_cast<IAgentScheduler*>(agent.get()));
  for (const char* other : {"7c2e51a0-3b9d-4e06-a8f1-9d44b0c7e315",
                            "7C2E51A0-3B9D-4E06-A8F1-9D44B0C7E315", "", "7C2E51A0"}) {
    EXPECT_NE(agent->QueryInterface(other, &out), 0) << other;
    EXPECT_EQ(out, nullptr) << other << " falls through to the base";
  }
}

TEST_F(AgentFrame, InitializeListensThenArmsOneTimer) {
  EXPECT_EQ(Start(),
            (Lines{"VmRegisterListener 1 1001", "VmRegisterListener 1 1002", "AddTimer 1000 17"}));
  EXPECT_EQ(agent->GetDeviceId(), 5U);
  EXPECT_EQ(static_cast<IAgentScheduler&>(*agent).GetDeviceId(), 5U);
}

TEST_F(AgentFrame, GoesInTheOppositeOrder) {
  Start();
  EXPECT_EQ(Destroy(), (Lines{"VmUnregisterListener 1 1001", "VmUnregisterListener 1 1002",
                              "KillTimer 1", "UnregisterQuery " + kIid}));
}

TEST_F(AgentFrame, KillsNoTimerThatItDoesNotHave) {
  host.lastTimer = ~0UL;  // the host has none left and answers 0
  Start();
  EXPECT_EQ(Destroy(), (Lines{"VmUnregisterListener 1 1001", "VmUnregisterListener 1 1002",
                              "UnregisterQuery " + kIid}));
}

TEST_F(AgentFrame, DoesNotUnregisterButtonsWhenItGoes) {
  Start("<events>" + DailyXml(1, "Porch", 720) + "</events>");
  for (const std::string& line : Destroy()) EXPECT_EQ(line.find("Binding"), std::string::npos);
}

// The sunset of 21 June at a place tells where the agent thinks it is.
std::string SunsetHour(vexalink_agent_scheduler& agent) {
  const auto reply = agent.UIRequest(
      TestCommand("GET_SUNRISE_SUNSET", {{"DAY", "21"}, {"MONTH", "6"}, {"YEAR", "2024"}}));
  return reply->GetChild("sunset")->GetText("hour");
}

TEST_F(AgentFrame, VariablesMoveTheSite) {
  Start();
  EXPECT_EQ(SunsetHour(*agent), "18") << "latitude and longitude are still 0";
  agent->OnVariableChanged(1, 1001, "60");
  EXPECT_EQ(SunsetHour(*agent), "21");
  agent->OnVariableChanged(1, 1002, "45");
  EXPECT_EQ(SunsetHour(*agent), "18") << "three hours earlier";
  agent->OnVariableChanged(2, 1001, "0");
  agent->OnVariableChanged(1, 1003, "0");
  agent->OnVariableChanged(0, 1002, "0");
  EXPECT_EQ(SunsetHour(*agent), "18") << "other devices and variables change nothing";
  agent->OnVariableChanged(1, 1001, "abc");
  agent->OnVariableChanged(1, 1002, "");
  EXPECT_EQ(SunsetHour(*agent), "18") << "what is no number is 0";
  agent->OnVariableChanged(1, 1001, " 60.0north");
  EXPECT_EQ(SunsetHour(*agent), "21") << "read as far as it is one";
}

TEST_F(AgentFrame, VariablesReachEveryEvent) {
  Start();
  Event* const first = new Event(1, "a", 0, 0);
  Event* const second = new Event(2, "b", 0, 0);
  agent->AddEvent(first, false, false);
  agent->AddEvent(second, false, false);
  agent->OnVariableChanged(1, 1001, "51.5");
  agent->OnVariableChanged(1, 1002, "-0.1");
  for (const Event* event : {first, second}) {
    EXPECT_EQ(event->latitude, 51.5);
    EXPECT_EQ(event->longitude, -0.1);
  }
  first->SetLatLong(1, 2);
  agent->OnVariableChanged(2, 1001, "77");
  EXPECT_EQ(first->latitude, 51.5) << "any variable applies the site again";
  EXPECT_EQ(first->longitude, -0.1);
}

TEST_F(AgentFrame, ValuesDeliveredInsideTheRegistrationCountForTheFirstDay) {
  host.variables[{1, 1001}] = "60";
  host.variables[{1, 1002}] = "0";
  const std::string sunset =
      "<event><eventid>1</eventid><description>Porch</description><start>"
      "<offset>2</offset><start_date><start_day>1</start_day>"
      "<start_month>3</start_month><start_year>2024</start_year>"
      "</start_date></start><repeat><frequency>1</frequency><rate>1</rate>"
      "</repeat></event>";
  Start("<events>" + sunset + "</events>");
  // The almanac has 17:39 for 6 March at 60 north on the meridian of Greenwich.
  EXPECT_TRUE(TickAt("2024-03-06 17:30:00").empty());
  EXPECT_EQ(TickAt("2024-03-06 17:48:00"), Firing(1, "Porch"));
}

TEST_F(AgentFrame, AMovedSiteDoesNotMoveToday) {
  Start();
  Command("ADD_EVENT", {{"EVENT_XML",
                         "<event><description>Porch</description><start>"
                         "<offset>2</offset><start_date><start_day>6</start_day>"
                         "<start_month>3</start_month><start_year>2024</start_year>"
                         "</start_date></start></event>"}});
  agent->OnVariableChanged(1, 1002, "90");  // sunset six hours earlier, about noon
  EXPECT_TRUE(TickAt("2024-03-06 15:00:00").empty());
  EXPECT_EQ(TickAt("2024-03-06 19:00:00"), Firing(1, "Porch"));
}

}  // namespace
