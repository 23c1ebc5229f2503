#pragma once

#include <memory>
#include <string>
#include <vector>

#include "vexalink_agent_scheduler/vxw/ScheduledEvent.h"

/// Events as tests write them, days as "2024-03-06", in the zone that is in force. They fire at
/// noon, never end, and have id 1.

constexpr unsigned int kSunday = 1U << 0;
constexpr unsigned int kMonday = 1U << 1;
constexpr unsigned int kTuesday = 1U << 2;
constexpr unsigned int kWednesday = 1U << 3;
constexpr unsigned int kThursday = 1U << 4;
constexpr unsigned int kFriday = 1U << 5;
constexpr unsigned int kSaturday = 1U << 6;

Event Once(const std::string& start);
Event Daily(const std::string& start, int rate);
Event Weekly(const std::string& start, int rate, unsigned int daymask);
Event Monthly(const std::string& start, int rate);
Event MonthlyBy(const std::string& start, int rate, Scheduler::PERIOD period, int weekday);
Event Yearly(const std::string& start, int rate);
Event YearlyBy(const std::string& start, int rate, Scheduler::PERIOD period, int weekday);

/// Lets the event end with a day.
void EndOn(Event& event, const std::string& day);

/// 12:00 and 00:00 of a day; another local time, "2024-03-06 07:00:00".
VxTime Noon(const std::string& day);
VxTime Midnight(const std::string& day);
VxTime At(const std::string& local);

/// Local time of an instant, "2024-03-06 07:00:00".
std::string Text(VxTime time);

/// Whether the event happens on a day, asked at noon.
bool OccursOn(const Event& event, const std::string& day);
/// The days on which it happens from one to another, both included, asked at noon.
std::vector<std::string> Days(const Event& event, const std::string& from, const std::string& to);

/// The event that an element gives, at a site of no matter.
std::unique_ptr<Event> FromXml(const std::string& xml);
