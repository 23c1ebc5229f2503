#pragma once

#include <ctime>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>

#include "controller/HostMessages.h"

namespace controller {

/// What is wrong with a line of a scenario, in words for its writer.
class ScenarioError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// One line of a scenario: a JSON object with typed keys. Every getter throws `ScenarioError` where
/// the key is missing or holds something else; the message names key and value.
class ScenarioAction {
 public:
  /// Throws `ScenarioError` where the line is no JSON object with a text "do".
  explicit ScenarioAction(const std::string& line);

  /// The action's name, the value of "do".
  const std::string& Name() const { return name_; }

  bool Has(const char* key) const { return json_.contains(key); }
  std::string Text(const char* key) const;
  /// Nothing where the key is absent or null.
  std::optional<std::string> OptionalText(const char* key) const;
  long long Integer(const char* key) const;
  /// An id: an integer, taken as the unsigned number of its 64 bits.
  unsigned long Id(const char* key) const;
  /// Seconds since the epoch: a number, or a local time "YYYY-MM-DDTHH:MM:SS".
  std::time_t Time(const char* key) const;
  /// An object of texts; empty where the key is absent.
  CommandMessage::Params Params(const char* key) const;
  /// A list of exactly `count` values.
  const nlohmann::json& List(const char* key, std::size_t count) const;
  /// Whatever stands there.
  const nlohmann::json& Value(const char* key) const;

 private:
  nlohmann::json json_;
  std::string name_;
};

/// A value as an error message shows it: shortened, and deeply nested lists and objects only named.
std::string ShownValue(const nlohmann::json& value);
/// An integer of any size that 64 bits hold; `what` names it in the error.
long long ToInteger(const nlohmann::json& value, const std::string& what);
/// An id: any integer, taken as the unsigned number of its 64 bits.
unsigned long ToId(const nlohmann::json& value, const std::string& what);
/// A number.
double ToNumber(const nlohmann::json& value, const std::string& what);
/// A text.
const std::string& ToText(const nlohmann::json& value, const std::string& what);

}  // namespace controller
