#include "host/VxBaseDriver.h"

#include "framework/IDriverHost.h"

VxBaseDriver::VxBaseDriver(IInstanceManager& manager, VxDriverType type,
                           VxMultiplicity multiplicity)
    : manager_(manager), type_(type), multiplicity_(multiplicity) {}

VxBaseDriver::~VxBaseDriver() = default;

int VxBaseDriver::QueryInterface(const std::string& /*iid*/, void** out) {
  *out = nullptr;
  return 1;
}

unsigned long VxBaseDriver::GetDeviceId() const { return deviceId_; }

VxDriverType VxBaseDriver::GetDriverType() const { return type_; }

VxMultiplicity VxBaseDriver::GetMultiplicity() const { return multiplicity_; }

int VxBaseDriver::Initialize(unsigned long deviceId, VxXML::INode& /*config*/,
                             VxXML::INode* /*persisted*/) {
  deviceId_ = deviceId;
  return 0;
}

vx::auto_com<VxXML::INode> VxBaseDriver::GetPersistState(unsigned long /*flags*/) {
  return nullptr;
}

int VxBaseDriver::ExecuteCommand(const ICmdMessage& /*message*/, ICmdReturn* /*result*/,
                                 unsigned long /*sender*/) {
  return 0;
}

bool VxBaseDriver::TestCondition(const ICondMessage& /*message*/, unsigned long* /*reserved*/) {
  return false;
}

vx::auto_com<VxXML::INode> VxBaseDriver::UIRequest(const ICmdMessage& /*message*/) {
  return nullptr;
}

void VxBaseDriver::OnVariableChanged(unsigned long, unsigned long, const std::string&) {}
void VxBaseDriver::OnTimerExpired(unsigned long, long) {}

unsigned long VxBaseDriver::AddRef() { return ++references_; }
unsigned long VxBaseDriver::Release() { return --references_; }

void VxBaseDriver::OnBindingAdded(unsigned long, unsigned long) {}
void VxBaseDriver::OnBindingRemoved(unsigned long, unsigned long) {}
void VxBaseDriver::OnBoundCall(unsigned long, const IBindMessage&) {}
void VxBaseDriver::OnRoomNameChanged(unsigned long, const std::string&) {}
void VxBaseDriver::OnDeviceNameChanged(unsigned long, const std::string&) {}
void VxBaseDriver::OnAudioSelected(unsigned long, unsigned long) {}
void VxBaseDriver::OnVideoSelected(unsigned long, unsigned long) {}
void VxBaseDriver::OnDataReceived(unsigned long, const std::string&) {}
void VxBaseDriver::OnConnectionChanged(unsigned long, bool) {}
int VxBaseDriver::VmAdd(unsigned long, const std::string&, const std::string&) { return 0; }
int VxBaseDriver::VmRemove(unsigned long) { return 0; }
vx::auto_com<VxXML::INode> VxBaseDriver::GetEvents() { return nullptr; }
std::string VxBaseDriver::GetEventLabel(unsigned long) { return {}; }
vx::auto_com<VxXML::INode> VxBaseDriver::GetCapabilities() { return nullptr; }

unsigned long VxBaseDriver::AddTimer(unsigned long intervalMilliseconds, unsigned int kind) {
  return manager_.DriverHost().AddTimer(*this, intervalMilliseconds, kind);
}

void VxBaseDriver::KillTimer(unsigned long& timerId) {
  manager_.DriverHost().KillTimer(*this, timerId);
  timerId = 0;
}

void VxBaseDriver::VmRegisterListener(unsigned long device, unsigned long variable,
                                      IVariableCallback& listener) {
  manager_.DriverHost().VmRegisterListener(*this, device, variable, listener);
}

void VxBaseDriver::VmUnregisterListener(unsigned long device, unsigned long variable,
                                        IVariableCallback& listener) {
  manager_.DriverHost().VmUnregisterListener(*this, device, variable, listener);
}

int VxBaseDriver::RegisterBinding(unsigned long bindingId, BindingType type,
                                  const std::string& name, bool /*hidden*/,
                                  unsigned long /*roomId*/, const std::string& /*icon*/) {
  return manager_.DriverHost().RegisterBinding(*this, bindingId, static_cast<int>(type), name);
}

void VxBaseDriver::RegisterBindingClass(unsigned long bindingId, const std::string& bindingClass,
                                        unsigned long /*flags*/, bool /*exclusive*/,
                                        const std::string& /*label*/) {
  manager_.DriverHost().RegisterBindingClass(*this, bindingId, bindingClass);
}

void VxBaseDriver::UnregisterBinding(unsigned long bindingId) {
  manager_.DriverHost().UnregisterBinding(*this, bindingId);
}

void VxBaseDriver::FireEvent(unsigned long eventId) {
  manager_.DriverHost().FireEvent(*this, eventId);
}

vx::auto_com<IBindMessage> VxBaseDriver::CreateBindMessage() {
  return manager_.DriverHost().CreateBindMessage(*this);
}

void VxBaseDriver::SendBoundCall(unsigned long bindingId, const IBindMessage& message,
                                 ICmdReturn* result) {
  manager_.DriverHost().SendBoundCall(*this, bindingId, message, result);
}

void VxBaseDriver::ConSendDataToUI(const VxXML::INode& data) {
  manager_.DriverHost().ConSendDataToUI(*this, data);
}

void VxBaseDriver::DmInvalidateState() { manager_.DriverHost().DmInvalidateState(*this); }

void VxBaseDriver::EmRemoveByOwner(unsigned long ownerId, CI_OWNER_ID_TYPE kind) {
  manager_.DriverHost().EmRemoveByOwner(*this, ownerId, static_cast<int>(kind));
}

void VxBaseDriver::LogMessage(unsigned int level, const char* text) {
  manager_.DriverHost().LogMessage(*this, level, text);
}
