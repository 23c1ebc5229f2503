// The door of the persisted state: what a controller hands back at the next start.

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <string_view>
#include <tuple>

#include "controller/Clock.h"
#include "fuzz/AgentInAHouse.h"
#include "fuzz/Property.h"

namespace {

// The state of an agent that was started with `state`.
std::string Reload(const std::string& state) {
  const vx::auto_com<VxXML::IDocument> document = VxXML::CreateXmlDocument(state);
  fuzz::Require(static_cast<bool>(document), "a state that was written parses");
  fuzz::AgentInAHouse house;
  house.Initialize(document->GetRoot());
  return house.State();
}

controller::CommandMessage Request(const char* name, controller::CommandMessage::Params params) {
  return controller::CommandMessage(name, std::move(params));
}

// The listing as it is described: a walk from day to day.
std::string Walk(const vexalink_agent_scheduler& agent, VxTime from, VxTime to) {
  const auto isLater = [](VxTime a, VxTime b) {
    return std::tuple(a.GetYear(), a.GetMonth(), a.GetDay()) >
           std::tuple(b.GetYear(), b.GetMonth(), b.GetDay());
  };
  const vx::auto_com<VxXML::INode> list = VxXML::CreateXmlNode("events", "");
  std::list<Event*> events;
  for (VxTime day = from; !isLater(day, to); day = VxTime(day.Seconds() + 86400)) {
    agent.GetEventsOnDate(day, &events);
    for (const Event* event : events) {
      const VxTime time = event->EventTime(day);
      VxXML::INode& entry = XmlHelper::AddChild(*list, "event", "");
      entry.AddUnsigned("eventid", event->eventid);
      entry.AddText("description", event->description);
      VxXML::INode& when = XmlHelper::AddChild(entry, "event_time", "");
      when.AddInt("year", day.GetYear());
      when.AddInt("month", day.GetMonth());
      when.AddInt("day", day.GetDay());
      when.AddInt("hour", time.GetHour());
      when.AddInt("min", time.GetMinute());
    }
  }
  return list->ToString();
}

// The listing takes short cuts; what it answers and records is what the walk does.
void RequireListingIsTheWalk(fuzz::AgentInAHouse* house, VxTime from, VxTime to) {
  house->TakeCalls();
  const std::string walked = Walk(house->Agent(), from, to);
  const std::string recordsOfTheWalk = house->TakeCalls();
  fuzz::RequireEqual(house->Agent().GetEventOccurences(from, to)->ToString(), walked,
                     "a listing is the walk from day to day");
  fuzz::RequireEqual(house->TakeCalls(), recordsOfTheWalk, "so are its records");
}

// A life of two days: whatever was loaded is listed, fires, and goes.
void Live(fuzz::AgentInAHouse* house, const fuzz::Surroundings& around) {
  vexalink_agent_scheduler& agent = house->Agent();
  agent.OnVariableChanged(1, 1001, std::to_string(around.Latitude()));
  agent.OnVariableChanged(1, 1002, std::to_string(around.Longitude()));
  const std::time_t now = controller::Clock::Now();
  if (now > 253402300800) return;  // nothing comes after the calendar's end
  for (const int year : {1969, 2024, 2037}) {
    RequireListingIsTheWalk(house, VxTime(year, 12, 20, 0, 0, 0, -1),
                            VxTime(year + 1, 4, 10, 0, 0, 0, -1));
  }
  RequireListingIsTheWalk(house, VxTime(2024, 10, 1, 0, 0, 0, -1),
                          VxTime(2024, 11, 10, 23, 0, 0, -1));
  for (int hour = 1; hour <= 48; ++hour) {
    controller::Clock::Freeze(now + hour * 3600);
    agent.OnTimerExpired(1, 0);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const fuzz::Surroundings around(text);
  const vx::auto_com<VxXML::IDocument> document = VxXML::CreateXmlDocument(text);
  if (!document) return 0;
  const std::string before = document->GetRoot()->ToString();

  fuzz::AgentInAHouse house;
  house.Initialize(document->GetRoot());
  fuzz::RequireEqual(document->GetRoot()->ToString(), before, "loading leaves the state alone");
  const std::string state = house.State();
  fuzz::RequireEqual(house.State(), state, "asking for the state changes nothing");
  const std::string third = Reload(Reload(Reload(state)));
  fuzz::RequireEqual(Reload(third), third, "a state that was loaded and written again settles");

  Live(&house, around);
  vexalink_agent_scheduler& agent = house.Agent();
  const vx::auto_com<VxXML::INode> all = agent.UIRequest(Request("GET_ALL_EVENTS", {}));
  for (const VxXML::INode* event = all->GetFirstChild(); event != nullptr;
       event = event->GetNextSibling()) {
    const unsigned long id = event->GetUnsigned("eventid");
    fuzz::Require(id != 0, "no event is stored under id 0");
    fuzz::Require(agent.DoesEventExist(id), "what is listed exists");
    agent.DeleteEvent(id);
    fuzz::Require(!agent.DoesEventExist(id), "what was deleted is gone");
  }
  fuzz::Require(agent.UIRequest(Request("GET_ALL_EVENTS", {}))->IsEmpty(), "all can be deleted");
  return 0;
}
