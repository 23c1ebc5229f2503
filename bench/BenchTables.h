#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench/QuietHost.h"
#include "vexalink_agent_scheduler/vxw/ScheduledEvent.h"
#include "vexalink_agent_scheduler/vxw/vexalink_agent_scheduler.h"

/// The zone in which everything is measured, by a rule that no update of the zone data moves.
inline constexpr char kBenchZone[] = "EST5EDT,M3.2.0,M11.1.0";

/// Rules as a large house has them: 20 % once, 20 % every 1 to 3 days, 30 % weekly masks every one
/// or two weeks, 15 % monthly by day, 5 % nth weekday, 5 % last weekday, 5 % yearly; starting
/// within the year before 2024, at random minutes, every fourth by the sun where `withSun`. Ids
/// from 1.
std::vector<std::unique_ptr<Event>> MixedEvents(int count, bool withSun);

/// The same as a table.
std::map<unsigned long, Event*> TableOf(const std::vector<std::unique_ptr<Event>>& events);

/// A persisted state of mixed events, about 600 bytes an event.
std::string PersistedState(int count);

/// An agent with `count` mixed events, initialised on 2024-03-06 noon.
class BenchAgent {
 public:
  explicit BenchAgent(int count, bool withSun = true);

  QuietHost host;
  vexalink_agent_scheduler agent{host};
};

/// Initialises an agent from a persisted state.
void Load(vexalink_agent_scheduler& agent, const std::string& state);
