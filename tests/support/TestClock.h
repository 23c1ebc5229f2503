#pragma once

#include <ctime>
#include <string>

/// The clock of a test program: it answers `time()` in place of the C library. The system's own
/// time until a test sets it.
class TestClock {
 public:
  /// Stops the clock at `now` until this goes out of scope.
  explicit TestClock(std::time_t now);
  /// The same with a local time, "2024-03-06 07:00:00" or "2024-03-06".
  explicit TestClock(const std::string& local);
  ~TestClock();
  TestClock(const TestClock&) = delete;
  TestClock& operator=(const TestClock&) = delete;

  /// Moves the stopped clock.
  void Set(std::time_t now);
  void Set(const std::string& local);
  void Advance(std::time_t seconds);
};

/// The process's time zone, until this goes out of scope. Tests name zones by rules that no update
/// of the zone data moves, "EST5EDT,M3.2.0,M11.1.0" for example.
class ZoneScope {
 public:
  explicit ZoneScope(const std::string& zone);
  ~ZoneScope();
  ZoneScope(const ZoneScope&) = delete;
  ZoneScope& operator=(const ZoneScope&) = delete;

 private:
  bool hadZone_;
  std::string before_;
};

/// The instant of a local time, "2024-03-06 07:00:00" or "2024-03-06" (midnight), in the process's
/// zone; of one that occurs twice the first.
std::time_t Local(const std::string& text);
