#include "controller/simulate/Simulate.h"

#include <ctime>
#include <memory>

#include "controller/DriverLoader.h"
#include "controller/ScheduleReview.h"
#include "controller/TimeZone.h"
#include "controller/simulate/CalendarReport.h"
#include "controller/simulate/JsonReport.h"
#include "controller/simulate/Simulation.h"
#include "controller/simulate/TableReport.h"

namespace controller {

namespace {

void CheckEvent(const SimulatedProject& project, unsigned long event) {
  if (project.house.schedule) {
    const auto document = ParseXml(*project.house.schedule, "the saved schedule");
    const VxXML::INode* events = EventsOf(*document->GetRoot());
    const VxXML::INode* node = events == nullptr ? nullptr : events->GetFirstChild();
    for (; node != nullptr; node = node->GetNextSibling()) {
      if (node->GetUnsigned("eventid") == event) return;
    }
  }
  throw Failure("--event is " + std::to_string(event) +
                    ", and the schedule has no such event; \"vexalink export\" shows them all",
                ExitStatus::kBadInput);
}

}  // namespace

ExitStatus RunSimulate(const SimulateOptions& options, std::ostream& out) {
  tzset();
  const SimulatedSpan span = ReadSpan(options.from, options.to);
  const auto loader = LoadDriver(options.agent);
  const SimulatedProject project = ReadSimulatedProject(options.project, options.place);
  if (options.event) CheckEvent(project, *options.event);
  const SimulationFacts facts{project, span, TimeZoneName(), options.event};
  const auto run = [&](ISimulationReport& report) {
    return Simulation(*loader, project.house, report, options.event).Run(span.from, span.to);
  };
  if (options.form == SimulateOptions::Form::kJson) {
    JsonReport report(out, facts);
    report.Finish(run(report));
  } else if (options.form == SimulateOptions::Form::kCalendar) {
    CalendarReport report(out, facts, std::time(nullptr));
    run(report);
    report.Finish();
  } else {
    TableReport report(out, facts);
    report.Finish(run(report));
  }
  out.flush();
  if (!out) throw Failure("the result could not be written");
  return ExitStatus::kOk;
}

}  // namespace controller
