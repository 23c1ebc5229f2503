#pragma once

namespace controller {

/// The device that stands for the project itself, and its variables.
constexpr unsigned long kProjectDevice = 1;
constexpr unsigned long kLatitudeVariable = 1001;
constexpr unsigned long kLongitudeVariable = 1002;

/// Whether it tells where the house is, which is set in the project only.
constexpr bool IsPlaceVariable(unsigned long device, unsigned long variable) {
  return device == kProjectDevice &&
         (variable == kLatitudeVariable || variable == kLongitudeVariable);
}

/// The device number of the scheduler, and its name in the project.
constexpr unsigned long kSchedulerDevice = 2;
constexpr const char* kSchedulerName = "scheduler";

}  // namespace controller
