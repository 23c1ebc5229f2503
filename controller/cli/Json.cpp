#include "controller/cli/Json.h"

namespace controller::cli {

bool HasField(const Json& object, const char* name) {
  return object.is_object() && object.contains(name) && !object[name].is_null();
}

std::string TextField(const Json& object, const char* name, const std::string& otherwise) {
  if (!HasField(object, name) || !object[name].is_string()) return otherwise;
  return object[name].get<std::string>();
}

std::string ShownField(const Json& object, const char* name) {
  if (!HasField(object, name)) return {};
  return object[name].is_string() ? object[name].get<std::string>() : object[name].dump();
}

long NumberField(const Json& object, const char* name, long otherwise) {
  if (!HasField(object, name) || !object[name].is_number()) return otherwise;
  return object[name].get<long>();
}

bool FlagField(const Json& object, const char* name, bool otherwise) {
  if (!HasField(object, name) || !object[name].is_boolean()) return otherwise;
  return object[name].get<bool>();
}

}  // namespace controller::cli
