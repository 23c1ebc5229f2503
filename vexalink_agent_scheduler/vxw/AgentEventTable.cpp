// The event table: what goes in, what comes out, what is looked up.

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
    descriptions.emplace(event->description, id);
    rules.Forget();
    owned.release();
  } else {
    setAside.emplace(id, std::move(owned));
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

unsigned long vexalink_agent_scheduler::LowestIdOf(std::string_view description) const {
  const auto found = descriptions.lower_bound({description, 0});
  return found != descriptions.end() && found->first == description ? found->second : 0;
}

bool vexalink_agent_scheduler::IsDuplicateEvent(const Event* event) const {
  return LowestIdOf(event->description) != 0;
}

// Takes the first entry with this id out of today's list: the table's record, or one set aside.
void vexalink_agent_scheduler::RemoveFirstFromToday(unsigned long id) {
  Event* first = nullptr;
  const auto consider = [this, &first](Event* event) {
    if (!todaysIndex.IsListed(*event)) return;
    if (first == nullptr || TodaysIndex::IsBefore(*event, *first)) first = event;
  };
  if (const auto entry = events.find(id); entry != events.end()) consider(entry->second);
  const auto [begin, end] = setAside.equal_range(id);
  for (auto aside = begin; aside != end; ++aside) consider(aside->second.get());
  if (first != nullptr) todaysIndex.Remove(*first);
}

void vexalink_agent_scheduler::DeleteEvent(unsigned long id, bool unregisterBinding) {
  RemoveFirstFromToday(id);
  const auto entry = events.find(id);
  if (entry == events.end()) return;
  if (unregisterBinding) UnregisterBinding(id);
  Event* const event = entry->second;
  todaysIndex.Remove(*event);  // the entry taken out above may have been that of a record set aside
  descriptions.erase({event->description, id});
  rules.Forget();
  delete event;
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
  return LowestIdOf(description);
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
