#include "controller/record/TranscriptTee.h"

#include <utility>

namespace controller {

TranscriptTee::TranscriptTee(IInstanceManager& manager, Write write)
    : manager_(manager), host_(manager.DriverHost()), write_(std::move(write)) {}

void TranscriptTee::Listen() {
  sink_ = vx::SetAssertSink(this);
  listens_ = true;
}

void TranscriptTee::Deaf() {
  if (std::exchange(listens_, false)) vx::SetAssertSink(std::exchange(sink_, nullptr));
}

int TranscriptTee::RegisterQuery(const char* iid, void* object) {
  const int result = manager_.RegisterQuery(iid, object);
  write_(transcript::RegisterQuery(iid, result));
  return result;
}

void TranscriptTee::UnregisterQuery(const char* iid) {
  write_(transcript::UnregisterQuery(iid));
  manager_.UnregisterQuery(iid);
}

unsigned long TranscriptTee::AddTimer(VxBaseDriver& driver, unsigned long intervalMilliseconds,
                                      unsigned int kind) {
  const unsigned long id = host_.AddTimer(driver, intervalMilliseconds, kind);
  lastTimer_ = id;
  write_(transcript::AddTimer(intervalMilliseconds, kind, id - timersBefore_));
  return id;
}

void TranscriptTee::KillTimer(VxBaseDriver& driver, unsigned long timerId) {
  write_(transcript::KillTimer(timerId - timersBefore_));
  host_.KillTimer(driver, timerId);
}

void TranscriptTee::VmRegisterListener(VxBaseDriver& driver, unsigned long device,
                                       unsigned long variable, IVariableCallback& listener) {
  write_(transcript::VmRegisterListener(device, variable));
  host_.VmRegisterListener(driver, device, variable, listener);
}

void TranscriptTee::VmUnregisterListener(VxBaseDriver& driver, unsigned long device,
                                         unsigned long variable, IVariableCallback& listener) {
  write_(transcript::VmUnregisterListener(device, variable));
  host_.VmUnregisterListener(driver, device, variable, listener);
}

int TranscriptTee::RegisterBinding(VxBaseDriver& driver, unsigned long bindingId, int type,
                                   const std::string& name) {
  const int result = host_.RegisterBinding(driver, bindingId, type, name);
  write_(transcript::RegisterBinding(bindingId, type, name, result));
  return result;
}

void TranscriptTee::RegisterBindingClass(VxBaseDriver& driver, unsigned long bindingId,
                                         const std::string& bindingClass) {
  write_(transcript::RegisterBindingClass(bindingId, bindingClass));
  host_.RegisterBindingClass(driver, bindingId, bindingClass);
}

void TranscriptTee::UnregisterBinding(VxBaseDriver& driver, unsigned long bindingId) {
  write_(transcript::UnregisterBinding(bindingId));
  host_.UnregisterBinding(driver, bindingId);
}

void TranscriptTee::FireEvent(VxBaseDriver& driver, unsigned long eventId) {
  write_(transcript::FireEvent(eventId));
  host_.FireEvent(driver, eventId);
}

vx::auto_com<IBindMessage> TranscriptTee::CreateBindMessage(VxBaseDriver& driver) {
  write_(transcript::CreateBindMessage());
  return host_.CreateBindMessage(driver);
}

void TranscriptTee::SendBoundCall(VxBaseDriver& driver, unsigned long bindingId,
                                  const IBindMessage& message, ICmdReturn* result) {
  write_(transcript::SendBoundCall(bindingId, message));
  host_.SendBoundCall(driver, bindingId, message, result);
}

void TranscriptTee::ConSendDataToUI(VxBaseDriver& driver, const VxXML::INode& data) {
  write_(transcript::ConSendDataToUI(data));
  host_.ConSendDataToUI(driver, data);
}

void TranscriptTee::DmInvalidateState(VxBaseDriver& driver) {
  write_(transcript::DmInvalidateState());
  host_.DmInvalidateState(driver);
}

void TranscriptTee::EmRemoveByOwner(VxBaseDriver& driver, unsigned long ownerId, int kind) {
  write_(transcript::EmRemoveByOwner(ownerId, kind));
  host_.EmRemoveByOwner(driver, ownerId, kind);
}

void TranscriptTee::LogMessage(VxBaseDriver& driver, unsigned int level, const char* text) {
  write_(transcript::LogMessage(level, text == nullptr ? "" : text));
  host_.LogMessage(driver, level, text);
}

void TranscriptTee::OnAssert(const char* file, int line, const vx::StackTrace& stack) {
  write_(transcript::AssertWrite(file, line));
  if (sink_ != nullptr) sink_->OnAssert(file, line, stack);
}

}  // namespace controller
