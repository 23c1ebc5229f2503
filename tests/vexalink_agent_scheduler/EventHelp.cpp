#include "tests/vexalink_agent_scheduler/EventHelp.h"

#include <ctime>
#include <stdexcept>

#include "tests/support/TestClock.h"

namespace {

constexpr int kNoonMinutes = 720;

Event Start(const std::string& start, int frequency, int rate) {
  Event event(1, "test", 0, 0);
  event.start = Midnight(start);
  event.offset_minutes = kNoonMinutes;
  event.frequency = frequency;
  event.rate = rate;
  event.EndDate(NeverTime);
  return event;
}

Event ByWeek(Event event, Scheduler::PERIOD period, int weekday) {
  event.start_period = period;
  event.start_weekday = weekday;
  return event;
}

}  // namespace

Event Once(const std::string& start) { return Start(start, Scheduler::kOnce, 0); }

Event Daily(const std::string& start, int rate) { return Start(start, Scheduler::kDaily, rate); }

Event Weekly(const std::string& start, int rate, unsigned int daymask) {
  Event event = Start(start, Scheduler::kWeekly, rate);
  event.daymask = daymask;
  return event;
}

Event Monthly(const std::string& start, int rate) {
  return Start(start, Scheduler::kMonthly, rate);
}

Event MonthlyBy(const std::string& start, int rate, Scheduler::PERIOD period, int weekday) {
  return ByWeek(Monthly(start, rate), period, weekday);
}

Event Yearly(const std::string& start, int rate) { return Start(start, Scheduler::kYearly, rate); }

Event YearlyBy(const std::string& start, int rate, Scheduler::PERIOD period, int weekday) {
  return ByWeek(Yearly(start, rate), period, weekday);
}

void EndOn(Event& event, const std::string& day) {
  event.hasEndDate = true;
  event.EndDate(Noon(day));
}

VxTime Noon(const std::string& day) { return VxTime(Local(day + " 12:00:00")); }
VxTime Midnight(const std::string& day) { return VxTime(Local(day)); }
VxTime At(const std::string& local) { return VxTime(Local(local)); }

std::string Text(VxTime time) {
  const std::time_t seconds = time.Seconds();
  std::tm local{};
  if (localtime_r(&seconds, &local) == nullptr) return "none";
  char text[40];
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
  return text;
}

bool OccursOn(const Event& event, const std::string& day) { return event.OccursOnDate(Noon(day)); }

std::vector<std::string> Days(const Event& event, const std::string& from, const std::string& to) {
  std::vector<std::string> days;
  // Noon to noon is nearer to a day than half a day, whatever the clocks do.
  for (std::string day = from; day <= to;) {
    if (OccursOn(event, day)) days.push_back(day);
    day = Text(VxTime(Noon(day).Seconds() + 86400)).substr(0, 10);
  }
  return days;
}

std::unique_ptr<Event> FromXml(const std::string& xml) {
  const auto document = VxXML::CreateXmlDocument(xml);
  if (!document) throw std::invalid_argument("does not parse: " + xml);
  return std::make_unique<Event>(document.get(), 0, 0);
}
