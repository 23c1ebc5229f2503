#pragma once

#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <utility>

#include "controller/TranscriptLines.h"
#include "framework/AssertSink.h"
#include "framework/IDriverHost.h"
#include "host/IInstanceManager.h"

namespace controller {

/// The host of a played scenario: does nothing but write down, one JSON object a line, every
/// operation that the agent calls, and answer what the scenario told it to answer.
class PlayHost final : public vx::IDriverHost, public IInstanceManager, public vx::IAssertSink {
 public:
  /// Writes to `out`, which must outlive this.
  explicit PlayHost(std::ostream& out) : out_(out) {}

  /// One line of the transcript.
  void Write(const TranscriptLine& line);
  /// From now on nothing is written: the scenario is over.
  void Mute() { muted_ = true; }

  /// What later calls answer.
  void AnswerRegisterBinding(int result) { registerBindingResult_ = result; }
  void AnswerRegisterQuery(int result) { registerQueryResult_ = result; }
  void AnswerCreateBindMessage(bool givesMessage) { givesBindMessage_ = givesMessage; }
  /// The values, by device and variable, that registering a listener delivers at once.
  using Variables = std::map<std::pair<unsigned long, unsigned long>, std::string>;
  void DeliverOnRegistration(Variables variables) { variables_ = std::move(variables); }
  /// What registering a listener seeds the C library's generator with, after its value was
  /// delivered; nothing: it does not.
  void SeedOnRegistration(std::optional<unsigned int> seed) { seed_ = seed; }

  /// The id of the timer that was last armed; 0 before the first.
  unsigned long LastTimer() const { return lastTimer_; }

  // IInstanceManager
  int RegisterQuery(const char* iid, void* object) override;
  void UnregisterQuery(const char* iid) override;
  void* FindQuery(const char* iid) override;
  vx::IDriverHost& DriverHost() override { return *this; }

  // vx::IDriverHost
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

  // vx::IAssertSink
  void OnAssert(const char* file, int line, const vx::StackTrace& stack) override;
  bool WantsStacks() const override { return false; }

 private:
  std::ostream& out_;
  bool muted_ = false;
  int registerBindingResult_ = 0;
  int registerQueryResult_ = 1;
  bool givesBindMessage_ = true;
  Variables variables_;
  std::optional<unsigned int> seed_;
  std::map<std::string, void*> queries_;
  unsigned long lastTimer_ = 0;
};

}  // namespace controller
