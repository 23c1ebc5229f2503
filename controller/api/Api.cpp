#include "controller/api/Api.h"

#include "controller/api/AgendaPage.h"
#include "controller/api/ApiContext.h"
#include "controller/api/JsonText.h"
#include "controller/programming/ProgrammingJson.h"

namespace controller {

Api::Api(House& house) : context_(std::make_shared<ApiContext>(house)) {}

std::vector<HttpRoute> Api::Routes() const {
  controller::Routes routes;
  for (const auto add :
       {AddEventRoutes, AddEventWorkRoutes, AddPreviewRoutes, AddProgrammingRoutes, AddActionRoutes,
        AddConditionRoutes, AddTodayRoutes, AddOccurrenceRoutes, AddSunRoutes, AddJournalRoutes,
        AddStatusRoutes, AddProjectRoutes, AddScheduleRoutes, AddBackupRoutes, AddVariableRoutes}) {
    add(routes, context_);
  }
  AddOpenApiRoutes(routes);
  AddAgendaPage(routes, context_);
  return routes;
}

std::string Api::EventText(unsigned long id) const {
  const auto found = LookForEvent(context_->house, id);
  return found ? controller::EventText(*context_, *found) : "null";
}

std::string Api::ProgrammingText(unsigned long id) const {
  return JsonDump(ProgrammingJson(context_->house.ProgrammingOf(id)));
}

std::string Api::JournalRowText(const JournalRow& row) const {
  return JsonDump(JournalRowJson(row));
}

std::string Api::ProjectText() const { return JsonDump(ProjectJson(*context_)); }

std::vector<HttpRoute> ApiRoutes(House& house) { return Api(house).Routes(); }

}  // namespace controller
