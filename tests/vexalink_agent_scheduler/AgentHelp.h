#pragma once

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/FakeHost.h"
#include "tests/support/TestClock.h"
#include "tests/support/TestMessages.h"
#include "tests/vexalink_agent_scheduler/Zones.h"
#include "vexalink_agent_scheduler/vxw/vexalink_agent_scheduler.h"

using Lines = std::vector<std::string>;
using Params = TestCommand::Params;

/// An agent at a host that keeps what it is asked, in UTC, at 7:00 on Wednesday, 6 March 2024.
/// Tests move clock and zone as they like.
class AgentTest : public testing::Test {
 protected:
  /// Creates and initialises the agent; nothing persisted where `persisted` is empty. Answers what
  /// the host was asked since.
  Lines Start(const std::string& persisted = "");
  /// The same without initialising.
  void Create();

  /// Each answers what the host was asked meanwhile.
  Lines Command(const std::string& name, const Params& params);
  Lines Tick();
  Lines TickAt(const std::string& local);
  Lines Destroy();

  /// Replies, state and elements as text, "null" where there is none.
  std::string Request(const std::string& name, const Params& params = {});
  std::string State();
  bool Condition(const std::string& name, const std::string& xml);

  FakeHost host;
  ZoneScope zone{zones::kUtc};
  TestClock clock{"2024-03-06 07:00:00"};
  std::unique_ptr<vexalink_agent_scheduler> agent;
};

/// An element of an event that happens every day; `more` is put at its end.
std::string DailyXml(unsigned long id, const std::string& description, int minutes,
                     const std::string& more = "");

/// What firing an event asks of the host.
Lines Firing(unsigned long id, const std::string& description);

/// Several lists of lines one after the other.
Lines operator+(Lines a, const Lines& b);
