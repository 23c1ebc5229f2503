#include "controller/PlayHost.h"

#include "controller/HostMessages.h"
#include "framework/XmlText.h"

namespace controller {

using Line = nlohmann::ordered_json;

void PlayHost::Write(const Line& line) {
  if (muted_) return;
  out_ << line.dump(-1, ' ', false, Line::error_handler_t::replace) << '\n';
}

int PlayHost::RegisterQuery(const char* iid, void* object) {
  Write({{"call", "RegisterQuery"}, {"iid", iid}, {"result", registerQueryResult_}});
  if (registerQueryResult_ != 0) queries_[iid] = object;
  return registerQueryResult_;
}

void PlayHost::UnregisterQuery(const char* iid) {
  Write({{"call", "UnregisterQuery"}, {"iid", iid}});
  queries_.erase(iid);
}

void* PlayHost::FindQuery(const char* iid) {
  const auto found = queries_.find(iid);
  return found == queries_.end() ? nullptr : found->second;
}

unsigned long PlayHost::AddTimer(VxBaseDriver&, unsigned long intervalMilliseconds,
                                 unsigned int kind) {
  ++lastTimer_;
  Write({{"call", "AddTimer"},
         {"interval", intervalMilliseconds},
         {"second", kind},
         {"result", lastTimer_}});
  return lastTimer_;
}

void PlayHost::KillTimer(VxBaseDriver&, unsigned long timerId) {
  Write({{"call", "KillTimer"}, {"timer", timerId}});
}

void PlayHost::VmRegisterListener(VxBaseDriver&, unsigned long device, unsigned long variable,
                                  IVariableCallback& listener) {
  Write({{"call", "VmRegisterListener"}, {"device", device}, {"variable", variable}});
  const auto found = variables_.find({device, variable});
  if (found != variables_.end()) listener.OnVariableChanged(device, variable, found->second);
}

void PlayHost::VmUnregisterListener(VxBaseDriver&, unsigned long device, unsigned long variable,
                                    IVariableCallback&) {
  Write({{"call", "VmUnregisterListener"}, {"device", device}, {"variable", variable}});
}

int PlayHost::RegisterBinding(VxBaseDriver&, unsigned long bindingId, int type,
                              const std::string& name) {
  Write({{"call", "RegisterBinding"},
         {"id", bindingId},
         {"type", type},
         {"name", name},
         {"result", registerBindingResult_}});
  return registerBindingResult_;
}

void PlayHost::RegisterBindingClass(VxBaseDriver&, unsigned long bindingId,
                                    const std::string& bindingClass) {
  Write({{"call", "RegisterBindingClass"}, {"id", bindingId}, {"class", bindingClass}});
}

void PlayHost::UnregisterBinding(VxBaseDriver&, unsigned long bindingId) {
  Write({{"call", "UnregisterBinding"}, {"id", bindingId}});
}

void PlayHost::FireEvent(VxBaseDriver&, unsigned long eventId) {
  Write({{"call", "FireEvent"}, {"event", eventId}});
}

vx::auto_com<IBindMessage> PlayHost::CreateBindMessage(VxBaseDriver&) {
  Write({{"call", "CreateBindMessage"}});
  return vx::auto_com<IBindMessage>(givesBindMessage_ ? new BindMessage : nullptr);
}

void PlayHost::SendBoundCall(VxBaseDriver&, unsigned long bindingId, const IBindMessage& message,
                             ICmdReturn*) {
  Write({{"call", "SendBoundCall"},
         {"binding", bindingId},
         {"command", message.GetCommand()},
         {"argument", message.GetArgument()}});
}

void PlayHost::ConSendDataToUI(VxBaseDriver&, const VxXML::INode& data) {
  Write({{"call", "ConSendDataToUI"}, {"xml", vx::WriteXml(data, vx::XmlStyle::kTranscript)}});
}

void PlayHost::DmInvalidateState(VxBaseDriver&) { Write({{"call", "DmInvalidateState"}}); }

void PlayHost::EmRemoveByOwner(VxBaseDriver&, unsigned long ownerId, int kind) {
  Write({{"call", "EmRemoveByOwner"}, {"owner", ownerId}, {"kind", kind}});
}

void PlayHost::LogMessage(VxBaseDriver&, unsigned int level, const char* text) {
  Write({{"call", "LogMessage"}, {"level", level}, {"text", text}});
}

void PlayHost::OnAssert(const char* file, int line, const vx::StackTrace&) {
  Write({{"call", "AssertWrite"}, {"file", file}, {"line", line}});
}

}  // namespace controller
