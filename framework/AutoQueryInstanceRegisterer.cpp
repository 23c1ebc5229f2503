#include "host/IInstanceManager.h"

AutoQueryInstanceRegisterer::AutoQueryInstanceRegisterer(IInstanceManager& manager)
    : manager_(manager) {}

AutoQueryInstanceRegisterer::~AutoQueryInstanceRegisterer() {
  for (const std::string& iid : registered_) manager_.UnregisterQuery(iid.c_str());
}

int AutoQueryInstanceRegisterer::RegisterQuery(const char* iid, void* object) {
  const int result = manager_.RegisterQuery(iid, object);
  if (result != 0) registered_.emplace_back(iid);
  return result;
}
