#include "examples/PorchDriver.h"

#include <new>

namespace {

constexpr char kDescription[] = "Porch light";
constexpr unsigned int kHour = 18;
constexpr unsigned int kMinute = 30;

constexpr unsigned long kLookAgainMilliseconds = 5000;
constexpr unsigned int kLookAgainKind = 1;

constexpr unsigned int kLogWarning = 4;
constexpr unsigned int kLogInformation = 6;

}  // namespace

/// The library's entry point; see VxGetCreationFunc.
extern "C" VX_API VxCreateFunc GetCreationFunc();
VxCreateFunc GetCreationFunc() { return &PorchDriver::Create; }

IDriver* PorchDriver::Create(IInstanceManager& manager) {
  return new (std::nothrow) PorchDriver(manager);
}

PorchDriver::PorchDriver(IInstanceManager& manager)
    : VxBaseDriver(manager, VxDriverType::kDevice, VxMultiplicity::kOne), manager_(manager) {}

PorchDriver::~PorchDriver() { StopLooking(); }

int PorchDriver::Initialize(unsigned long deviceId, VxXML::INode& config, VxXML::INode* persisted) {
  // First, as in every driver: from here on the base knows the device id.
  VxBaseDriver::Initialize(deviceId, config, persisted);
  if (persisted != nullptr && persisted->IsNamed("porch_light")) {
    wanted_ = persisted->GetInt("wanted") != 0;
  }
  if (wanted_) KeepEvent();
  return 0;
}

vx::auto_com<VxXML::INode> PorchDriver::GetPersistState(unsigned long) {
  vx::auto_com<VxXML::INode> state = VxXML::CreateXmlNode("porch_light", "");
  state->AddInt("wanted", wanted_ ? 1 : 0);
  return state;
}

int PorchDriver::ExecuteCommand(const ICmdMessage& message, ICmdReturn* result,
                                unsigned long sender) {
  VxBaseDriver::ExecuteCommand(message, result, sender);
  const std::string& name = message.GetName();
  if (name != "KEEP_PORCH_LIGHT" && name != "DROP_PORCH_LIGHT") return 0;
  wanted_ = name == "KEEP_PORCH_LIGHT";
  if (wanted_) {
    KeepEvent();
  } else {
    DropEvent();
  }
  DmInvalidateState();
  return 0;
}

vx::auto_com<VxXML::INode> PorchDriver::UIRequest(const ICmdMessage& message) {
  if (message.GetName() != "GET_PORCH_LIGHT") return VxBaseDriver::UIRequest(message);
  vx::auto_com<VxXML::INode> reply = VxXML::CreateXmlNode("porch_light", "");
  reply->AddInt("wanted", wanted_ ? 1 : 0);
  reply->AddUnsigned("eventid", EventId());
  return reply;
}

void PorchDriver::OnTimerExpired(unsigned long timer, long) {
  if (timer == timerId_) KeepEvent();
}

// The scheduler, or null. Ask each time: it belongs to the agent, which may come late or go early.
IAgentScheduler* PorchDriver::FindScheduler() const {
  return static_cast<IAgentScheduler*>(manager_.FindQuery(kAgentSchedulerIid));
}

unsigned long PorchDriver::EventId() const {
  IAgentScheduler* const scheduler = FindScheduler();
  return scheduler == nullptr ? 0 : scheduler->GetEventIdByDescription(kDescription);
}

void PorchDriver::KeepEvent() {
  IAgentScheduler* const scheduler = FindScheduler();
  if (scheduler == nullptr) {
    if (timerId_ == 0) timerId_ = AddTimer(kLookAgainMilliseconds, kLookAgainKind);
    return;
  }
  StopLooking();
  // The scheduler keeps its events over a restart. AddDailyEvent would answer 0 for a description
  // that exists, and that could not be told from a failure.
  if (scheduler->GetEventIdByDescription(kDescription) != 0) return;
  if (scheduler->AddDailyEvent(kDescription, kHour, kMinute) == 0) {
    LogMessage(kLogWarning, "Porch: the scheduler did not take the event");
    return;
  }
  LogMessage(kLogInformation, "Porch: the light is in the schedule, every day at 18:30");
}

void PorchDriver::DropEvent() {
  StopLooking();
  IAgentScheduler* const scheduler = FindScheduler();
  if (scheduler == nullptr) return;
  scheduler->DeleteEvent(scheduler->GetEventIdByDescription(kDescription));
}

void PorchDriver::StopLooking() {
  if (timerId_ != 0) KillTimer(timerId_);
}
