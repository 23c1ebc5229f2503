#pragma once

#include <string>

/// Who wants to hear of host variables.
class IVariableCallback {
 public:
  /// The variable's value is now `value`. Called on the driver's thread for every variable that was
  /// registered for; a controller may call it inside the registration, with the present value.
  virtual void OnVariableChanged(unsigned long deviceId, unsigned long variableId,
                                 const std::string& value) = 0;

 protected:
  ~IVariableCallback() = default;
};
