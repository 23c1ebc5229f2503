#pragma once

#include <functional>
#include <string>

#include "controller/TranscriptLines.h"
#include "framework/AssertSink.h"
#include "framework/IDriverHost.h"
#include "host/IInstanceManager.h"

namespace controller {

/// A host that passes everything on to another, and tells what it was as a transcript does.
class TranscriptTee final : public IInstanceManager,
                            public vx::IDriverHost,
                            public vx::IAssertSink {
 public:
  using Write = std::function<void(const TranscriptLine& line)>;

  /// The other host must outlive it.
  TranscriptTee(IInstanceManager& manager, Write write);

  /// From here on, until `Deaf`, assertion records come by here too. Once at a time.
  void Listen();
  void Deaf();
  /// A new transcript begins: timers are counted from 1 again.
  void BeginAnew() { timersBefore_ = lastTimer_; }

  int RegisterQuery(const char* iid, void* object) override;
  void UnregisterQuery(const char* iid) override;
  void* FindQuery(const char* iid) override { return manager_.FindQuery(iid); }
  vx::IDriverHost& DriverHost() override { return *this; }

  unsigned long AddTimer(VxBaseDriver& driver, unsigned long intervalMilliseconds,
                         unsigned int kind) override;
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
  bool WantsStacks() const override { return sink_ != nullptr && sink_->WantsStacks(); }

 private:
  IInstanceManager& manager_;
  vx::IDriverHost& host_;
  Write write_;
  vx::IAssertSink* sink_ = nullptr;
  bool listens_ = false;
  unsigned long lastTimer_ = 0;
  unsigned long timersBefore_ = 0;
};

}  // namespace controller
