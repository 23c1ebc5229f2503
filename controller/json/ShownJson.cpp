#include "controller/json/ShownJson.h"

#include "controller/Printable.h"

namespace controller {

std::string ShownJson(const nlohmann::json& value) {
  if (value.is_array()) return value.empty() ? "an empty list" : "a list";
  if (value.is_object()) return "an object";
  if (value.is_string()) return Quoted(value.get_ref<const std::string&>());
  return value.dump();
}

std::string PointerStep(const std::string& name) {
  std::string step;
  for (const char c : name) {
    if (c == '~') {
      step += "~0";
    } else if (c == '/') {
      step += "~1";
    } else {
      step += c;
    }
  }
  return step;
}

}  // namespace controller
