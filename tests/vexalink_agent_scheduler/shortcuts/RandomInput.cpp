#include "tests/vexalink_agent_scheduler/shortcuts/RandomInput.h"

#include <cstdlib>
#include <limits>
#include <sstream>

#include "tests/vexalink_agent_scheduler/Zones.h"
#include "tests/vexalink_agent_scheduler/shortcuts/PlainCalendar.h"

namespace {

constexpr std::time_t kDay = 86400;

std::uint64_t Seed(unsigned test) {
  std::uint64_t seed = 14695981039346656037U + test;
  const char* const zone = std::getenv("TZ");
  for (const char* c = zone == nullptr ? "" : zone; *c != 0; ++c) {
    seed = (seed ^ static_cast<unsigned char>(*c)) * 1099511628211U;
  }
  return seed;
}

long Offset(std::time_t instant) {
  std::tm local{};
  plain::Fields(instant, &local);
  return local.tm_gmtoff * 2 + (local.tm_isdst > 0 ? 1 : 0);
}

std::time_t Midnight(std::time_t instant) {
  const plain::Date day(instant);
  return plain::Instant(day.year, day.month, day.day, 0, 0, 0, -1);
}

std::time_t EndOfDay(std::time_t instant) {
  const plain::Date day(instant);
  return plain::Instant(day.year, day.month, day.day, 23, 59, 59, -1);
}

int RandomRate(Random& random) {
  constexpr int kMost = std::numeric_limits<int>::max();
  if (random.OneIn(12)) return 0;
  if (random.OneIn(12)) return random.Of({-1, -2, -7, -1000000, -kMost - 1});
  if (random.OneIn(12)) return random.Of({1000000, 5000000, kMost});
  return static_cast<int>(random.Between(1, random.OneIn(3) ? 30 : 3));
}

void SetTime(Event& event, Random& random) {
  event.offset = Scheduler::kClock;
  if (random.OneIn(4)) event.offset = Scheduler::OFFSET_TYPE(random.Of({1, 2, 1, 2, 3, -1, 99}));
  event.offset_minutes = static_cast<int>(random.Between(0, 1439));
  if (random.OneIn(3)) event.offset_minutes = random.Of({0, 60, 90, 119, 120, 150, 179, 1439});
  if (random.OneIn(8)) event.offset_minutes = random.Of({-1, -90, -1441, 1440, 1500, 4320, 100000});
  event.latitude = random.Of({0.0, 40.5, -33.9, 60.0, 65.9, 70.0, -72.0, 89.0});
  event.longitude = random.Of({0.0, -74.0, 151.2, 179.9, -179.0});
}

}  // namespace

Random::Random(unsigned test) : engine_(Seed(test)) {}

long long Random::Between(long long first, long long last) {
  const auto count = static_cast<std::uint64_t>(last - first) + 1;
  return first + static_cast<long long>(engine_() % count);
}

const std::vector<std::string>& Zones() {
  static const std::vector<std::string> zones = {zones::kUtc,
                                                 zones::kNewYork,
                                                 zones::kLordHowe,
                                                 zones::kTroll,
                                                 zones::kThreeHours,
                                                 zones::kMidnight,
                                                 zones::kStJohns,
                                                 "NST3:30NDT,M3.2.0/0:01,M11.1.0/0:01",
                                                 "IST-1GMT0,M10.5.0,M3.5.0/1",
                                                 "<+01>-1<+00>0,M10.1.0/0,M3.1.0/0",
                                                 "America/New_York",
                                                 "Europe/Berlin",
                                                 "Asia/Kolkata",
                                                 "Pacific/Apia",
                                                 "America/St_Johns",
                                                 "Antarctica/Casey"};
  return zones;
}

Instants::Instants() {
  constexpr std::time_t kBegin = -2208988800;  // 1900
  constexpr std::time_t kEnd = 2524608000;     // 2050
  long before = Offset(kBegin);
  for (std::time_t day = kBegin + kDay; day < kEnd; day += kDay) {
    const long after = Offset(day);
    if (after == before) continue;
    std::time_t last = day - kDay;
    std::time_t first = day;
    while (first - last > 1) {
      const std::time_t middle = last + (first - last) / 2;
      (Offset(middle) == before ? last : first) = middle;
    }
    changes_.push_back(first);
    before = after;
  }
}

std::time_t Instants::Any(Random& random) const {
  if (!changes_.empty() && !random.OneIn(3)) {
    const std::time_t change = random.From(changes_);
    return change + random.Of<long long>({0, -1, 1, 3600, 3599, -3600, random.Between(-7200, 7200),
                                          random.Between(-2 * kDay, 2 * kDay)});
  }
  return Near(random.Between(-1500000000, 2500000000), 1, random);
}

std::time_t Instants::Near(std::time_t instant, int days, Random& random) const {
  const std::time_t there = instant + random.Between(-days, days) * kDay;
  switch (random.Between(0, 5)) {
    case 0:
    case 1:
      return Midnight(there);
    case 2:
      return Midnight(there) + random.Of<long long>({-1, 1});
    case 3:
      return Midnight(there) + kDay / 2;
    case 4:
      return EndOfDay(there);
    default:
      return there + random.Between(0, kDay);
  }
}

Event RandomEvent(unsigned long id, std::time_t about, const Instants& instants, Random& random) {
  Event event(id, "event " + std::to_string(id), 0, 0);
  event.start = VxTime(Midnight(about - random.Between(0, random.OneIn(3) ? 900 : 40) * kDay));
  if (random.OneIn(6)) event.start = VxTime(instants.Near(about, 10, random));
  event.end_date = NeverTime;
  if (random.OneIn(3)) event.end_date = VxTime(EndOfDay(about + random.Between(-5, 60) * kDay));
  if (random.OneIn(60))
    event.start = VxTime(random.Of<long long>({0, -1, -62167219200, 253402214400}));
  if (random.OneIn(60)) event.end_date = VxTime(random.Of<long long>({0, 253402300799, 1LL << 60}));
  event.frequency = static_cast<int>(random.Between(0, 4));
  if (random.OneIn(30)) event.frequency = random.Of({-1, 5, 77});
  event.rate = RandomRate(random);
  event.daymask = static_cast<unsigned int>(random.Between(0, 127));
  if (random.OneIn(10)) event.daymask = random.Of({0U, 128U, 0xFFFFFFFFU});
  if (random.OneIn(2)) {
    event.start_period = Scheduler::PERIOD(random.Between(1, 5));
    event.start_weekday = static_cast<int>(random.Between(1, 7));
    if (random.OneIn(8)) event.start_period = Scheduler::PERIOD(random.Of({-1, 6, 8, 1000}));
    if (random.OneIn(8)) event.start_weekday = random.Of({0, 8, 9, -1});
  }
  SetTime(event, random);
  return event;
}

std::string Describe(const Event& event) {
  std::ostringstream out;
  out << "{id " << event.eventid << ", start " << event.start.Seconds() << ", end "
      << event.end_date.Seconds() << ", frequency " << event.frequency << ", rate " << event.rate
      << ", daymask " << event.daymask << ", period " << event.start_period << ", weekday "
      << event.start_weekday << ", offset " << event.offset << ", minutes " << event.offset_minutes
      << ", at " << event.latitude << " " << event.longitude << "}";
  return out.str();
}
