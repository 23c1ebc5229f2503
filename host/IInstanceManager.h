#pragma once

#include <string>
#include <vector>

#include "host/Export.h"

namespace vx {
class IDriverHost;
}

/// Where drivers publish interfaces for one another. The controller owns it; it outlives every
/// driver created on it.
class IInstanceManager {
 public:
  /// Publishes `object` under `iid` until it is unregistered; the object stays the caller's.
  /// Non-zero on success, 0 where the identifier is taken or not wanted.
  virtual int RegisterQuery(const char* iid, void* object) = 0;
  /// Takes the identifier back; an unknown one is ignored.
  virtual void UnregisterQuery(const char* iid) = 0;
  /// What is published under `iid`, or null. Ask each time it is needed: its owner may go.
  virtual void* FindQuery(const char* iid) = 0;
  /// The controller's services behind `VxBaseDriver`. For the framework, not for drivers.
  virtual vx::IDriverHost& DriverHost() = 0;

 protected:
  ~IInstanceManager() = default;
};

/// Publishes interfaces for as long as it lives. A member of the driver whose faces it publishes.
class VX_API AutoQueryInstanceRegisterer {
 public:
  explicit AutoQueryInstanceRegisterer(IInstanceManager& manager);
  /// Unregisters what was registered successfully, in the order of registration.
  ~AutoQueryInstanceRegisterer();
  AutoQueryInstanceRegisterer(const AutoQueryInstanceRegisterer&) = delete;
  AutoQueryInstanceRegisterer& operator=(const AutoQueryInstanceRegisterer&) = delete;

  /// Asks the manager to publish `object` under `iid` and returns its answer (0: it did not).
  int RegisterQuery(const char* iid, void* object);

 private:
  IInstanceManager& manager_;
  std::vector<std::string> registered_;
};
