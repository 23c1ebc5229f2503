#pragma once

#include <map>

#include "controller/DriverInstance.h"
#include "controller/EventElement.h"

namespace controller {

/// What is known of the scheduler's events without asking it each time. The scheduler is asked
/// outside its calls only.
class EventCatalog {
 public:
  /// Reads all events anew.
  void Load(DriverInstance& scheduler);
  /// The event as it was last read; one that is not known yet is asked for. Null where there is
  /// none. Valid until the catalog changes.
  const EventElement* Find(DriverInstance& scheduler, unsigned long eventId);
  /// The event as it was last read, without asking.
  const EventElement* Known(unsigned long eventId) const;
  /// Asks for one event anew; null where it is gone.
  const EventElement* Refresh(DriverInstance& scheduler, unsigned long eventId);
  void Forget(unsigned long eventId) { events_.erase(eventId); }
  const std::map<unsigned long, EventElement>& All() const { return events_; }

 private:
  std::map<unsigned long, EventElement> events_;
};

}  // namespace controller
