#include "tests/vexalink_agent_scheduler/AgentHelp.h"

#include <stdexcept>

#include "framework/XmlText.h"

namespace {

std::string Text(const vx::auto_com<VxXML::INode>& node) {
  return node ? vx::WriteXml(*node, vx::XmlStyle::kTranscript) : "null";
}

}  // namespace

void AgentTest::Create() { agent = std::make_unique<vexalink_agent_scheduler>(host); }

Lines AgentTest::Start(const std::string& persisted) {
  Create();
  host.TakeCalls();
  const auto config = VxXML::CreateXmlNode("config", "");
  if (persisted.empty()) {
    EXPECT_EQ(agent->Initialize(5, *config, nullptr), 0);
    return host.TakeCalls();
  }
  const auto document = VxXML::CreateXmlDocument(persisted);
  if (!document) throw std::invalid_argument("does not parse: " + persisted);
  EXPECT_EQ(agent->Initialize(5, *config, document->GetRoot()), 0);
  return host.TakeCalls();
}

Lines AgentTest::Command(const std::string& name, const Params& params) {
  host.TakeCalls();
  EXPECT_EQ(agent->ExecuteCommand(TestCommand(name, params), nullptr, 0), 0);
  return host.TakeCalls();
}

Lines AgentTest::Tick() {
  host.TakeCalls();
  agent->OnTimerExpired(host.lastTimer, 0);
  return host.TakeCalls();
}

Lines AgentTest::TickAt(const std::string& local) {
  clock.Set(local);
  return Tick();
}

Lines AgentTest::Destroy() {
  host.TakeCalls();
  agent.reset();
  return host.TakeCalls();
}

std::string AgentTest::Request(const std::string& name, const Params& params) {
  return Text(agent->UIRequest(TestCommand(name, params)));
}

std::string AgentTest::State() { return Text(agent->GetPersistState(0)); }

bool AgentTest::Condition(const std::string& name, const std::string& xml) {
  return agent->TestCondition(TestConditionMessage(name, {{"CONDITIONAL_XML", xml}}), nullptr);
}

std::string DailyXml(unsigned long id, const std::string& description, int minutes,
                     const std::string& more) {
  return "<event><eventid>" + std::to_string(id) + "</eventid><description>" + description +
         "</description><start><offset_minutes>" + std::to_string(minutes) +
         "</offset_minutes><start_date><start_day>1</start_day><start_month>3</start_month>"
         "<start_year>2024</start_year></start_date></start><repeat><frequency>1</frequency>"
         "<rate>1</rate></repeat>" +
         more + "</event>";
}

Lines Firing(unsigned long id, const std::string& description) {
  const std::string number = std::to_string(id);
  return {"FireEvent " + number, "LogMessage 7 Scheduler Event " + number + ", " + description,
          "CreateBindMessage", "SendBoundCall " + number + " DO_PUSH 1",
          "SendBoundCall " + number + " DO_CLICK 1"};
}

Lines operator+(Lines a, const Lines& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}
