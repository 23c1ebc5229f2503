#include "vexalink_agent_scheduler/vxw/SunEvent.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "astro/AstroClock.h"
#include "vexalink_agent_scheduler/vxw/LocalTime.h"
#include "vexalink_agent_scheduler/vxw/ZoneWatch.h"

namespace sun_event {
namespace {

struct SunOperations {
  float (*ofDay)(int dayOfYear, float latitude, float longitude);
  float (*next)(int dayOfYear, float latitude, float longitude);
  float (*recent)(int dayOfYear, float latitude, float longitude);
};

constexpr SunOperations kSunriseOperations = {
    AstroClock::calcSunriseGMT, AstroClock::findNextSunrise, AstroClock::findRecentSunrise};
constexpr SunOperations kSunsetOperations = {AstroClock::calcSunsetGMT, AstroClock::findNextSunset,
                                             AstroClock::findRecentSunset};

// A site may hold any number; what no float holds is far beyond the clamp anyway.
float Narrow(double degrees) { return static_cast<float>(std::clamp(degrees, -1e6, 1e6)); }

// 1 on 1 January; 0 where the date cannot be converted.
int DayOfYear(const VxTime& date) {
  const int year = date.GetYear();
  const bool leapYear = AstroClock::IsLeapYear(year);
  return local_time::DaysBeforeMonth(date.GetMonth(), leapYear) + date.GetDay();
}

// Whether a day without the event borrows from a day before it (else from one after). The
// hemispheres' ranges differ by some days. Kept: polar sites rely on what they know.
bool BorrowsFromThePast(int dayOfYear, bool north) {
  return north ? dayOfYear >= 80 && dayOfYear <= 266 : dayOfYear < 83 || dayOfYear > 263;
}

// Minutes after 00:00 UTC; not finite where no day of the year has the event.
float MinutesUtc(const SunOperations& sun, int dayOfYear, float latitude, float longitude) {
  const float minutes = sun.ofDay(dayOfYear, latitude, longitude);
  if (std::isfinite(minutes) || !(latitude > 0.0f || latitude < 0.0f)) return minutes;
  return BorrowsFromThePast(dayOfYear, latitude > 0.0f) ? sun.recent(dayOfYear, latitude, longitude)
                                                        : sun.next(dayOfYear, latitude, longitude);
}

// `minutesUtc` on the local date of `date`, by the zone's standard offset and the daylight-saving
// flag of the present moment.
VxTime ToLocalInstant(float minutesUtc, const VxTime& date, int isdst) {
  const float hours = minutesUtc / 60.0f;
  const int hour = static_cast<int>(hours);
  const float minutesOfHour = (hours - static_cast<float>(hour)) * 60.0f;
  const int minute = static_cast<int>(minutesOfHour);
  const int second = static_cast<int>((minutesOfHour - static_cast<float>(minute)) * 60.0f);
  const int year = date.GetYear();
  const int month = date.GetMonth();
  const int day = date.GetDay();
  VxTime::GetCurrentTime().GetLocalTm(nullptr);  // the library's `timezone` is to be the present's
  tzset();
  const int west = static_cast<int>(timezone);
  return VxTime(year, month, day, hour - west / 3600 + isdst, minute - west % 3600 / 60, second,
                isdst);
}

std::optional<VxTime> Calculate(Kind kind, const VxTime& date, double latitude, double longitude,
                                int isdst) {
  float siteLatitude = Narrow(latitude);
  float siteLongitude = Narrow(longitude);
  AstroClock::FixupLatAndLong(siteLatitude, siteLongitude);
  const float minutes = MinutesUtc(kind == Kind::kSunrise ? kSunriseOperations : kSunsetOperations,
                                   DayOfYear(date), siteLatitude, siteLongitude);
  if (!std::isfinite(minutes)) return std::nullopt;
  return ToLocalInstant(minutes, date, isdst);
}

constexpr std::size_t kKeptDays = 64;  // a power of two
std::array<Kept, kKeptDays * 2> kept;

}  // namespace

const Kept& Find(Kind kind, const VxTime& date, double latitude, double longitude) {
  const auto day = static_cast<std::size_t>(date.Seconds() / local_time::kSecondsPerDay);
  const auto which = static_cast<std::size_t>(kind);
  Kept& entry = kept[day % kKeptDays * 2 + which];
  if (!entry.Answers(date, latitude, longitude)) {
    const std::time_t present = local_time::Present();
    const auto instant =
        Calculate(kind, date, latitude, longitude, local_time::PresentDaylightFlag());
    entry = {local_time::ZoneGeneration(), date, present, latitude, longitude, instant};
  }
  return latest[which] = entry;
}

}  // namespace sun_event
