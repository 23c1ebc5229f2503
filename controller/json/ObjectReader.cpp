#include "controller/json/ObjectReader.h"

#include <utility>

#include "controller/json/ShownJson.h"

namespace controller {

using nlohmann::json;

ObjectReader::ObjectReader(const json& value, std::string pointer, FieldErrors& errors)
    : value_(value), pointer_(std::move(pointer)), errors_(errors) {
  if (!value_.is_object()) {
    errors_.push_back({pointer_, "is " + ShownJson(value_) + "; give an object"});
  }
}

bool ObjectReader::Has(const char* name) const {
  return value_.is_object() && value_.contains(name);
}

bool ObjectReader::IsNull(const char* name) {
  known_.insert(name);
  return Has(name) && value_[name].is_null();
}

const json* ObjectReader::Value(const char* name, Need need) { return Find(name, need, "a value"); }

std::string ObjectReader::PointerTo(const char* name) const {
  return pointer_ + '/' + PointerStep(name);
}

void ObjectReader::Complain(const char* name, const std::string& detail) {
  errors_.push_back({PointerTo(name), detail});
}

const json* ObjectReader::Find(const char* name, Need need, const std::string& what) {
  known_.insert(name);
  if (!value_.is_object()) return nullptr;  // said already
  const auto field = value_.find(name);
  if (field != value_.end() && !field->is_null()) return &*field;
  if (need == Need::kDemanded) {
    Complain(name, (field == value_.end() ? "is missing; give " : "is null; give ") + what);
  }
  return nullptr;
}

void ObjectReader::NoOthers() {
  if (!value_.is_object()) return;
  std::string fields;
  for (const std::string& name : known_) fields += (fields.empty() ? "" : ", ") + name;
  for (const auto& field : value_.items()) {
    if (known_.count(field.key()) != 0) continue;
    Complain(field.key().c_str(), fields.empty() ? "is not known here; there are no fields"
                                                 : "is not known here; there are " + fields);
  }
}

}  // namespace controller
