#include "controller/EventElement.h"

#include <array>
#include <cstdio>

namespace controller {

namespace {

void ReadStart(const VxXML::INode& start, EventElement& event) {
  event.offset = start.GetInt("offset");
  event.offset_minutes = start.GetInt("offset_minutes");
  event.randomize = start.GetInt("randomize");
  const VxXML::INode* date = start.GetChild("start_date");
  if (date == nullptr || date->IsEmpty()) return;
  event.start = {date->GetInt("start_year"), date->GetInt("start_month"),
                 date->GetInt("start_day")};
  event.start_period = date->GetInt("start_period");
  event.start_weekday = date->GetInt("start_weekday");
}

void ReadRepeat(const VxXML::INode& repeat, EventElement& event) {
  event.frequency = repeat.GetInt("frequency");
  event.rate = repeat.GetInt("rate");
  event.daymask = static_cast<unsigned>(repeat.GetUnsigned("daymask"));
  const VxXML::INode* end = repeat.GetChild("end_date");
  if (end == nullptr || end->IsEmpty()) return;
  event.end = DayFields{end->GetInt("end_year"), end->GetInt("end_month"), end->GetInt("end_day")};
}

void AddRepeat(const EventElement& event, VxXML::INode& element) {
  VxXML::INode& repeat = XmlHelper::AddChild(element, "repeat", "");
  repeat.AddInt("frequency", event.frequency);
  repeat.AddInt("rate", event.rate);
  repeat.AddUnsigned("daymask", event.daymask);
  if (!event.end) return;
  VxXML::INode& end = XmlHelper::AddChild(repeat, "end_date", "");
  end.AddInt("end_month", event.end->month);
  end.AddInt("end_day", event.end->day);
  end.AddInt("end_year", event.end->year);
}

}  // namespace

EventElement ReadEventElement(const VxXML::INode& event) {
  EventElement read;
  read.eventid = event.GetUnsigned("eventid");
  read.description = event.GetText("description");
  const VxXML::INode* start = event.GetChild("start");
  if (start != nullptr && !start->IsEmpty()) ReadStart(*start, read);
  const VxXML::INode* repeat = event.GetChild("repeat");
  if (repeat != nullptr && !repeat->IsEmpty()) ReadRepeat(*repeat, read);
  return read;
}

vx::auto_com<VxXML::INode> MakeEventElement(const EventElement& event) {
  auto element = VxXML::CreateXmlNode("event", "");
  if (event.eventid != 0) element->AddUnsigned("eventid", event.eventid);
  element->AddText("description", event.description);
  VxXML::INode& start = XmlHelper::AddChild(*element, "start", "");
  start.AddInt("offset", event.offset);
  start.AddInt("offset_minutes", event.offset_minutes);
  VxXML::INode& date = XmlHelper::AddChild(start, "start_date", "");
  date.AddInt("start_day", event.start.day);
  date.AddInt("start_month", event.start.month);
  date.AddInt("start_year", event.start.year);
  date.AddInt("start_period", event.start_period);
  date.AddInt("start_weekday", event.start_weekday);
  start.AddInt("randomize", event.randomize);
  if (event.frequency != 0) AddRepeat(event, *element);
  return element;
}

std::optional<NextOccurrence> ReadNextOccurrence(const VxXML::INode& event) {
  const VxXML::INode* next = event.GetChild("next_occurence");
  if (next == nullptr) return std::nullopt;
  return NextOccurrence{{next->GetInt("year"), next->GetInt("month"), next->GetInt("day")},
                        next->GetInt("hour"),
                        next->GetInt("min")};
}

std::string DayText(const DayFields& day) {
  std::array<char, 48> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02d", day.year, day.month, day.day);
  return text.data();
}

std::string NextOccurrenceText(const NextOccurrence& next) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), " %02d:%02d", next.hour, next.minute);
  return DayText(next.day) + text.data();
}

}  // namespace controller
