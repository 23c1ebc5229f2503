#include "controller/FirstSchedule.h"

namespace controller {

namespace {

constexpr unsigned kMonday = 1u << 1;
constexpr unsigned kThursday = 1u << 4;
constexpr unsigned kSaturday = 1u << 6;
constexpr unsigned kWeekdays = 0x3E;
constexpr std::time_t kLeastSecondsAhead = 2;

tm LocalFields(std::time_t moment) {
  tm fields{};
  if (localtime_r(&moment, &fields) == nullptr) fields = {};
  return fields;
}

DayFields DayOf(const tm& fields) {
  return {fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday};
}

EventElement Repeating(const char* description, OffsetBase base, int minutes, RepeatKind kind,
                       const DayFields& start) {
  EventElement event;
  event.description = description;
  event.offset = static_cast<int>(base);
  event.offset_minutes = minutes;
  event.frequency = static_cast<int>(kind);
  event.rate = 1;
  event.start = start;
  return event;
}

EventElement Weekly(const char* description, OffsetBase base, int minutes, unsigned days,
                    const DayFields& start) {
  EventElement event = Repeating(description, base, minutes, RepeatKind::kWeekly, start);
  event.daymask = days;
  return event;
}

EventElement Welcome(std::time_t now) {
  // By local fields, not by a remainder of the epoch: a zone may be off by odd seconds.
  const std::time_t earliest = now + kLeastSecondsAhead;
  const std::time_t intoMinute = LocalFields(earliest).tm_sec;
  const tm due = LocalFields(intoMinute == 0 ? earliest : earliest + 60 - intoMinute);
  EventElement event;
  event.description = "Welcome";
  event.offset_minutes = due.tm_hour * 60 + due.tm_min;
  event.start = DayOf(due);
  return event;
}

}  // namespace

std::vector<EventElement> FirstSchedule(std::time_t now) {
  const DayFields today = DayOf(LocalFields(now));
  EventElement evening = Repeating("Living room lamp in the evening", OffsetBase::kClock,
                                   19 * 60 + 30, RepeatKind::kDaily, today);
  evening.randomize = 20;
  EventElement filter = Repeating("Check the ventilation filter", OffsetBase::kClock, 10 * 60,
                                  RepeatKind::kMonthly, today);
  filter.start_period = 1;
  filter.start_weekday = 7;
  return {
      Repeating("Porch light on at sunset", OffsetBase::kSunset, 0, RepeatKind::kDaily, today),
      Repeating("Porch light off", OffsetBase::kClock, 23 * 60, RepeatKind::kDaily, today),
      Weekly("Blinds up half an hour after sunrise", OffsetBase::kSunrise, 30, kWeekdays, today),
      evening,
      Weekly("Water the garden", OffsetBase::kSunrise, -60, kMonday | kThursday | kSaturday, today),
      filter,
      Welcome(now),
  };
}

}  // namespace controller
