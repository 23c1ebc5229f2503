#include "controller/simulate/JsonReport.h"

#include "controller/LocalTimeText.h"
#include "controller/Log.h"
#include "controller/programming/ProgrammingJson.h"

namespace controller {

using Line = nlohmann::ordered_json;

namespace {

const char* BaseName(OffsetBase base) {
  if (base == OffsetBase::kSunrise) return "sunrise";
  return base == OffsetBase::kSunset ? "sunset" : "clock";
}

Line ActionLine(const SimulatedAction& action) {
  Line line = {{"runs", action.runs}, {"text", ActionText(action.action)}};
  if (!action.condition.empty()) {
    line["condition"] = action.condition;
    line["because"] = action.because;
  }
  line["action"] = ActionJson(action.action);
  return line;
}

void AddCounts(Line& line, const SimulatedTotals& totals) {
  line["fired"] = totals.fired;
  line["held"] = totals.held;
  line["missed"] = totals.missed;
  line["near"] = totals.near;
  line["actions"] = totals.actions;
  line["unmet"] = totals.unmet;
  line["clock_changes"] = totals.clockShifts;
}

}  // namespace

void JsonReport::Write(const Line& line) {
  out_ << line.dump(-1, ' ', false, Line::error_handler_t::replace) << '\n';
}

JsonReport::JsonReport(std::ostream& out, const SimulationFacts& facts) : out_(out) {
  const HousePlace& place = facts.project.place;
  Write({{"kind", "simulation"},
         {"project", facts.project.house.projectId},
         {"name", facts.project.name},
         {"from", DayText(facts.span.from)},
         {"to", DayText(facts.span.to)},
         {"timezone", facts.zone},
         {"place",
          {{"latitude", place.place.latitude},
           {"longitude", place.place.longitude},
           {"guessed", place.guessed}}},
         {"events", facts.project.events}});
}

void JsonReport::Finish(const SimulatedTotals& totals) {
  Line line = {{"kind", "total"}, {"days", totals.days}};
  AddCounts(line, totals);
  Write(line);
}

void JsonReport::OnClockShift(const ClockShift& shift) {
  Write({{"kind", "clock-change"},
         {"at", MomentText(shift.at)},
         {"seconds", shift.after - shift.before},
         {"before", OffsetText(shift.at - 1)},
         {"after", OffsetText(shift.at)}});
}

void JsonReport::OnOccurrence(const SimulatedOccurrence& occurrence) {
  Line line = {{"kind", StateName(occurrence.outcome)},
               {"at", MomentText(occurrence.at)},
               {"event", occurrence.event},
               {"description", occurrence.description},
               {"date", DayText(occurrence.date)},
               {"base", BaseName(occurrence.base)},
               {"planned", MomentText(occurrence.planned)},
               {"drawn", occurrence.drawn ? Line(*occurrence.drawn) : Line()},
               {"late", occurrence.lateSeconds},
               {"reason", occurrence.reason}};
  if (occurrence.outcome == OccurrenceState::kFired) {
    line["near"] = occurrence.near;
    line["actions"] = Line::array();
    for (const SimulatedAction& action : occurrence.actions) {
      line["actions"].push_back(ActionLine(action));
    }
  }
  Write(line);
}

void JsonReport::OnDayEnd(const SimulatedDay& day, const SimulatedTotals& totals) {
  Line line = {{"kind", "day"}, {"date", DayText(day.date)}, {"seconds", day.seconds}};
  AddCounts(line, totals);
  Write(line);
}

}  // namespace controller
