#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "controller/HostMessages.h"
#include "host/IInstanceManager.h"
#include "host/VxXml.h"

namespace controller {

/// Is told of each call on a driver just before it is made, and again when it has returned. The
/// clock stands still in between, so that all of the call has one moment.
class ICallRecorder {
 public:
  /// What the host answers while a driver starts.
  struct HostAnswers {
    /// The values that are delivered to those who register as listeners.
    std::map<std::pair<unsigned long, unsigned long>, std::string> variables;
    /// What the C library's generator is seeded with after that.
    unsigned int seed = 0;
  };

  /// The host that a driver is created on, in place of `manager`, which it passes everything on to.
  virtual IInstanceManager& HostFor(IInstanceManager& manager) = 0;
  /// Where the answers come from; asked before a driver is initialised.
  virtual void SetAnswers(std::function<HostAnswers()> answers) = 0;

  virtual void OnCreate() = 0;
  virtual void OnInitialize(const std::optional<std::string>& persisted) = 0;
  virtual void OnTick() = 0;
  virtual void OnVariable(unsigned long device, unsigned long variable,
                          const std::string& value) = 0;
  /// Seeds the C library's generator, so that what the command draws is known.
  virtual void OnCommand(const std::string& name, const CommandMessage::Params& params) = 0;
  virtual void OnRequest(const std::string& name, const CommandMessage::Params& params) = 0;
  virtual void OnCondition(const std::string& name, const CommandMessage::Params& params) = 0;
  /// An operation of the scheduler's interface that takes a text.
  virtual void OnInterface(const char* operation, const std::string& argument) = 0;
  virtual void OnPersist() = 0;
  virtual void OnDestroy() = 0;

  /// The call has returned: with nothing, a number, a truth, or an element.
  virtual void OnReturned() = 0;
  virtual void OnReturned(int result) = 0;
  virtual void OnReturned(unsigned long result) = 0;
  virtual void OnReturned(bool result) = 0;
  virtual void OnReturned(const VxXML::INode* result) = 0;

  /// The C library's generator has been seeded.
  virtual void OnSeed(unsigned int value) = 0;

 protected:
  ~ICallRecorder() = default;
};

}  // namespace controller
