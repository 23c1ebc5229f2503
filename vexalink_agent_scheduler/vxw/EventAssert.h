#pragma once

#include "host/VxAssert.h"

/// The assertion records of the event model. Their line numbers are part of the record, which tools
/// and people know them by, and not places in these files: never __LINE__.
namespace event_assert {

constexpr int kNoRoot = 54;
constexpr int kRootIsNoEvent = 55;
constexpr int kNoStart = 66;
constexpr int kNoStartDate = 74;
constexpr int kRateBelowOne = 146;
constexpr int kUnknownOffset = 233;
constexpr int kNoPeriod = 309;
constexpr int kDailyByZero = 363;
constexpr int kDailyBeforeStart = 368;
constexpr int kWeeklyByZero = 379;
constexpr int kWeeklyBeforeStart = 384;
constexpr int kMonthlyByZero = 405;
constexpr int kYearlyByZero = 427;

/// Writes a record where `holds` does not.
inline void Check(bool holds, int line) {
  if (holds) return;
  vx::AssertWrite("vexalink_agent_scheduler/vxw/ScheduledEvent", line, vx::StackTrace());
}

}  // namespace event_assert
