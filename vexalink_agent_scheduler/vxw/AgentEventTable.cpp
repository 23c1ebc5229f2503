// The event table: what goes in, what comes out, what is looked up.

#include <algorithm>

#include "vexalink_agent_scheduler/vxw/AgentAssert.h"
#include "vexalink_agent_scheduler/vxw/vexalink_agent_scheduler.h"

using agent_assert::Check;

unsigned long vexalink_agent_scheduler::AddEvent(Event* event, bool assignNewId,
                                                 bool registerButton) {
  std::unique_ptr<Event> owned(event);
  Check(event != nullptr, agent_assert::kNullEvent);
  if (event == nullptr) return 0;
  if (assignNewId) {
    Check(event->eventid == 0, agent_assert::kNewEventHasId);
    if (!IsDuplicateEvent(event)) event->eventid = ++currentId;
  }
  const unsigned long id = event->eventid;
  if (id == 0) return 0;
  Check(!events.contains(id), agent_assert::kIdTaken);
  if (registerButton) RegisterButton(*event);
  if (events.try_emplace(id, event).second) {
    owned.release();
  } else {
    setAside.push_back(std::move(owned));
  }
  if (event->OccursOnDate(VxTime::GetCurrentTime())) ScheduleEvent(event, /*schedulePast=*/false);
  return id;
}

unsigned long vexalink_agent_scheduler::AddEvent(const std::string& xml, bool assignNewId,
                                                 bool registerButton) {
  std::unique_ptr<Event> event;
  {
    const vx::auto_com<VxXML::IDocument> document = VxXML::CreateXmlDocument(xml);
    if (!document) return 0;
    event = std::make_unique<Event>(document.get(), latitude, longitude);
  }
  return AddEvent(event.release(), assignNewId, registerButton);
}

void vexalink_agent_scheduler::RegisterButton(const Event& event) {
  const int result = RegisterBinding(event.eventid, BindingType::kButton, event.description,
                                     /*hidden=*/false, /*roomId=*/0, /*icon=*/"");
  Check(result >= 0, agent_assert::kBindingRefused);
  if (result < 0) return;
  RegisterBindingClass(event.eventid, "BUTTON_LINK", /*flags=*/0, /*exclusive=*/false,
                       /*label=*/"");
}

bool vexalink_agent_scheduler::IsDuplicateEvent(const Event* event) const {
  return std::any_of(events.begin(), events.end(), [event](const auto& entry) {
    return entry.second->description == event->description;
  });
}

void vexalink_agent_scheduler::DeleteEvent(unsigned long id, bool unregisterBinding) {
  const auto scheduled = std::find_if(todaysEvents.begin(), todaysEvents.end(),
                                      [id](const Event* e) { return e->eventid == id; });
  if (scheduled != todaysEvents.end()) todaysEvents.erase(scheduled);
  const auto entry = events.find(id);
  if (entry == events.end()) return;
  if (unregisterBinding) UnregisterBinding(id);
  // The first of today's entries with this id may have been that of a record set aside.
  todaysEvents.remove(entry->second);
  delete entry->second;
  events.erase(entry);
}

void vexalink_agent_scheduler::DeleteEvent(unsigned long id) {
  // The button binding stays: events that other drivers add never get one.
  DeleteEvent(id, /*unregisterBinding=*/false);
}

unsigned long vexalink_agent_scheduler::ModifyEvent(const std::string& xml) {
  unsigned long id = 0;
  {
    const vx::auto_com<VxXML::IDocument> document = VxXML::CreateXmlDocument(xml);
    if (!document || document->GetRoot() == nullptr) return 0;
    id = document->GetRoot()->GetUnsigned("eventid");
  }
  DeleteEvent(id, /*unregisterBinding=*/false);
  AddEvent(xml, /*assignNewId=*/false, /*registerButton=*/false);
  return id;
}

vx::auto_com<VxXML::INode> vexalink_agent_scheduler::GetEvent(unsigned long id) const {
  const auto entry = events.find(id);
  if (entry == events.end()) return nullptr;
  return entry->second->toXml();
}

unsigned long vexalink_agent_scheduler::GetEventIdByDescription(const std::string& description) {
  const auto entry = std::find_if(events.begin(), events.end(), [&description](const auto& e) {
    return e.second->description == description;
  });
  return entry == events.end() ? 0 : entry->first;
}

bool vexalink_agent_scheduler::DoesEventExist(unsigned long id) { return events.contains(id); }

unsigned long vexalink_agent_scheduler::AddDailyEvent(const std::string& description,
                                                      unsigned int hour, unsigned int minute) {
  return AddEvent(Event::newDailyEvent(description, 1, hour * 60 + minute, latitude, longitude),
                  /*assignNewId=*/true, /*registerButton=*/false);
}

unsigned long vexalink_agent_scheduler::AddEveryXDaysEvent(const std::string& description,
                                                           unsigned int days,
                                                           unsigned int minutes) {
  return AddEvent(Event::newDailyEvent(description, days, minutes, latitude, longitude),
                  /*assignNewId=*/true, /*registerButton=*/false);
}

unsigned long vexalink_agent_scheduler::AddDaysOfWeekEvent(const std::string& description,
                                                           unsigned int daymask,
                                                           unsigned int minutes) {
  return AddEvent(Event::newDaysOfWeekEvent(description, daymask, minutes, latitude, longitude),
                  /*assignNewId=*/true, /*registerButton=*/false);
}
