#include "controller/simulate/TableReport.h"

#include <array>
#include <cstdlib>
#include <ctime>

#include "controller/DayEdges.h"
#include "controller/LocalTimeText.h"
#include "controller/Log.h"
#include "controller/Printable.h"
#include "controller/ScheduleSummary.h"
#include "controller/cli/show/DisplayWidth.h"
#include "controller/programming/ProgrammingJson.h"

namespace controller {

using cli::CutToWidth;
using cli::PadToWidth;

namespace {

constexpr std::size_t kDescriptionColumns = 30;
constexpr std::size_t kContentBytes = 300;
constexpr long kSecondsPerDay = 86400;

std::string DurationText(long seconds) {
  const struct {
    long length;
    const char* name;
  } units[] = {{3600, " h"}, {60, " min"}, {1, " s"}};
  std::string text;
  for (const auto& unit : units) {
    if (seconds < unit.length) continue;
    text += (text.empty() ? "" : " ") + std::to_string(seconds / unit.length) + unit.name;
    seconds %= unit.length;
  }
  return text.empty() ? "0 s" : text;
}

std::string SignedMinutes(long minutes) {
  return (minutes < 0 ? "" : "+") + std::to_string(minutes) + " min";
}

const char* BaseText(OffsetBase base) {
  if (base == OffsetBase::kSunrise) return "sunrise";
  return base == OffsetBase::kSunset ? "sunset" : "";
}

std::string Joined(const std::set<unsigned long>& ids) {
  std::string text;
  for (const unsigned long id : ids) text += (text.empty() ? "" : ", ") + std::to_string(id);
  return text;
}

// What goes out with an action, beside what `ActionText` tells.
std::string Content(const Action& action) {
  if (const auto* hook = std::get_if<HookAction>(&action.what)) return hook->body;
  if (const auto* command = std::get_if<CommandAction>(&action.what)) {
    std::string text;
    for (std::size_t i = 1; i < command->argv.size(); ++i) {
      text += (i == 1 ? "" : " ") + command->argv[i];
    }
    return text;
  }
  return "";
}

std::string CountsText(const SimulatedTotals& totals) {
  std::string text = std::to_string(totals.fired) + " fired";
  if (totals.held > 0) text += ", " + std::to_string(totals.held) + " held back";
  if (totals.missed > 0) text += ", " + std::to_string(totals.missed) + " missed";
  if (totals.actions > 0) text += ", " + CountText(totals.actions, "action");
  if (totals.unmet > 0) text += ", " + std::to_string(totals.unmet) + " left out by a condition";
  if (totals.near > 0) text += ", " + std::to_string(totals.near) + " within a minute of another";
  return text;
}

}  // namespace

TableReport::TableReport(std::ostream& out, const SimulationFacts& facts) : out_(out) {
  out_ << DayText(facts.span.from) << " to " << DayText(facts.span.to) << ", "
       << CountText(static_cast<std::size_t>(facts.span.Days()), "day") << ", time zone "
       << (facts.zone.empty() ? "of unknown name" : Printable(facts.zone, 200)) << ", place "
       << PlaceText(facts.project.place.place) << '\n';
  if (!facts.project.name.empty()) out_ << Printable(facts.project.name, 200) << ": ";
  out_ << CountText(facts.project.events, "event");
  if (facts.event) out_ << ", of which event " << *facts.event << " is shown";
  out_ << '\n';
}

void TableReport::Finish(const SimulatedTotals& totals) {
  out_ << "\nin all: " << CountsText(totals);
  if (totals.clockShifts > 0) out_ << ", " << CountText(totals.clockShifts, "clock change");
  out_ << '\n';
}

void TableReport::OnDay(const SimulatedDay& day) {
  heading_ = day;
  odd_ = day.seconds != 0 && day.seconds != kSecondsPerDay;
}

void TableReport::Heading() {
  if (!heading_) return;
  out_ << '\n' << NamedDay(heading_->date);
  if (odd_) out_ << ", a day of " << DurationText(heading_->seconds);
  if (heading_->seconds == 0) out_ << ", what is left of the day before";
  out_ << '\n';
  heading_.reset();
}

std::string TableReport::ClockText(std::time_t moment) const {
  std::tm fields{};
  if (localtime_r(&moment, &fields) == nullptr) return "?";
  std::array<char, 64> text{};
  std::strftime(text.data(), text.size(), odd_ ? "%H:%M:%S %Z" : "%H:%M:%S", &fields);
  return Printable(text.data(), 40);
}

void TableReport::OnClockShift(const ClockShift& shift) {
  odd_ = true;
  Heading();
  const long seconds = shift.after - shift.before;
  out_ << "  " << ClockText(shift.at) << "  the clocks go " << (seconds > 0 ? "forward" : "back")
       << " by " << DurationText(std::labs(seconds)) << ", from UTC" << OffsetText(shift.at - 1)
       << " to UTC" << OffsetText(shift.at) << '\n';
}

std::string TableReport::Details(const SimulatedOccurrence& occurrence) const {
  std::string text;
  const auto add = [&text](const std::string& part) {
    if (!part.empty()) text += (text.empty() ? "" : ", ") + part;
  };
  if (occurrence.reason != "timer") add(occurrence.reason);
  add(BaseText(occurrence.base));
  const bool moved = occurrence.drawn || occurrence.at - occurrence.planned >= kNearSeconds ||
                     occurrence.at < occurrence.planned;
  if (moved) add("planned " + ClockText(occurrence.planned).substr(0, 5));
  if (occurrence.drawn) add("drawn " + SignedMinutes(*occurrence.drawn));
  if (LocalDay(occurrence.at) != occurrence.date) add("of " + DayText(occurrence.date));
  if (!occurrence.near.empty()) add("within a minute of " + Joined(occurrence.near));
  return text;
}

void TableReport::OnOccurrence(const SimulatedOccurrence& occurrence) {
  Heading();
  const std::string description =
      CutToWidth(Printable(occurrence.description, 1000), kDescriptionColumns);
  const std::string details = Details(occurrence);
  std::string line = "  " + ClockText(occurrence.at) + "  " +
                     PadToWidth(StateName(occurrence.outcome), 6) + ' ' +
                     PadToWidth(std::to_string(occurrence.event), 4) + ' ';
  line +=
      details.empty() ? description : PadToWidth(description, kDescriptionColumns) + "  " + details;
  out_ << line << '\n';
  for (const SimulatedAction& action : occurrence.actions) Row(action);
}

void TableReport::Row(const SimulatedAction& action) {
  out_ << "            " << TriggerName(action.action.on);
  if (action.action.delaySeconds > 0) {
    out_ << ", after " << DurationText(action.action.delaySeconds);
  }
  out_ << ": ";
  if (!action.runs) out_ << "not done: ";
  out_ << Printable(ActionText(action.action), kContentBytes);
  const std::string content = Content(action.action);
  if (action.runs && !content.empty()) out_ << ' ' << Printable(content, kContentBytes);
  if (!action.condition.empty()) {
    out_ << " (if " << Printable(action.condition, kContentBytes) << "; "
         << Printable(action.because, kContentBytes) << ')';
  }
  out_ << '\n';
}

void TableReport::OnDayEnd(const SimulatedDay&, const SimulatedTotals& totals) {
  if (heading_) return;
  out_ << "  " << CountsText(totals) << '\n';
}

}  // namespace controller
