#pragma once

#include <map>
#include <string>
#include <utility>

#include "host/Messages.h"

/// A command, request or condition with the parameters that a test gives it.
template <typename Interface>
class TestMessage final : public Interface {
 public:
  using Params = std::map<std::string, std::string>;

  explicit TestMessage(std::string name, Params params = {})
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

using TestCommand = TestMessage<ICmdMessage>;
using TestConditionMessage = TestMessage<ICondMessage>;
