#include "controller/ScheduleSummary.h"

#include "controller/Printable.h"

namespace controller {

ScheduleSummary Summarise(DriverInstance& scheduler) {
  ScheduleSummary summary;
  const auto all = scheduler.Request("GET_ALL_EVENTS");
  if (!all) return summary;
  for (const VxXML::INode* event = all->GetFirstChild(); event != nullptr;
       event = event->GetNextSibling()) {
    ++summary.events;
    const auto when = ReadNextOccurrence(*event);
    if (!when || (summary.next && summary.next->when <= *when)) continue;
    summary.next = {event->GetUnsigned("eventid"), event->GetText("description"), *when};
  }
  return summary;
}

std::string CountText(std::size_t count, const std::string& singular) {
  return std::to_string(count) + ' ' + singular + (count == 1 ? "" : "s");
}

std::string EventName(unsigned long eventid, const std::string& description) {
  const std::string name = "event " + std::to_string(eventid);
  return description.empty() ? name : name + ' ' + Quoted(description);
}

std::string NextText(const ScheduleSummary& summary) {
  if (!summary.next) return "next: nothing, no event comes again";
  return "next: " + EventName(summary.next->eventid, summary.next->description) + " at " +
         NextOccurrenceText(summary.next->when);
}

}  // namespace controller
