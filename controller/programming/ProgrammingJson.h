#pragma once

#include <ctime>
#include <nlohmann/json.hpp>
#include <string>

#include "controller/json/FieldErrors.h"
#include "controller/programming/Programming.h"

namespace controller {

/// Reads programming in the form of docs/api.md. Whatever is wrong is added to `errors`, with
/// pointers that begin with `pointer`; the answer is then of no use.
Programming ReadProgramming(const nlohmann::json& value, const std::string& pointer,
                            FieldErrors& errors);
Action ReadAction(const nlohmann::json& value, const std::string& pointer, FieldErrors& errors);
Condition ReadCondition(const nlohmann::json& value, const std::string& pointer,
                        FieldErrors& errors);

/// The same form, complete: what was left out stands there with its value. Reads back as the same.
nlohmann::ordered_json ProgrammingJson(const Programming& programming);
nlohmann::ordered_json ActionJson(const Action& action);

/// A condition in words: "the time is between 22:00 and 02:00".
std::string ConditionText(const Condition& condition);
/// What is the case at the moment of the local time `now`, as far as it concerns the condition: "it
/// is 23:10", "today is Saturday".
std::string ConditionBecause(const Condition& condition, std::time_t now);
/// An action in a few words, for journal and log: "POST http://hub.local/light", "runs logger".
std::string ActionText(const Action& action);

}  // namespace controller
