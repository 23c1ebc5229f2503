#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "controller/json/ObjectReader.h"
#include "controller/programming/Programming.h"

namespace controller {

/// Reads one action. Value and errors must outlive it.
class ActionReader {
 public:
  ActionReader(const nlohmann::json& value, const std::string& pointer, FieldErrors& errors);

  Action Read();

 private:
  void ReadWhat(Action& action);
  HookAction ReadHook(const nlohmann::json& value, const std::string& pointer);
  std::map<std::string, std::string> ReadHeaders(const nlohmann::json& value,
                                                 const std::string& pointer);
  void ReadHeader(const std::string& name, const nlohmann::json& all, ObjectReader& fields,
                  std::map<std::string, std::string>& headers);
  CommandAction ReadCommand(const nlohmann::json& value, const std::string& pointer);
  std::vector<std::string> ReadArgv(const nlohmann::json& value, const std::string& pointer);
  VariableAction ReadVariable(const nlohmann::json& value, const std::string& pointer);
  void CheckPlaceholders(const std::string& text, const std::string& pointer);

  std::string pointer_;
  FieldErrors& errors_;
  ObjectReader fields_;
};

}  // namespace controller
