// The event element: how a record is read from it and written to it.

#include "vexalink_agent_scheduler/vxw/EventAssert.h"
#include "vexalink_agent_scheduler/vxw/LocalTime.h"
#include "vexalink_agent_scheduler/vxw/ScheduledEvent.h"

namespace {

using VxXML::INode;
using XmlHelper::AddChild;

void ReadStartDate(const INode& date, Event& event) {
  const int month = date.GetInt("start_month");
  const int year = date.GetInt("start_year");
  event.start_weekday = date.GetInt("start_weekday");
  event.start_period = static_cast<Scheduler::PERIOD>(date.GetInt("start_period"));
  int day = date.GetInt("start_day");
  // By week the day written there does not count, and where no day of the month matches it is that
  // of the epoch.
  if (event.start_period != Scheduler::kByDay) {
    day = Event::GetNthDayOfMonth(month, event.start_weekday, year, event.start_period).GetDay();
  }
  event.start = VxTime(year, month, day, 0, 0, 0, -1);
}

void ReadStart(const INode& root, Event& event) {
  const INode* start = root.GetChild("start");
  event_assert::Check(start != nullptr, event_assert::kNoStart);
  if (start == nullptr || start->IsEmpty()) return;
  event.offset = static_cast<Scheduler::OFFSET_TYPE>(start->GetInt("offset"));
  event.offset_minutes = start->GetInt("offset_minutes");
  const INode* date = start->GetChild("start_date");
  event_assert::Check(date != nullptr, event_assert::kNoStartDate);
  if (date != nullptr && !date->IsEmpty()) ReadStartDate(*date, event);
  event.randomize = start->GetInt("randomize");
}

void ReadEndDate(const INode& repeat, Event& event) {
  const INode* end = repeat.GetChild("end_date");
  if (end == nullptr || end->IsEmpty()) {
    event.EndDate(NeverTime);
    return;
  }
  event.hasEndDate = true;
  event.end_date = VxTime(end->GetInt("end_year"), end->GetInt("end_month"), end->GetInt("end_day"),
                          23, 59, 59, -1);
}

void ReadRepeat(const INode& root, Event& event) {
  const INode* repeat = root.GetChild("repeat");
  if (repeat == nullptr || repeat->IsEmpty()) {
    event.frequency = Scheduler::kOnce;
    event.Rate(0);
    event.EndDate(NeverTime);
    return;
  }
  event.frequency = repeat->GetInt("frequency");
  event.Rate(repeat->GetInt("rate"));
  event.daymask = event.frequency == Scheduler::kWeekly
                      ? static_cast<unsigned int>(repeat->GetUnsigned("daymask"))
                      : 0;
  ReadEndDate(*repeat, event);
}

void WriteStart(INode& root, const Event& event) {
  INode& start = AddChild(root, "start", "");
  start.AddInt("offset", event.offset);
  start.AddInt("offset_minutes", event.offset_minutes);
  INode& date = AddChild(start, "start_date", "");
  date.AddInt("start_day", event.start.GetDay());
  date.AddInt("start_month", event.start.GetMonth());
  date.AddInt("start_year", event.start.GetYear());
  date.AddInt("start_period", event.start_period);
  date.AddInt("start_weekday", event.start_weekday);
  start.AddInt("randomize", event.randomize);
}

void WriteNextOccurrence(INode& root, const Event& event) {
  const auto [time, found] = event.GetNextOccurance();
  if (!found) return;
  INode& next = AddChild(root, "next_occurence", "");
  next.AddInt("year", time.GetYear());
  next.AddInt("month", time.GetMonth());
  next.AddInt("day", time.GetDay());
  next.AddInt("hour", time.GetHour());
  next.AddInt("min", time.GetMinute());
  next.AddText("timezone", local_time::PresentZoneName());
}

void WriteRepeat(INode& root, const Event& event) {
  if (event.frequency == Scheduler::kOnce) return;
  INode& repeat = AddChild(root, "repeat", "");
  repeat.AddInt("frequency", event.frequency);
  repeat.AddInt("rate", event.rate);
  repeat.AddUnsigned("daymask", event.daymask);
  if (!event.hasEndDate) return;
  INode& end = AddChild(repeat, "end_date", "");
  end.AddInt("end_month", event.end_date.GetMonth());
  end.AddInt("end_day", event.end_date.GetDay());
  end.AddInt("end_year", event.end_date.GetYear());
}

}  // namespace

void Event::fromXml(VxXML::IDocument* document) {
  if (document == nullptr) return;
  const INode* root = document->GetRoot();
  event_assert::Check(root != nullptr, event_assert::kNoRoot);
  if (root == nullptr) return;
  event_assert::Check(root->IsNamed("event"), event_assert::kRootIsNoEvent);
  if (!root->IsNamed("event")) return;
  eventid = root->GetUnsigned("eventid");
  description = root->GetText("description");
  ReadStart(*root, *this);
  ReadRepeat(*root, *this);
}

vx::auto_com<INode> Event::toXml() const {
  vx::auto_com<INode> root = VxXML::CreateXmlNode("event", "");
  root->AddUnsigned("eventid", eventid);
  root->AddUnsigned("buttonbindingid", eventid);
  root->AddText("description", description);
  WriteStart(*root, *this);
  WriteNextOccurrence(*root, *this);
  WriteRepeat(*root, *this);
  return root;
}
