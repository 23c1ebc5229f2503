#pragma once

#include <memory>
#include <sstream>
#include <string>

#include "controller/HostMessages.h"
#include "controller/PlayHost.h"
#include "framework/AssertSink.h"
#include "vexalink_agent_scheduler/vxw/vexalink_agent_scheduler.h"

namespace fuzz {

/// One agent on a host that writes down what is called. One at a time has the assertion records.
class AgentInAHouse {
 public:
  AgentInAHouse() : host_(calls_), sinkBefore_(vx::SetAssertSink(&host_)), agent_(host_) {}
  ~AgentInAHouse() { vx::SetAssertSink(sinkBefore_); }
  AgentInAHouse(const AgentInAHouse&) = delete;
  AgentInAHouse& operator=(const AgentInAHouse&) = delete;

  vexalink_agent_scheduler& Agent() { return agent_; }

  void Initialize(VxXML::INode* persisted) {
    const vx::auto_com<VxXML::INode> config = VxXML::CreateXmlNode("config", "");
    agent_.Initialize(2, *config, persisted);
  }

  std::string State() { return agent_.GetPersistState(0)->ToString(); }

  /// Everything that was called since the last time, a line each.
  std::string TakeCalls() { return std::exchange(calls_, std::ostringstream()).str(); }

 private:
  std::ostringstream calls_;
  controller::PlayHost host_;
  vx::IAssertSink* sinkBefore_;
  vexalink_agent_scheduler agent_;
};

}  // namespace fuzz
