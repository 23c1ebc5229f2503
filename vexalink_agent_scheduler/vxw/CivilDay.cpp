#include "vexalink_agent_scheduler/vxw/CivilDay.h"

#include <cstdint>

#include "vexalink_agent_scheduler/vxw/LocalTime.h"

CivilDay CivilDay::Of(VxTime instant) {
  CivilDay civil;
  if (const local_time::Day* day = local_time::FindDay(instant.Seconds())) {
    civil.days = day->civil;
    civil.year = day->year;
    civil.month = static_cast<signed char>(day->month);
    civil.day = static_cast<signed char>(day->day);
    civil.weekday = static_cast<signed char>(day->weekday + 1);
    return civil;
  }
  std::tm local;
  if (instant.GetLocalTm(&local) == nullptr) return civil;
  civil.year = static_cast<int>(std::int64_t{local.tm_year} + 1900);
  civil.month = static_cast<signed char>(local.tm_mon + 1);
  civil.day = static_cast<signed char>(local.tm_mday);
  civil.weekday = static_cast<signed char>(local.tm_wday + 1);
  civil.days = local_time::CivilDays(civil.year, civil.month, civil.day);
  return civil;
}
