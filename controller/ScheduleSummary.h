#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "controller/DriverInstance.h"
#include "controller/EventElement.h"

namespace controller {

/// The event that comes next.
struct NextEvent {
  unsigned long eventid = 0;
  std::string description;
  NextOccurrence when;
};

/// What a schedule amounts to, as the scheduler tells it.
struct ScheduleSummary {
  std::size_t events = 0;
  /// Nothing where no event comes again. Of several at one minute the one with the smallest id. A
  /// random spread is not in it: that is drawn on the day.
  std::optional<NextEvent> next;
};

/// Asks the scheduler.
ScheduleSummary Summarise(DriverInstance& scheduler);

/// "7 events", "1 event"
std::string CountText(std::size_t count, const std::string& singular);

/// `event 7 "Welcome"`; without the description where that is empty.
std::string EventName(unsigned long eventid, const std::string& description);

/// `next: event 7 "Welcome" at 2024-03-06 07:05`, or that nothing comes.
std::string NextText(const ScheduleSummary& summary);

}  // namespace controller
