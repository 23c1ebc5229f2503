// Today's schedule: building it, and firing from it on the tick.

#include <cstdlib>
#include <vector>

#include "vexalink_agent_scheduler/vxw/LocalTime.h"
#include "vexalink_agent_scheduler/vxw/ZoneWatch.h"
#include "vexalink_agent_scheduler/vxw/vexalink_agent_scheduler.h"

namespace {

constexpr unsigned int kLogLevel = 7;

}  // namespace

void vexalink_agent_scheduler::GetEventsOnDate(VxTime date, std::list<Event*>* out) const {
  const std::vector<Event*>& found = rules.FindOnDate(events, date);
  out->assign(found.begin(), found.end());
}

// Works out when the event fires today; false where it is left out.
bool vexalink_agent_scheduler::SetFireTime(Event& event, bool schedulePast) const {
  const VxTime now = VxTime::GetCurrentTime();
  VxTime time = event.EventTime(now);
  if (event.randomize > 0) {
    const long long spread = event.randomize;
    // Drawn also where the event is then left out: who seeds the generator can rely on the count.
    const long long minutes = std::rand() % (2 * spread + 1) - spread;
    time = VxTime(time.Seconds() + minutes * 60);
  }
  if (time <= now && !schedulePast) return false;
  event.next_fire = time;
  return true;
}

void vexalink_agent_scheduler::ScheduleEvent(Event* event, bool schedulePast) {
  todaysIndex.Remove(*event);
  if (SetFireTime(*event, schedulePast)) todaysIndex.Insert(*event);
}

void vexalink_agent_scheduler::CalculateTodaysEvents(bool skipPast) {
  const local_time::ZoneHold hold;
  const std::vector<Event*>& today = rules.FindOnDate(events, VxTime::GetCurrentTime());
  std::vector<Event*> scheduled;
  scheduled.reserve(today.size());
  for (Event* event : today) {
    if (SetFireTime(*event, !skipPast)) scheduled.push_back(event);
  }
  todaysIndex.Assign(scheduled);
}

void vexalink_agent_scheduler::OnTimerExpired(unsigned long id, long /*reserved*/) {
  if (id != timerId) return;
  const VxTime now = VxTime::GetCurrentTime();
  ForgetZoneEachMinute(now);
  while (!todaysEvents.empty() && now >= todaysEvents.front()->next_fire) {
    Event* const event = todaysEvents.front();
    Fire(*event);
    todaysIndex.Remove(*event);
  }
  if (sameDay.AreOn(now.Seconds(), scheduleDate.Seconds()) || !DayHasChanged(now)) return;
  scheduleDate = now;
  CalculateTodaysEvents(/*skipPast=*/false);
  DumpTodaysEvents();
}

// The time zone may have been changed in a way that cannot be seen at once; see ZoneWatch.h.
void vexalink_agent_scheduler::ForgetZoneEachMinute(VxTime now) {
  const std::time_t minute = now.Seconds() / 60;
  if (minute == zoneForgotten) return;
  zoneForgotten = minute;
  local_time::ForgetZone();
}

void vexalink_agent_scheduler::Fire(const Event& event) {
  FireEvent(event.eventid);
  const std::string line =
      "Scheduler Event " + std::to_string(event.eventid) + ", " + event.description;
  LogMessage(kLogLevel, line.c_str());
  const vx::auto_com<IBindMessage> message = CreateBindMessage();
  if (!message) return;
  for (const char* command : {"DO_PUSH", "DO_CLICK"}) {
    message->SetCommand(command, 1);
    SendBoundCall(event.eventid, *message, nullptr);
  }
}

// Field by field, not by calendar order: a clock that was set back to 15 February from 10 March
// counts as a new day, one set back to 5 February does not. Kept: what a schedule does after its
// clock was set back must not change under its owner (DayChange.ComparesFieldByField).
bool vexalink_agent_scheduler::DayHasChanged(VxTime now) const {
  return now.GetYear() > scheduleDate.GetYear() || now.GetMonth() > scheduleDate.GetMonth() ||
         now.GetDay() > scheduleDate.GetDay();
}

void vexalink_agent_scheduler::DumpTodaysEvents() {
  const std::string prefix = "SCHEDULE_TRACE:  ";
  const auto decimal = [](int value) { return std::to_string(value); };
  LogMessage(kLogLevel, (prefix + "For: " + decimal(scheduleDate.GetMonth()) + "/" +
                         decimal(scheduleDate.GetDay()) + "/" + decimal(scheduleDate.GetYear()))
                            .c_str());
  for (const Event* event : todaysEvents) {
    LogMessage(kLogLevel,
               (prefix + "Event: " + std::to_string(event->eventid) + " (" + event->description +
                ") will fire at " + decimal(event->next_fire.GetHour()) + ":" +
                decimal(event->next_fire.GetMinute()))
                   .c_str());
  }
}

VxTime vexalink_agent_scheduler::CalculateEventTime(Scheduler::OFFSET_TYPE offset,
                                                    int minutes) const {
  return Event::CalculateEventTime(VxTime::GetCurrentTime(), offset, minutes, latitude, longitude);
}
