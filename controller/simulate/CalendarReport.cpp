#include "controller/simulate/CalendarReport.h"

#include "controller/programming/ProgrammingJson.h"
#include "controller/simulate/CalendarText.h"

namespace controller {

namespace {

std::string Notes(const SimulatedOccurrence& occurrence) {
  std::string notes;
  for (const SimulatedAction& action : occurrence.actions) {
    if (!action.runs) continue;
    notes += (notes.empty() ? "" : "\n") + ActionText(action.action);
    if (action.action.delaySeconds > 0) {
      notes += ", after " + std::to_string(action.action.delaySeconds) + " s";
    }
  }
  return notes;
}

}  // namespace

void CalendarReport::Write(const char* name, const std::string& value) {
  out_ << CalendarLine(name, value);
}

CalendarReport::CalendarReport(std::ostream& out, const SimulationFacts& facts, std::time_t stamp)
    : out_(out), projectId_(facts.project.house.projectId), stamp_(CalendarMoment(stamp)) {
  const std::string& name = facts.project.name;
  Write("BEGIN", "VCALENDAR");
  Write("VERSION", "2.0");
  Write("PRODID", "-//vexalink//vexalink " VEXALINK_VERSION "//EN");
  Write("CALSCALE", "GREGORIAN");
  Write("NAME", CalendarValue(name.empty() ? "Vexalink" : name));
  Write("X-WR-CALNAME", CalendarValue(name.empty() ? "Vexalink" : name));
}

void CalendarReport::OnOccurrence(const SimulatedOccurrence& occurrence) {
  if (occurrence.outcome != OccurrenceState::kFired) return;
  empty_ = false;
  Write("BEGIN", "VEVENT");
  Write("UID", CalendarValue(std::to_string(occurrence.event) + '-' + DayText(occurrence.date) +
                             '@' + projectId_ + ".vexalink"));
  Write("DTSTAMP", stamp_);
  Write("DTSTART", CalendarMoment(occurrence.at));
  Write("SUMMARY", CalendarValue(occurrence.description));
  if (const std::string notes = Notes(occurrence); !notes.empty()) {
    Write("DESCRIPTION", CalendarValue(notes));
  }
  Write("TRANSP", "TRANSPARENT");
  Write("END", "VEVENT");
}

void CalendarReport::Finish() {
  if (empty_) {
    // A calendar has to hold something.
    Write("BEGIN", "VTIMEZONE");
    Write("TZID", "Etc/UTC");
    Write("BEGIN", "STANDARD");
    Write("DTSTART", "19700101T000000");
    Write("TZOFFSETFROM", "+0000");
    Write("TZOFFSETTO", "+0000");
    Write("END", "STANDARD");
    Write("END", "VTIMEZONE");
  }
  Write("END", "VCALENDAR");
}

}  // namespace controller
