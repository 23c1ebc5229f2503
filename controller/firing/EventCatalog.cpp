#include "controller/firing/EventCatalog.h"

namespace controller {

void EventCatalog::Load(DriverInstance& scheduler) {
  events_.clear();
  const auto all = scheduler.Request("GET_ALL_EVENTS");
  if (!all) return;
  for (const VxXML::INode* event = all->GetFirstChild(); event; event = event->GetNextSibling()) {
    EventElement read = ReadEventElement(*event);
    const unsigned long id = read.eventid;
    events_.insert_or_assign(id, std::move(read));
  }
}

const EventElement* EventCatalog::Find(DriverInstance& scheduler, unsigned long eventId) {
  if (const EventElement* known = Known(eventId)) return known;
  return Refresh(scheduler, eventId);
}

const EventElement* EventCatalog::Known(unsigned long eventId) const {
  const auto found = events_.find(eventId);
  return found == events_.end() ? nullptr : &found->second;
}

const EventElement* EventCatalog::Refresh(DriverInstance& scheduler, unsigned long eventId) {
  const auto element = scheduler.Request("GET_EVENT", {{"EVENT_ID", std::to_string(eventId)}});
  if (!element) {
    events_.erase(eventId);
    return nullptr;
  }
  return &events_.insert_or_assign(eventId, ReadEventElement(*element)).first->second;
}

}  // namespace controller
