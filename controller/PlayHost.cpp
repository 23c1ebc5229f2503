#include "controller/PlayHost.h"

#include <cstdlib>

#include "controller/HostMessages.h"

namespace controller {

void PlayHost::Write(const TranscriptLine& line) {
  if (muted_) return;
  out_ << transcript::Text(line) << '\n';
}

int PlayHost::RegisterQuery(const char* iid, void* object) {
  Write(transcript::RegisterQuery(iid, registerQueryResult_));
  if (registerQueryResult_ != 0) queries_[iid] = object;
  return registerQueryResult_;
}

void PlayHost::UnregisterQuery(const char* iid) {
  Write(transcript::UnregisterQuery(iid));
  queries_.erase(iid);
}

void* PlayHost::FindQuery(const char* iid) {
  const auto found = queries_.find(iid);
  return found == queries_.end() ? nullptr : found->second;
}

unsigned long PlayHost::AddTimer(VxBaseDriver&, unsigned long intervalMilliseconds,
                                 unsigned int kind) {
  ++lastTimer_;
  Write(transcript::AddTimer(intervalMilliseconds, kind, lastTimer_));
  return lastTimer_;
}

void PlayHost::KillTimer(VxBaseDriver&, unsigned long timerId) {
  Write(transcript::KillTimer(timerId));
}

void PlayHost::VmRegisterListener(VxBaseDriver&, unsigned long device, unsigned long variable,
                                  IVariableCallback& listener) {
  Write(transcript::VmRegisterListener(device, variable));
  const auto found = variables_.find({device, variable});
  if (found != variables_.end()) listener.OnVariableChanged(device, variable, found->second);
  if (seed_) std::srand(*seed_);
}

void PlayHost::VmUnregisterListener(VxBaseDriver&, unsigned long device, unsigned long variable,
                                    IVariableCallback&) {
  Write(transcript::VmUnregisterListener(device, variable));
}

int PlayHost::RegisterBinding(VxBaseDriver&, unsigned long bindingId, int type,
                              const std::string& name) {
  Write(transcript::RegisterBinding(bindingId, type, name, registerBindingResult_));
  return registerBindingResult_;
}

void PlayHost::RegisterBindingClass(VxBaseDriver&, unsigned long bindingId,
                                    const std::string& bindingClass) {
  Write(transcript::RegisterBindingClass(bindingId, bindingClass));
}

void PlayHost::UnregisterBinding(VxBaseDriver&, unsigned long bindingId) {
  Write(transcript::UnregisterBinding(bindingId));
}

void PlayHost::FireEvent(VxBaseDriver&, unsigned long eventId) {
  Write(transcript::FireEvent(eventId));
}

vx::auto_com<IBindMessage> PlayHost::CreateBindMessage(VxBaseDriver&) {
  Write(transcript::CreateBindMessage());
  return vx::auto_com<IBindMessage>(givesBindMessage_ ? new BindMessage : nullptr);
}

void PlayHost::SendBoundCall(VxBaseDriver&, unsigned long bindingId, const IBindMessage& message,
                             ICmdReturn*) {
  Write(transcript::SendBoundCall(bindingId, message));
}

void PlayHost::ConSendDataToUI(VxBaseDriver&, const VxXML::INode& data) {
  Write(transcript::ConSendDataToUI(data));
}

void PlayHost::DmInvalidateState(VxBaseDriver&) { Write(transcript::DmInvalidateState()); }

void PlayHost::EmRemoveByOwner(VxBaseDriver&, unsigned long ownerId, int kind) {
  Write(transcript::EmRemoveByOwner(ownerId, kind));
}

void PlayHost::LogMessage(VxBaseDriver&, unsigned int level, const char* text) {
  Write(transcript::LogMessage(level, text));
}

void PlayHost::OnAssert(const char* file, int line, const vx::StackTrace&) {
  Write(transcript::AssertWrite(file, line));
}

}  // namespace controller
