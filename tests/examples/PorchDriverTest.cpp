#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>

#include "host/IDriver.h"
#include "tests/support/FakeHost.h"
#include "tests/support/TestClock.h"
#include "vexalink_agent_scheduler/vxw/IAgentScheduler.h"

namespace {

using testing::Contains;
using testing::IsNull;
using testing::Not;
using testing::NotNull;

/// A driver library, loaded as a controller loads it.
class Library {
 public:
  explicit Library(const char* path) : handle_(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {
    if (handle_ == nullptr) throw std::runtime_error(dlerror());
  }
  ~Library() { dlclose(handle_); }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  std::unique_ptr<IDriver> Create(IInstanceManager& manager) const {
    const auto entry = reinterpret_cast<VxGetCreationFunc>(dlsym(handle_, "GetCreationFunc"));
    if (entry == nullptr) throw std::runtime_error("no GetCreationFunc");
    return std::unique_ptr<IDriver>(entry()(manager));
  }

 private:
  void* handle_;
};

class Message final : public ICmdMessage {
 public:
  explicit Message(std::string name) : name_(std::move(name)) {}
  const std::string& GetName() const override { return name_; }
  std::string GetParam(const char*) const override { return ""; }

 private:
  std::string name_;
};

/// A house with room for the scheduler and the porch driver, on a Wednesday at half past eighteen
/// less two seconds.
class PorchDriverExample : public testing::Test {
 protected:
  void StartAgent(VxXML::INode* persisted = nullptr) {
    agent = agentLibrary.Create(host);
    agent->Initialize(100, *config, persisted);
    agentTimer = host.lastTimer;
  }
  void StartPorch(VxXML::INode* persisted = nullptr) {
    porch = porchLibrary.Create(host);
    porch->Initialize(200, *config, persisted);
  }
  IAgentScheduler& Scheduler() {
    return *static_cast<IAgentScheduler*>(host.FindQuery(kAgentSchedulerIid));
  }
  std::string Ask(IDriver& driver, const char* request) {
    const vx::auto_com<VxXML::INode> reply = driver.UIRequest(Message(request));
    return reply ? reply->ToString() : "null";
  }
  int EventsInTable() {
    const vx::auto_com<VxXML::INode> events = agent->UIRequest(Message("GET_ALL_EVENTS"));
    int count = 0;
    for (const VxXML::INode* event = events->GetFirstChild(); event != nullptr;
         event = event->GetNextSibling()) {
      ++count;
    }
    return count;
  }
  void Tick(std::time_t seconds) {
    for (; seconds > 0; --seconds) {
      clock.Advance(1);
      agent->OnTimerExpired(agentTimer, 0);
    }
  }

  TestClock clock{"2024-03-06 18:29:58"};
  vx::auto_com<VxXML::INode> config = VxXML::CreateXmlNode("config", "");
  FakeHost host;
  Library agentLibrary{SCHEDULER_AGENT};
  Library porchLibrary{PORCH_DRIVER};
  std::unique_ptr<IDriver> agent;
  std::unique_ptr<IDriver> porch;
  unsigned long agentTimer = 0;
};

TEST_F(PorchDriverExample, PutsOneEventIntoTheAgentsTable) {
  StartAgent();
  StartPorch();
  EXPECT_EQ(Scheduler().GetEventIdByDescription("Porch light"), 1u);
  EXPECT_EQ(EventsInTable(), 1);
  EXPECT_EQ(Ask(*porch, "GET_PORCH_LIGHT"),
            "<porch_light><wanted>1</wanted><eventid>1</eventid></porch_light>");
}

TEST_F(PorchDriverExample, SeesItsEventFireAtHalfPastEighteen) {
  StartAgent();
  StartPorch();
  host.TakeCalls();
  Tick(1);
  EXPECT_THAT(host.TakeCalls(), Not(Contains("FireEvent 1")));
  Tick(1);
  EXPECT_THAT(host.TakeCalls(), Contains("FireEvent 1").Times(1));
}

TEST_F(PorchDriverExample, AddsNothingAtASecondStart) {
  StartAgent();
  StartPorch();
  const vx::auto_com<VxXML::INode> agentState = agent->GetPersistState(0);
  const vx::auto_com<VxXML::INode> porchState = porch->GetPersistState(0);
  porch.reset();
  agent.reset();
  StartAgent(agentState.get());
  StartPorch(porchState.get());
  EXPECT_EQ(EventsInTable(), 1);
  EXPECT_EQ(Scheduler().GetEventIdByDescription("Porch light"), 1u);
}

TEST_F(PorchDriverExample, WaitsForASchedulerThatStartsLater) {
  StartPorch();
  const unsigned long porchTimer = host.lastTimer;
  EXPECT_THAT(host.TakeCalls(), Contains("AddTimer 5000 1"));
  EXPECT_EQ(Ask(*porch, "GET_PORCH_LIGHT"),
            "<porch_light><wanted>1</wanted><eventid>0</eventid></porch_light>");
  porch->OnTimerExpired(porchTimer, 0);
  EXPECT_THAT(host.TakeCalls(), Not(Contains("AddTimer 5000 1"))) << "one timer is enough";
  StartAgent();
  porch->OnTimerExpired(porchTimer, 0);
  EXPECT_EQ(EventsInTable(), 1);
  EXPECT_THAT(host.TakeCalls(), Contains("KillTimer " + std::to_string(porchTimer)));
}

TEST_F(PorchDriverExample, RemembersThatTheEventIsNotWanted) {
  StartAgent();
  StartPorch();
  host.TakeCalls();
  porch->ExecuteCommand(Message("DROP_PORCH_LIGHT"), nullptr, 0);
  EXPECT_THAT(host.TakeCalls(), Contains("DmInvalidateState"));
  EXPECT_EQ(EventsInTable(), 0);
  const vx::auto_com<VxXML::INode> state = porch->GetPersistState(0);
  EXPECT_EQ(state->ToString(), "<porch_light><wanted>0</wanted></porch_light>");

  porch.reset();
  StartPorch(state.get());
  EXPECT_EQ(EventsInTable(), 0);
  porch->ExecuteCommand(Message("KEEP_PORCH_LIGHT"), nullptr, 0);
  EXPECT_EQ(EventsInTable(), 1);
}

TEST_F(PorchDriverExample, LeavesNoTimerBehind) {
  StartPorch();
  const unsigned long porchTimer = host.lastTimer;
  porch.reset();
  EXPECT_THAT(host.TakeCalls(), Contains("KillTimer " + std::to_string(porchTimer)));
}

TEST_F(PorchDriverExample, LeavesOtherRequestsToTheBase) {
  StartPorch();
  EXPECT_EQ(Ask(*porch, "GET_ALL_EVENTS"), "null");
}

TEST_F(PorchDriverExample, FindsNoSchedulerOnceTheAgentHasGone) {
  StartAgent();
  EXPECT_THAT(host.FindQuery(kAgentSchedulerIid), NotNull());
  StartPorch();
  agent.reset();
  EXPECT_THAT(host.FindQuery(kAgentSchedulerIid), IsNull());
  EXPECT_EQ(Ask(*porch, "GET_PORCH_LIGHT"),
            "<porch_light><wanted>1</wanted><eventid>0</eventid></porch_light>");
}

}  // namespace
