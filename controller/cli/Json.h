#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace controller::cli {

/// What is sent and answered, its fields in the order in which they stand.
using Json = nlohmann::ordered_json;

// Answers are read as they come: what an event from elsewhere cannot say is null there.

/// Whether the value is an object that has the field, and it is not null.
bool HasField(const Json& object, const char* name);
/// The text of a field; `otherwise` where there is none.
std::string TextField(const Json& object, const char* name, const std::string& otherwise = {});
/// Any field as a text: what is no text as JSON writes it; empty where there is none.
std::string ShownField(const Json& object, const char* name);
/// The number of a field, or its truth; `otherwise` where there is none.
long NumberField(const Json& object, const char* name, long otherwise = 0);
bool FlagField(const Json& object, const char* name, bool otherwise);

}  // namespace controller::cli
