// /project/backups: schedules that were put aside.

#include "controller/Printable.h"
#include "controller/ProjectVariables.h"
#include "controller/ScheduleSummary.h"
#include "controller/api/ApiContext.h"
#include "controller/api/JsonText.h"

namespace controller {

namespace {

nlohmann::ordered_json BackupsJson(House& house) {
  auto list = nlohmann::ordered_json::array();
  for (const StoredState& state : house.Store().Backups(kSchedulerName)) {
    list.push_back({{"number", list.size() + 1},
                    {"saved", MomentJson(state.saved)},
                    {"reason", ValidUtf8(state.reason)},
                    {"bytes", state.xml.size()}});
  }
  return nlohmann::ordered_json{{"backups", std::move(list)}};
}

[[noreturn]] void RefuseNumber(std::size_t number, std::size_t count) {
  throw Problem("not-found", CountText(count, "schedule") + " put aside, there is no number " +
                                 std::to_string(number));
}

void ListBackups(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  respond(JsonAnswer(BackupsJson(api.house)));
}

void GetBackup(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  const unsigned long number = NumberInPath(request, "n", "backup");
  std::vector<StoredState> backups = api.house.Store().Backups(kSchedulerName);
  if (number > backups.size()) RefuseNumber(number, backups.size());
  HttpResponse response;
  response.contentType = "application/xml";
  response.body = std::move(backups[number - 1].xml) + '\n';
  respond(std::move(response));
}

void CreateBackup(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  // The list is read when the copy is on the disk, not before.
  House& house = api.house;
  SavedAnswer trouble(respond);
  house.BackUpSchedule(request.actor,
                       [&house, respond, failed = trouble.Callback()](const std::string& why) {
                         if (!why.empty()) return failed(why);
                         respond(JsonAnswer(BackupsJson(house), 201));
                       });
}

void RestoreBackup(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  const unsigned long number = NumberInPath(request, "n", "backup");
  const std::size_t count = api.house.Store().Backups(kSchedulerName).size();
  SavedAnswer answer(respond);
  answer.Set(NoContent());
  if (!api.house.RestoreBackup(number, request.actor, answer.Callback())) {
    RefuseNumber(number, count);
  }
}

}  // namespace

void AddBackupRoutes(Routes& routes, const SharedContext& api) {
  const std::string all = "/project/backups";
  AddRoute(routes, "GET", all, Role::kView, BodyKind::kNone, Handle(api, ListBackups));
  AddRoute(routes, "POST", all, Role::kEdit, BodyKind::kNone, Handle(api, CreateBackup));
  AddRoute(routes, "GET", all + "/{n}", Role::kView, BodyKind::kNone, Handle(api, GetBackup));
  AddRoute(routes, "POST", all + "/{n}/restore", Role::kEdit, BodyKind::kNone,
           Handle(api, RestoreBackup));
}

}  // namespace controller
