// The agent's frame: creation, start, state and end.

#include "vexalink_agent_scheduler/vxw/vexalink_agent_scheduler.h"

#include <algorithm>
#include <cstdlib>

#include "vexalink_agent_scheduler/vxw/AgentAssert.h"
#include "vexalink_agent_scheduler/vxw/ZoneWatch.h"

namespace {

constexpr unsigned long kSiteDevice = 1;
constexpr unsigned long kLatitudeVariable = 1001;
constexpr unsigned long kLongitudeVariable = 1002;
constexpr unsigned long kTickMilliseconds = 1000;
constexpr unsigned int kTickKind = 17;
// The controller's own nightly scan lives in the table and fires, but is nobody's to keep.
constexpr char kUnlistedDescription[] = "hostcore_mediascan_event";

}  // namespace

/// The library's entry point; see VxGetCreationFunc.
extern "C" VX_API VxCreateFunc GetCreationFunc();
VxCreateFunc GetCreationFunc() { return &vexalink_agent_scheduler::Create; }

IDriver* vexalink_agent_scheduler::Create(IInstanceManager& manager) {
  return new (std::nothrow) vexalink_agent_scheduler(manager);
}

vexalink_agent_scheduler::vexalink_agent_scheduler(IInstanceManager& manager)
    : VxBaseDriver(manager, VxDriverType::kAgent, VxMultiplicity::kOne), queryRegisterer(manager) {
  queryRegisterer.RegisterQuery(kAgentSchedulerIid, static_cast<IAgentScheduler*>(this));
}

vexalink_agent_scheduler::~vexalink_agent_scheduler() {
  ClearAllEvents();
  VmUnregisterListener(kSiteDevice, kLatitudeVariable, *this);
  VmUnregisterListener(kSiteDevice, kLongitudeVariable, *this);
  if (timerId != 0) KillTimer(timerId);
}

int vexalink_agent_scheduler::QueryInterface(const std::string& iid, void** out) {
  if (iid != kAgentSchedulerIid) return VxBaseDriver::QueryInterface(iid, out);
  *out = static_cast<IAgentScheduler*>(this);
  return 0;
}

unsigned long vexalink_agent_scheduler::GetDeviceId() const { return VxBaseDriver::GetDeviceId(); }

int vexalink_agent_scheduler::Initialize(unsigned long deviceId, VxXML::INode& config,
                                         VxXML::INode* persisted) {
  VxBaseDriver::Initialize(deviceId, config, persisted);
  ClearAllEvents();
  currentId = 0;
  if (persisted != nullptr && persisted->IsNamed("event_data")) {
    unsigned long largest = 0;
    if (const VxXML::INode* list = persisted->GetChild("events")) {
      largest = LoadEvents(*list, agent_assert::kNoEventInEventData);
    }
    // An id above all that are loaded is kept, so that ids of deleted events do not come again.
    currentId = std::max(persisted->GetUnsigned("current_id"), largest);
  } else if (persisted != nullptr && persisted->IsNamed("events")) {
    currentId = LoadEvents(*persisted, agent_assert::kNoEventInEvents);
  }
  VmRegisterListener(kSiteDevice, kLatitudeVariable, *this);
  VmRegisterListener(kSiteDevice, kLongitudeVariable, *this);
  scheduleDate = VxTime::GetCurrentTime();
  CalculateTodaysEvents(/*skipPast=*/true);
  timerId = AddTimer(kTickMilliseconds, kTickKind);
  return 0;
}

// Adds every child as an event under the id it carries; answers the largest id.
unsigned long vexalink_agent_scheduler::LoadEvents(const VxXML::INode& parent, int wrongNameLine) {
  unsigned long largest = 0;
  for (const VxXML::INode* child = parent.GetFirstChild(); child != nullptr;
       child = child->GetNextSibling()) {
    agent_assert::Check(child->IsNamed("event"), wrongNameLine);
    largest = std::max(largest,
                       AddEvent(child->ToString(), /*assignNewId=*/false, /*registerButton=*/true));
  }
  return largest;
}

void vexalink_agent_scheduler::OnVariableChanged(unsigned long deviceId, unsigned long variableId,
                                                 const std::string& value) {
  if (deviceId == kSiteDevice && variableId == kLatitudeVariable) {
    latitude = std::strtod(value.c_str(), nullptr);
  }
  if (deviceId == kSiteDevice && variableId == kLongitudeVariable) {
    longitude = std::strtod(value.c_str(), nullptr);
  }
  for (const auto& [id, event] : events) event->SetLatLong(latitude, longitude);
}

vx::auto_com<VxXML::INode> vexalink_agent_scheduler::GetPersistState(unsigned long /*flags*/) {
  vx::auto_com<VxXML::INode> state = VxXML::CreateXmlNode("event_data", "");
  state->AddUnsigned("current_id", currentId);
  state->AddChild(*EventsToXml());
  return state;
}

vx::auto_com<VxXML::INode> vexalink_agent_scheduler::EventsToXml() const {
  const local_time::ZoneHold hold;
  vx::auto_com<VxXML::INode> list = VxXML::CreateXmlNode("events", "");
  for (const auto& [id, event] : events) {
    if (event->description != kUnlistedDescription) list->AddChild(*event->toXml());
  }
  return list;
}

void vexalink_agent_scheduler::ClearAllEvents() {
  todaysIndex.Clear();
  descriptions.clear();
  rules.Forget();
  for (const auto& [id, event] : events) delete event;
  events.clear();
  setAside.clear();
}
