#pragma once

#include <ctime>
#include <random>
#include <string>

#include "vexalink_agent_scheduler/vxw/ScheduledEvent.h"

/// Events of every kind for tests that compare two readings of the rules. The same seed gives the
/// same events in the same zone.
class RandomEvents {
 public:
  explicit RandomEvents(unsigned seed) : random_(seed) {}

  /// An event with any kind, rate, mask, period, base and end, most of them sensible; starts within
  /// a few years of 2024, at midnight more often than not.
  Event Next();
  /// An instant within some years of the events, often near midnight, noon or a clock change.
  std::time_t Instant();
  /// A number from 0 to below `count`.
  int Below(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

  /// What a failed comparison says of an event.
  static std::string Describe(const Event& event);

 private:
  std::mt19937 random_;
};
