#include "tests/vexalink_agent_scheduler/RandomEvents.h"

#include <climits>
#include <iterator>

#include "tests/vexalink_agent_scheduler/EventHelp.h"

Event RandomEvents::Next() {
  constexpr int kRates[] = {1,  1,  1,   2, 2,  3,  4,  5,    6,       7,       12,
                            13, 30, 100, 0, -1, -2, -3, 1000, 1000000, INT_MAX, INT_MIN};
  constexpr unsigned int kMasks[] = {0x7F, 0, 1, 0x40, 0x22, 0x3E, 0x41, 0xFFFFFFFF, 0x80};
  constexpr int kPeriods[] = {0, 0, 0, 1, 2, 3, 4, 5, 5, 6, -1};
  constexpr int kBases[] = {0, 0, 0, 0, 1, 2, 3};
  constexpr int kMinutes[] = {0, 1, 60, 90, 150, 720, 1439, 1440, 1500, 3000, -1, -60, -1500};
  constexpr double kLatitudes[] = {0, 40.7, 51.5, 66, 70, -31.5, -70, -85, 89};
  constexpr double kLongitudes[] = {0, -74, 159, 179, -179};
  const auto pick = [this](const auto& values) { return values[random_() % std::size(values)]; };

  Event event(1 + random_() % 1000, "random", pick(kLatitudes), pick(kLongitudes));
  event.frequency = Below(20) == 0 ? Below(9) - 3 : Below(5);
  event.rate = pick(kRates);
  event.daymask = Below(2) == 0 ? pick(kMasks) : random_() % 128;
  event.start_period = static_cast<Scheduler::PERIOD>(pick(kPeriods));
  event.start_weekday = Below(12) == 0 ? Below(12) - 2 : Below(7) + 1;
  event.offset = static_cast<Scheduler::OFFSET_TYPE>(pick(kBases));
  event.offset_minutes = Below(2) == 0 ? pick(kMinutes) : Below(1440);
  event.start = VxTime(2021 + Below(5), 1 + Below(12), 1 + Below(31), 0, 0, 0, -1);
  if (Below(5) == 0) event.start = VxTime(Instant());
  if (Below(30) == 0) event.start = VxTime(1965 + Below(10), 12, 1 + Below(31), 0, 0, 0, -1);
  event.hasEndDate = Below(2) == 0;
  event.EndDate(event.hasEndDate ? VxTime(event.start.Seconds() + 86400LL * (Below(1500) - 20))
                                 : NeverTime);
  if (!event.hasEndDate && Below(4) == 0) event.end_date = NeverTime;
  return event;
}

std::time_t RandomEvents::Instant() {
  // A day from 2021 to 2026, a month in which clocks change more often than another.
  constexpr int kMonths[] = {2, 3, 4, 10, 10, 11, 11};
  const int month = Below(2) == 0 ? Below(12) + 1 : kMonths[random_() % std::size(kMonths)];
  const VxTime midnight(2021 + Below(6), month, 1 + Below(31), 0, 0, 0, -1);
  constexpr int kSeconds[] = {0, 1, -1, 1800, 3599, 3600, 7200, 9000, 43200, 82800, 86399};
  const int second = Below(3) == 0 ? Below(86400) : kSeconds[random_() % std::size(kSeconds)];
  return midnight.Seconds() + second;
}

std::string RandomEvents::Describe(const Event& event) {
  const auto number = [](const char* name, long long value) {
    return std::string(" ") + name + " " + std::to_string(value);
  };
  return "event" + number("kind", event.frequency) + number("rate", event.rate) +
         number("mask", event.daymask) + number("period", event.start_period) +
         number("weekday", event.start_weekday) + number("base", event.offset) +
         number("minutes", event.offset_minutes) + " start " + Text(event.start) +
         number("=", event.start.Seconds()) + " end " + Text(event.end_date) + " at " +
         std::to_string(event.latitude) + ", " + std::to_string(event.longitude);
}
