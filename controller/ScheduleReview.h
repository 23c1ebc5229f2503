#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "controller/DriverLoader.h"
#include "controller/Finding.h"
#include "controller/Place.h"
#include "host/VxXml.h"

namespace controller {

/// What there is to say about one child of a schedule.
struct ReviewedEvent {
  /// Its place among its siblings, from 1.
  std::size_t position = 0;
  unsigned long eventid = 0;
  std::string description;
  Findings findings;

  bool Has(Finding::Kind kind) const;
};

/// What there is to say about a schedule.
struct ScheduleReview {
  /// About the schedule itself, its wrapper for example.
  Findings whole;
  /// One for each child, in document order.
  std::vector<ReviewedEvent> events;

  std::size_t Count(Finding::Kind kind) const;
};

/// The element that holds the events: "event_data"'s child, or the root itself in the older form.
/// Null where the root is "event_data" and has no such child. Throws a `Failure` where the root is
/// neither, because the scheduler would then start empty.
const VxXML::INode* EventsOf(const VxXML::INode& root);

/// Which children the scheduler would not load, and why; every child is in the answer.
std::vector<ReviewedEvent> ReviewLoading(const VxXML::INode& events);

/// Everything that there is to say: by reading the schedule, and by asking a scratch scheduler what
/// it makes of each event.
ScheduleReview ReviewSchedule(const VxXML::INode& root, const DriverLoader& loader,
                              const Place& place);

}  // namespace controller
