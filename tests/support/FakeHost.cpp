#include "tests/support/FakeHost.h"

#include "framework/XmlText.h"

namespace {

class FakeBindMessage final : public IBindMessage {
 public:
  void AddRef() override { ++references_; }
  void Release() override {
    if (--references_ == 0) delete this;
  }
  void SetCommand(const char* command, int argument) override {
    command_ = command;
    argument_ = argument;
  }
  const std::string& GetCommand() const override { return command_; }
  int GetArgument() const override { return argument_; }

 private:
  ~FakeBindMessage() = default;
  std::string command_;
  int argument_ = 0;
  unsigned long references_ = 1;
};

std::string Line(const char* call) { return call; }

template <typename... Rest>
std::string Line(const char* call, const std::string& first, const Rest&... rest) {
  return Line((std::string(call) + " " + first).c_str(), rest...);
}

template <typename T>
std::string Text(T number) {
  return std::to_string(number);
}

}  // namespace

FakeHost::FakeHost() : sinkBefore_(vx::SetAssertSink(this)) {}

FakeHost::~FakeHost() { vx::SetAssertSink(sinkBefore_); }

int FakeHost::RegisterQuery(const char* iid, void* object) {
  calls.push_back(Line("RegisterQuery", iid));
  if (registerQueryResult != 0) queries_[iid] = object;
  return registerQueryResult;
}

void FakeHost::UnregisterQuery(const char* iid) {
  calls.push_back(Line("UnregisterQuery", iid));
  queries_.erase(iid);
}

void* FakeHost::FindQuery(const char* iid) {
  const auto found = queries_.find(iid);
  return found == queries_.end() ? nullptr : found->second;
}

unsigned long FakeHost::AddTimer(VxBaseDriver&, unsigned long interval, unsigned int kind) {
  calls.push_back(Line("AddTimer", Text(interval), Text(kind)));
  return ++lastTimer;
}

void FakeHost::KillTimer(VxBaseDriver&, unsigned long timerId) {
  calls.push_back(Line("KillTimer", Text(timerId)));
}

void FakeHost::VmRegisterListener(VxBaseDriver&, unsigned long device, unsigned long variable,
                                  IVariableCallback& listener) {
  calls.push_back(Line("VmRegisterListener", Text(device), Text(variable)));
  const auto found = variables.find({device, variable});
  if (found != variables.end()) listener.OnVariableChanged(device, variable, found->second);
}

void FakeHost::VmUnregisterListener(VxBaseDriver&, unsigned long device, unsigned long variable,
                                    IVariableCallback&) {
  calls.push_back(Line("VmUnregisterListener", Text(device), Text(variable)));
}

int FakeHost::RegisterBinding(VxBaseDriver&, unsigned long bindingId, int type,
                              const std::string& name) {
  calls.push_back(Line("RegisterBinding", Text(bindingId), Text(type), name));
  return registerBindingResult;
}

void FakeHost::RegisterBindingClass(VxBaseDriver&, unsigned long bindingId,
                                    const std::string& bindingClass) {
  calls.push_back(Line("RegisterBindingClass", Text(bindingId), bindingClass));
}

void FakeHost::UnregisterBinding(VxBaseDriver&, unsigned long bindingId) {
  calls.push_back(Line("UnregisterBinding", Text(bindingId)));
}

void FakeHost::FireEvent(VxBaseDriver&, unsigned long eventId) {
  calls.push_back(Line("FireEvent", Text(eventId)));
}

vx::auto_com<IBindMessage> FakeHost::CreateBindMessage(VxBaseDriver&) {
  calls.push_back(Line("CreateBindMessage"));
  return vx::auto_com<IBindMessage>(givesBindMessage ? new FakeBindMessage : nullptr);
}

void FakeHost::SendBoundCall(VxBaseDriver&, unsigned long bindingId, const IBindMessage& message,
                             ICmdReturn*) {
  calls.push_back(
      Line("SendBoundCall", Text(bindingId), message.GetCommand(), Text(message.GetArgument())));
}

void FakeHost::ConSendDataToUI(VxBaseDriver&, const VxXML::INode& data) {
  calls.push_back(Line("ConSendDataToUI", vx::WriteXml(data, vx::XmlStyle::kTranscript)));
}

void FakeHost::DmInvalidateState(VxBaseDriver&) { calls.push_back(Line("DmInvalidateState")); }

void FakeHost::EmRemoveByOwner(VxBaseDriver&, unsigned long ownerId, int kind) {
  calls.push_back(Line("EmRemoveByOwner", Text(ownerId), Text(kind)));
}

void FakeHost::LogMessage(VxBaseDriver&, unsigned int level, const char* text) {
  calls.push_back(Line("LogMessage", Text(level), text));
}

void FakeHost::OnAssert(const char* file, int line, const vx::StackTrace&) {
  calls.push_back("AssertWrite " + std::string(file) + ":" + std::to_string(line));
}
