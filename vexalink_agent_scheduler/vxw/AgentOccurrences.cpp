// The listing of what happens over a span of days.

#include "vexalink_agent_scheduler/vxw/OccurrenceListing.h"
#include "vexalink_agent_scheduler/vxw/ZoneWatch.h"
#include "vexalink_agent_scheduler/vxw/vexalink_agent_scheduler.h"

namespace {

void Append(VxXML::INode& list, const ListedOccurrence& occurrence) {
  VxXML::INode& entry = XmlHelper::AddChild(list, "event", "");
  entry.AddUnsigned("eventid", occurrence.event->eventid);
  entry.AddText("description", occurrence.event->description);
  VxXML::INode& when = XmlHelper::AddChild(entry, "event_time", "");
  when.AddInt("year", occurrence.year);
  when.AddInt("month", occurrence.month);
  when.AddInt("day", occurrence.day);
  when.AddInt("hour", occurrence.hour);
  when.AddInt("min", occurrence.minute);
}

}  // namespace

vx::auto_com<VxXML::INode> vexalink_agent_scheduler::GetEventOccurences(VxTime from,
                                                                        VxTime to) const {
  vx::auto_com<VxXML::INode> list = VxXML::CreateXmlNode("events", "");
  const local_time::ZoneHold hold;
  OccurrenceListing listing(events, from, to);
  std::vector<ListedOccurrence> occurrences;
  while (listing.Next(&occurrences)) {
    for (const ListedOccurrence& occurrence : occurrences) Append(*list, occurrence);
  }
  return list;
}
