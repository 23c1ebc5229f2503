#include "RandomSchedule.h"

#include "controller/LocalTimeText.h"

namespace controller {

namespace {

void SetTime(std::mt19937& random, EventElement& event) {
  event.offset = Between(random, 0, 2);
  event.offset_minutes = event.offset == 0 ? Between(random, 0, 1439) : Between(random, -90, 90);
  // Over the edges of the day, too.
  if (OneIn(random, 12)) event.offset_minutes = Between(random, -1440, 2880);
  if (OneIn(random, 4)) event.randomize = Between(random, 1, OneIn(random, 5) ? 720 : 60);
}

void SetRepeat(std::mt19937& random, EventElement& event) {
  event.frequency = Between(random, 0, 4);
  event.rate = event.frequency == 0 ? 0 : Between(random, 1, 4);
  if (event.frequency == static_cast<int>(RepeatKind::kWeekly)) {
    event.daymask = static_cast<unsigned>(Between(random, 0, 127));
  }
  const bool nth = event.frequency >= static_cast<int>(RepeatKind::kMonthly) && OneIn(random, 2);
  event.start_period = nth ? Between(random, 1, 5) : 0;
  event.start_weekday = nth ? Between(random, 1, 7) : 0;
  if (event.frequency != 0 && OneIn(random, 5)) {
    event.end = DaysAfter(event.start, Between(random, 0, 700));
  }
}

}  // namespace

int Between(std::mt19937& random, int least, int most) {
  return std::uniform_int_distribution<int>(least, most)(random);
}

bool OneIn(std::mt19937& random, int count) { return Between(random, 1, count) == 1; }

DayFields RandomDay(std::mt19937& random, int year) {
  return DaysAfter({year, 1, 1}, Between(random, -400, 360));
}

EventElement RandomEvent(std::mt19937& random, int year) {
  EventElement event;
  event.start = RandomDay(random, year);
  SetTime(random, event);
  SetRepeat(random, event);
  return event;
}

std::vector<EventElement> RandomEvents(std::mt19937& random, std::size_t count, int year) {
  std::vector<EventElement> events;
  for (unsigned long id = 1; id <= count; ++id) {
    EventElement event = RandomEvent(random, year);
    event.eventid = id;
    event.description = "Event " + std::to_string(id);
    events.push_back(event);
  }
  return events;
}

std::string ScheduleOf(const std::vector<EventElement>& events) {
  std::string text =
      "<event_data><current_id>" + std::to_string(events.size()) + "</current_id><events>";
  for (const EventElement& event : events) text += MakeEventElement(event)->ToString();
  return text + "</events></event_data>";
}

}  // namespace controller
