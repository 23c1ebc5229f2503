#include "vexalink_agent_scheduler/vxw/VxTime.h"

#include <cstdint>

#include "vexalink_agent_scheduler/vxw/LocalTime.h"

VxTime::VxTime(int year, int month, int day, int hour, int minute, int second, int isdst)
    : seconds_(local_time::Instant(year, month, day, hour, minute, second, isdst)) {}

std::tm* VxTime::GetLocalTm(std::tm* out) const {
  if (out == nullptr) return std::localtime(&seconds_);
  return local_time::Fields(seconds_, out) ? out : nullptr;
}

int VxTime::GetYear() const {
  if (const local_time::Day* day = local_time::FindDay(seconds_)) return day->year;
  std::tm local;
  return GetLocalTm(&local) == nullptr ? 0 : static_cast<int>(std::int64_t{local.tm_year} + 1900);
}

int VxTime::GetMonth() const {
  if (const local_time::Day* day = local_time::FindDay(seconds_)) return day->month;
  std::tm local;
  return GetLocalTm(&local) == nullptr ? 0 : local.tm_mon + 1;
}

int VxTime::GetDay() const {
  if (const local_time::Day* day = local_time::FindDay(seconds_)) return day->day;
  std::tm local;
  return GetLocalTm(&local) == nullptr ? 0 : local.tm_mday;
}

int VxTime::GetHour() const {
  std::tm local;
  return GetLocalTm(&local) == nullptr ? -1 : local.tm_hour;
}

int VxTime::GetMinute() const {
  std::tm local;
  return GetLocalTm(&local) == nullptr ? -1 : local.tm_min;
}

bool YMD::operator==(YMD other) const {
  return time.GetYear() == other.time.GetYear() && time.GetMonth() == other.time.GetMonth() &&
         time.GetDay() == other.time.GetDay();
}
