#pragma once

namespace controller {

/// The device that stands for the project itself, and its variables.
constexpr unsigned long kProjectDevice = 1;
constexpr unsigned long kLatitudeVariable = 1001;
constexpr unsigned long kLongitudeVariable = 1002;

/// The device number of the scheduler, and its name in the project.
constexpr unsigned long kSchedulerDevice = 2;
constexpr const char* kSchedulerName = "scheduler";

}  // namespace controller
