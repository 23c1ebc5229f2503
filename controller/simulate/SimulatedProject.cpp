#include "controller/simulate/SimulatedProject.h"

#include "controller/Failure.h"
#include "controller/Printable.h"
#include "controller/ProjectStore.h"
#include "controller/ProjectVariables.h"
#include "controller/ScheduleReview.h"
#include "controller/json/ObjectReader.h"
#include "controller/live/ProgrammingTable.h"

namespace controller {

namespace {

// Projects of the first version have none.
bool HasProgramming(ProjectStore& store) {
  return store.Database().Number("SELECT count(*) FROM sqlite_schema WHERE name = 'programming'") >
         0;
}

std::size_t CountEvents(const std::string& schedule, const std::string& project) {
  try {
    const auto document = ParseXml(schedule, "the saved schedule");
    const VxXML::INode* events = EventsOf(*document->GetRoot());
    std::size_t count = 0;
    if (events == nullptr) return count;
    for (const auto* event = events->GetFirstChild(); event; event = event->GetNextSibling()) {
      ++count;
    }
    return count;
  } catch (const Failure& failure) {
    throw Failure("project " + Quoted(project) + ": " + failure.what());
  }
}

}  // namespace

SimulatedProject ReadSimulatedProject(const std::filesystem::path& file,
                                      const std::optional<Place>& place) {
  ProjectStore store(file, ProjectStore::Use::kLook);
  SimulatedProject project;
  project.name = store.Setting("name").value_or("");
  project.place = place ? HousePlace{*place, "as given"} : FindHousePlace(store, std::nullopt);
  project.house.place = project.place.place;
  project.house.projectId = store.ProjectId();
  project.house.awayUntil = ReadDay(store.Setting("away_until").value_or(""));
  if (HasProgramming(store)) project.house.programming = ProgrammingTable(store).All();
  if (const auto state = store.State(kSchedulerName)) {
    project.events = CountEvents(state->xml, file.string());
    project.house.schedule = state->xml;
  }
  return project;
}

}  // namespace controller
