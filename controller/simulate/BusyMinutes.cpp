#include "controller/simulate/BusyMinutes.h"

namespace controller {

LocalMinute LocalMinute::At(std::time_t moment) {
  std::tm fields{};
  if (localtime_r(&moment, &fields) == nullptr) return {};
  return {{fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday},
          fields.tm_hour * 60 + fields.tm_min,
          fields.tm_gmtoff};
}

void BusyMinutes::TakeUp(const ScheduleTrace& trace) {
  minutes_.reset();
  for (const ScheduleTrace::Entry& entry : trace.entries) {
    const int minute = entry.hour * 60 + entry.minute;
    if (minute >= 0 && minute < 1440) minutes_.set(static_cast<std::size_t>(minute));
  }
}

}  // namespace controller
