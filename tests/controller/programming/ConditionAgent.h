#pragma once

#include <ctime>
#include <memory>
#include <string>

#include "controller/DriverInstance.h"
#include "controller/DriverLoader.h"
#include "controller/ScratchHost.h"
#include "controller/programming/Programming.h"

/// The real scheduler, in Berlin, asked about conditions.
class ConditionAgent {
 public:
  ConditionAgent();

  bool Holds(const controller::Condition& condition);

 private:
  std::unique_ptr<controller::DriverLoader> loader_;
  controller::ScratchHost host_;
  std::unique_ptr<controller::DriverInstance> agent_;
};

/// The zone of central Europe, until this goes out of scope; and the program's clock, which then
/// runs again.
class BerlinTime {
 public:
  BerlinTime();
  ~BerlinTime();
  BerlinTime(const BerlinTime&) = delete;
  BerlinTime& operator=(const BerlinTime&) = delete;

  /// Stops the clock at a local time, "2024-03-06T07:00:00".
  std::time_t Set(const std::string& local);

 private:
  std::string before_;
  bool hadZone_;
};

/// A condition from its JSON text; a failure of the test where it is none.
controller::Condition ConditionFrom(const std::string& json);
