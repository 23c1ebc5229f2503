#include "vexalink_agent_scheduler/vxw/ScheduledEvent.h"

#include <memory>

#include "vexalink_agent_scheduler/vxw/EventAssert.h"

namespace {

std::unique_ptr<Event> NewEndlessClockEvent(const std::string& description, int frequency,
                                            unsigned int minutes, double latitude,
                                            double longitude) {
  auto event = std::make_unique<Event>(latitude, longitude);
  event->description = description;
  event->frequency = frequency;
  event->rate = 1;
  event->offset = Scheduler::kClock;
  event->offset_minutes = static_cast<int>(minutes);
  event->start = VxTime::GetCurrentTime();
  event->hasEndDate = false;
  event->end_date = NeverTime;
  return event;
}

}  // namespace

Event::Event(double siteLatitude, double siteLongitude) { Init(siteLatitude, siteLongitude); }

Event::Event(unsigned long id, const std::string& name, double siteLatitude, double siteLongitude)
    : Event(siteLatitude, siteLongitude) {
  eventid = id;
  description = name;
}

Event::Event(VxXML::IDocument* document, double siteLatitude, double siteLongitude)
    : Event(siteLatitude, siteLongitude) {
  fromXml(document);
}

Event* Event::newDailyEvent(const std::string& description, unsigned int rate, unsigned int minutes,
                            double latitude, double longitude) {
  auto event = NewEndlessClockEvent(description, Scheduler::kDaily, minutes, latitude, longitude);
  event->rate = static_cast<int>(rate);
  return event.release();
}

Event* Event::newDaysOfWeekEvent(const std::string& description, unsigned int daymask,
                                 unsigned int minutes, double latitude, double longitude) {
  auto event = NewEndlessClockEvent(description, Scheduler::kWeekly, minutes, latitude, longitude);
  event->daymask = daymask;
  return event.release();
}

void Event::Init(double siteLatitude, double siteLongitude) {
  eventid = 0;
  start_period = Scheduler::kByDay;
  start_weekday = 0;
  offset = Scheduler::kClock;
  offset_minutes = 0;
  randomize = 0;
  frequency = Scheduler::kOnce;
  rate = 0;
  daymask = 0;
  hasEndDate = false;
  SetLatLong(siteLatitude, siteLongitude);
}

void Event::SetLatLong(double siteLatitude, double siteLongitude) {
  latitude = siteLatitude;
  longitude = siteLongitude;
}

void Event::Rate(int newRate) {
  event_assert::Check(newRate >= 1 || (frequency == Scheduler::kOnce && newRate == 0),
                      event_assert::kRateBelowOne);
  rate = newRate;
}

void Event::EndDate(const VxTime& day) {
  end_date = VxTime(day.GetYear(), day.GetMonth(), day.GetDay(), 23, 59, 59, -1);
}
