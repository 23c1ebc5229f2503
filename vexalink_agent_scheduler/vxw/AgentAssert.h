#pragma once

#include "host/VxAssert.h"

/// The assertion records of the agent. Their line numbers are part of the record, which tools and
/// people know them by, and not places in these files: never __LINE__.
namespace agent_assert {

constexpr int kNullEvent = 100;
constexpr int kNewEventHasId = 107;
constexpr int kIdTaken = 116;
constexpr int kBindingRefused = 133;
constexpr int kNoEventInEventData = 346;
constexpr int kNoEventInEvents = 374;

/// Writes a record where `holds` does not.
inline void Check(bool holds, int line) {
  if (holds) return;
  vx::AssertWrite("vexalink_agent_scheduler/vxw/vexalink_agent_scheduler", line, vx::StackTrace());
}

}  // namespace agent_assert
