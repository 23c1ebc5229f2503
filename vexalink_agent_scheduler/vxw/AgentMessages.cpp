// Commands and the requests of user interfaces.

#include <cstdlib>
#include <ctime>

#include "astro/AstroClock.h"
#include "vexalink_agent_scheduler/vxw/vexalink_agent_scheduler.h"

namespace {

using VxXML::INode;

long NumberParam(const ICmdMessage& message, const char* name) {
  return std::strtol(message.GetParam(name).c_str(), nullptr, 10);
}

int IntParam(const ICmdMessage& message, const char* name) {
  return static_cast<int>(NumberParam(message, name));
}

unsigned long IdParam(const ICmdMessage& message) {
  return static_cast<unsigned long>(NumberParam(message, "EVENT_ID"));
}

VxTime MidnightParam(const ICmdMessage& message, const char* year, const char* month,
                     const char* day) {
  return VxTime(IntParam(message, year), IntParam(message, month), IntParam(message, day), 0, 0, 0,
                -1);
}

void AddTimeOfDay(INode& parent, const char* name, VxTime time) {
  INode& node = XmlHelper::AddChild(parent, name, "");
  node.AddInt("hour", time.GetHour());
  node.AddInt("min", time.GetMinute());
}

}  // namespace

int vexalink_agent_scheduler::ExecuteCommand(const ICmdMessage& message, ICmdReturn* result,
                                             unsigned long sender) {
  VxBaseDriver::ExecuteCommand(message, result, sender);
  const std::string& name = message.GetName();
  if (name == "ADD_EVENT") {
    ExecuteAddEvent(message);
  } else if (name == "MODIFY_EVENT") {
    ExecuteModifyEvent(message);
  } else if (name == "DELETE_EVENT") {
    ExecuteDeleteEvent(message);
  }
  return 0;
}

void vexalink_agent_scheduler::ExecuteAddEvent(const ICmdMessage& message) {
  const unsigned long id =
      AddEvent(message.GetParam("EVENT_XML"), /*assignNewId=*/true, /*registerButton=*/true);
  if (id != 0) {
    const vx::auto_com<INode> notice = VxXML::CreateXmlNode("event_added", "");
    notice->AddChild(*GetEvent(id));
    ConSendDataToUI(*notice);
  }
  DmInvalidateState();
}

void vexalink_agent_scheduler::ExecuteModifyEvent(const ICmdMessage& message) {
  const unsigned long id = ModifyEvent(message.GetParam("EVENT_XML"));
  if (id != 0) {
    const vx::auto_com<INode> notice = VxXML::CreateXmlNode("event_modified", "");
    if (const vx::auto_com<INode> event = GetEvent(id)) notice->AddChild(*event);
    ConSendDataToUI(*notice);
  }
  DmInvalidateState();
}

void vexalink_agent_scheduler::ExecuteDeleteEvent(const ICmdMessage& message) {
  const unsigned long id = IdParam(message);
  DeleteEvent(id, /*unregisterBinding=*/true);
  if (id != 0) {
    const vx::auto_com<INode> notice = VxXML::CreateXmlNode("event_deleted", "");
    notice->AddUnsigned("eventid", id);
    ConSendDataToUI(*notice);
  }
  DmInvalidateState();
  EmRemoveByOwner(id, CI_OWNER_ID_TYPE::kEvent);
}

vx::auto_com<INode> vexalink_agent_scheduler::UIRequest(const ICmdMessage& message) {
  const std::string& name = message.GetName();
  if (name == "GET_ALL_EVENTS") return EventsToXml();
  if (name == "GET_EVENT") return GetEvent(IdParam(message));
  if (name == "GET_EVENT_OCCURENCES") return AnswerOccurrences(message);
  if (name == "GET_SUNRISE_SUNSET") return AnswerSunriseSunset(message);
  return VxBaseDriver::UIRequest(message);
}

vx::auto_com<INode> vexalink_agent_scheduler::AnswerOccurrences(const ICmdMessage& message) const {
  const VxTime from = MidnightParam(message, "FROM_YEAR", "FROM_MONTH", "FROM_DAY");
  const VxTime to = MidnightParam(message, "TO_YEAR", "TO_MONTH", "TO_DAY");
  return GetEventOccurences(from, to);
}

vx::auto_com<INode> vexalink_agent_scheduler::AnswerSunriseSunset(
    const ICmdMessage& message) const {
  const VxTime date = MidnightParam(message, "YEAR", "MONTH", "DAY");
  const VxTime sunrise =
      Event::CalculateEventTime(date, Scheduler::kSunrise, 0, latitude, longitude);
  const VxTime sunset = Event::CalculateEventTime(date, Scheduler::kSunset, 0, latitude, longitude);
  const vx::auto_com<INode> reply = VxXML::CreateXmlNode("sunrise_sunset", "");
  // The zone of the present moment, not of the day asked for: a winter's request for a summer day
  // names the winter zone. Kept: user interfaces show it beside their clock.
  reply->AddText("timezone", tzname[AstroClock::IsDaylightSavings() ? 1 : 0]);
  AddTimeOfDay(*reply, "sunrise", sunrise);
  AddTimeOfDay(*reply, "sunset", sunset);
  return reply;
}
