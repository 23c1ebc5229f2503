#pragma once

#include <cstdint>
#include <ctime>
#include <initializer_list>
#include <random>
#include <string>
#include <vector>

#include "vexalink_agent_scheduler/vxw/ScheduledEvent.h"

/// Random numbers that are the same in every run of a test in one zone of the environment, and
/// others in another.
class Random {
 public:
  explicit Random(unsigned test);

  /// `first` to `last`, both included.
  long long Between(long long first, long long last);
  bool OneIn(int count) { return Between(1, count) == 1; }
  template <typename T>
  T Of(std::initializer_list<T> values) {
    return values.begin()[Between(0, static_cast<long long>(values.size()) - 1)];
  }
  template <typename Container>
  const auto& From(const Container& values) {
    return values[static_cast<std::size_t>(Between(0, static_cast<long long>(values.size()) - 1))];
  }

 private:
  std::mt19937_64 engine_;
};

/// Zones whose clocks stand still, or change by an hour, half an hour, two and three hours, at and
/// just after midnight, with daylight-saving time in winter; and some that moved in the past.
const std::vector<std::string>& Zones();

/// Instants of the zone in force, gathered about some of its clock changes.
class Instants {
 public:
  /// With the clock changes from 1900 to 2050.
  Instants();

  /// Near a clock change (to the second, too), near a local midnight, or anywhere in a century.
  std::time_t Any(Random& random) const;
  /// Not far from another instant: on a local midnight, a second beside one, at noon, anywhere.
  std::time_t Near(std::time_t instant, int days, Random& random) const;
  const std::vector<std::time_t>& Changes() const { return changes_; }

 private:
  std::vector<std::time_t> changes_;
};

/// An event that happens now and then about an instant. Every kind, and numbers that are out of
/// range now and then.
Event RandomEvent(unsigned long id, std::time_t about, const Instants& instants, Random& random);

/// What a failure shows of an event.
std::string Describe(const Event& event);
