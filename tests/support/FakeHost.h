#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "framework/AssertSink.h"
#include "framework/IDriverHost.h"
#include "host/IInstanceManager.h"

/// A host that keeps what a driver asks of it as lines of text, in order: "FireEvent 3" for
/// example. Assertion records made while it lives become lines too: "AssertWrite <file>:<line>".
class FakeHost final : public vx::IDriverHost, public IInstanceManager, public vx::IAssertSink {
 public:
  FakeHost();
  ~FakeHost();
  FakeHost(const FakeHost&) = delete;
  FakeHost& operator=(const FakeHost&) = delete;

  /// The lines since the last call, which forgets them.
  std::vector<std::string> TakeCalls() { return std::exchange(calls, {}); }

  std::vector<std::string> calls;
  // What later calls answer.
  int registerQueryResult = 1;
  int registerBindingResult = 0;
  bool givesBindMessage = true;
  std::map<std::pair<unsigned long, unsigned long>, std::string> variables;
  unsigned long lastTimer = 0;

  int RegisterQuery(const char* iid, void* object) override;
  void UnregisterQuery(const char* iid) override;
  void* FindQuery(const char* iid) override;
  vx::IDriverHost& DriverHost() override { return *this; }

  unsigned long AddTimer(VxBaseDriver& driver, unsigned long interval, unsigned int kind) override;
  void KillTimer(VxBaseDriver& driver, unsigned long timerId) override;
  void VmRegisterListener(VxBaseDriver& driver, unsigned long device, unsigned long variable,
                          IVariableCallback& listener) override;
  void VmUnregisterListener(VxBaseDriver& driver, unsigned long device, unsigned long variable,
                            IVariableCallback& listener) override;
  int RegisterBinding(VxBaseDriver& driver, unsigned long bindingId, int type,
                      const std::string& name) override;
  void RegisterBindingClass(VxBaseDriver& driver, unsigned long bindingId,
                            const std::string& bindingClass) override;
  void UnregisterBinding(VxBaseDriver& driver, unsigned long bindingId) override;
  void FireEvent(VxBaseDriver& driver, unsigned long eventId) override;
  vx::auto_com<IBindMessage> CreateBindMessage(VxBaseDriver& driver) override;
  void SendBoundCall(VxBaseDriver& driver, unsigned long bindingId, const IBindMessage& message,
                     ICmdReturn* result) override;
  void ConSendDataToUI(VxBaseDriver& driver, const VxXML::INode& data) override;
  void DmInvalidateState(VxBaseDriver& driver) override;
  void EmRemoveByOwner(VxBaseDriver& driver, unsigned long ownerId, int kind) override;
  void LogMessage(VxBaseDriver& driver, unsigned int level, const char* text) override;

  void OnAssert(const char* file, int line, const vx::StackTrace& stack) override;
  bool WantsStacks() const override { return false; }

 private:
  std::map<std::string, void*> queries_;
  vx::IAssertSink* sinkBefore_;
};

/// Collects the line numbers of assertion records while it lives.
class AssertLines final : public vx::IAssertSink {
 public:
  AssertLines() : sinkBefore_(vx::SetAssertSink(this)) {}
  ~AssertLines() { vx::SetAssertSink(sinkBefore_); }
  AssertLines(const AssertLines&) = delete;
  AssertLines& operator=(const AssertLines&) = delete;
  void OnAssert(const char*, int line, const vx::StackTrace&) override { lines.push_back(line); }
  bool WantsStacks() const override { return false; }

  std::vector<int> lines;

 private:
  vx::IAssertSink* sinkBefore_;
};
