#pragma once

#include <map>
#include <string>
#include <utility>

#include "host/Messages.h"

namespace controller {

/// A name with text parameters on its way to a driver; `Message` is the interface it is sent as.
template <typename Message>
class TextMessage final : public Message {
 public:
  using Params = std::map<std::string, std::string>;

  explicit TextMessage(std::string name, Params params = {})
      : name_(std::move(name)), params_(std::move(params)) {}
  const std::string& GetName() const override { return name_; }
  std::string GetParam(const char* name) const override {
    const auto found = params_.find(name);
    return found == params_.end() ? std::string() : found->second;
  }

 private:
  std::string name_;
  Params params_;
};

/// A command or request on its way to a driver.
using CommandMessage = TextMessage<ICmdMessage>;
/// A condition to be tested by a driver.
using ConditionMessage = TextMessage<ICondMessage>;

/// What `CreateBindMessage` gives a driver. Born with one reference, which is the driver's.
class BindMessage final : public IBindMessage {
 public:
  BindMessage() = default;
  BindMessage(const BindMessage&) = delete;
  BindMessage& operator=(const BindMessage&) = delete;

  void AddRef() override { ++references_; }
  void Release() override;
  void SetCommand(const char* command, int argument) override;
  const std::string& GetCommand() const override { return command_; }
  int GetArgument() const override { return argument_; }

 private:
  ~BindMessage() = default;

  unsigned long references_ = 1;
  std::string command_;
  int argument_ = 0;
};

}  // namespace controller
