#include "controller/TranscriptLines.h"

#include "framework/XmlText.h"

namespace controller::transcript {

using Line = TranscriptLine;

Line RegisterQuery(const char* iid, int result) {
  return {{"call", "RegisterQuery"}, {"iid", iid}, {"result", result}};
}

Line UnregisterQuery(const char* iid) { return {{"call", "UnregisterQuery"}, {"iid", iid}}; }

Line AddTimer(unsigned long intervalMilliseconds, unsigned int kind, unsigned long id) {
  return {
      {"call", "AddTimer"}, {"interval", intervalMilliseconds}, {"second", kind}, {"result", id}};
}

Line KillTimer(unsigned long id) { return {{"call", "KillTimer"}, {"timer", id}}; }

Line VmRegisterListener(unsigned long device, unsigned long variable) {
  return {{"call", "VmRegisterListener"}, {"device", device}, {"variable", variable}};
}

Line VmUnregisterListener(unsigned long device, unsigned long variable) {
  return {{"call", "VmUnregisterListener"}, {"device", device}, {"variable", variable}};
}

Line RegisterBinding(unsigned long id, int type, const std::string& name, int result) {
  return {
      {"call", "RegisterBinding"}, {"id", id}, {"type", type}, {"name", name}, {"result", result}};
}

Line RegisterBindingClass(unsigned long id, const std::string& bindingClass) {
  return {{"call", "RegisterBindingClass"}, {"id", id}, {"class", bindingClass}};
}

Line UnregisterBinding(unsigned long id) { return {{"call", "UnregisterBinding"}, {"id", id}}; }

Line FireEvent(unsigned long id) { return {{"call", "FireEvent"}, {"event", id}}; }

Line CreateBindMessage() { return {{"call", "CreateBindMessage"}}; }

Line SendBoundCall(unsigned long binding, const IBindMessage& message) {
  return {{"call", "SendBoundCall"},
          {"binding", binding},
          {"command", message.GetCommand()},
          {"argument", message.GetArgument()}};
}

Line ConSendDataToUI(const VxXML::INode& data) {
  return {{"call", "ConSendDataToUI"}, {"xml", vx::WriteXml(data, vx::XmlStyle::kTranscript)}};
}

Line DmInvalidateState() { return {{"call", "DmInvalidateState"}}; }

Line EmRemoveByOwner(unsigned long owner, int kind) {
  return {{"call", "EmRemoveByOwner"}, {"owner", owner}, {"kind", kind}};
}

Line LogMessage(unsigned int level, const char* text) {
  return {{"call", "LogMessage"}, {"level", level}, {"text", text}};
}

Line AssertWrite(const char* file, int line) {
  return {{"call", "AssertWrite"}, {"file", file}, {"line", line}};
}

std::string Text(const Line& line) {
  return line.dump(-1, ' ', false, Line::error_handler_t::replace);
}

Line Shown(const VxXML::INode* node) {
  if (node == nullptr) return nullptr;
  return vx::WriteXml(*node, vx::XmlStyle::kTranscript);
}

}  // namespace controller::transcript
