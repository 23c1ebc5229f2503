// /project/export and /project/import: the schedule as XML.

#include "controller/Failure.h"
#include "controller/Printable.h"
#include "controller/ProjectVariables.h"
#include "controller/XmlRepair.h"
#include "controller/api/ApiContext.h"
#include "controller/api/JsonText.h"

namespace controller {

namespace {

HttpResponse XmlAnswer(std::string xml, const std::string& fileName) {
  HttpResponse response;
  response.contentType = "application/xml";
  response.body = std::move(xml) + '\n';
  response.headers.emplace_back("Content-Disposition", "attachment; filename=\"" + fileName + '"');
  return response;
}

/// What is kept; where saving does not work, what would be.
std::string ScheduleText(House& house) {
  if (house.SavingTrouble().empty()) {
    if (auto kept = house.Store().State(kSchedulerName)) return std::move(kept->xml);
  }
  const auto state = house.Scheduler().PersistText();
  if (!state) throw Problem("not-ready", "the scheduler has no schedule to give");
  return RepairXml(*state).text;
}

void ExportSchedule(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  respond(XmlAnswer(ScheduleText(api.house), "schedule.xml"));
}

const char* KindName(Finding::Kind kind) {
  switch (kind) {
    case Finding::Kind::kDropped:
      return "dropped";
    case Finding::Kind::kChanged:
      return "changed";
    default:
      return "note";
  }
}

nlohmann::ordered_json FindingsJson(const Findings& findings) {
  auto list = nlohmann::ordered_json::array();
  for (const Finding& finding : findings) {
    list.push_back({{"kind", KindName(finding.kind)}, {"text", ValidUtf8(finding.text)}});
  }
  return list;
}

/// Of the events only those about which there is something to say.
nlohmann::ordered_json ReviewJson(const ScheduleReview& review, bool imported) {
  auto events = nlohmann::ordered_json::array();
  for (const ReviewedEvent& event : review.events) {
    if (event.findings.empty()) continue;
    events.push_back({{"position", event.position},
                      {"id", event.eventid},
                      {"description", ValidUtf8(event.description)},
                      {"findings", FindingsJson(event.findings)}});
  }
  const std::size_t dropped = review.Count(Finding::Kind::kDropped);
  nlohmann::ordered_json json;
  json["imported"] = imported;
  json["events"] = review.events.size();
  json["kept"] = review.events.size() - dropped;
  json["changed"] = review.Count(Finding::Kind::kChanged);
  json["dropped"] = dropped;
  json["whole"] = FindingsJson(review.whole);
  json["findings"] = std::move(events);
  return json;
}

[[noreturn]] void RefuseXml(const Failure& failure) {
  throw Problem("malformed", std::string(failure.what()) + "; nothing was imported");
}

void PreviewImport(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  try {
    const auto document = ParseXml(request.body, "the body");
    const ScheduleReview review =
        ReviewSchedule(*document->GetRoot(), api.house.Loader(), api.house.WhereItIs().place);
    respond(JsonAnswer(ReviewJson(review, /*imported=*/false)));
  } catch (const Failure& failure) {
    RefuseXml(failure);
  }
}

/// What a schedule that would lose something is refused with: the review goes with it.
HttpResponse RefusedImport(const ScheduleReview& review) {
  FieldErrors errors;
  const auto note = [&errors](const std::string& where, const Findings& findings) {
    for (const Finding& finding : findings) {
      if (finding.kind == Finding::Kind::kDropped) {
        errors.push_back({where, "would be dropped: " + finding.text});
      }
    }
  };
  note("", review.whole);
  for (const ReviewedEvent& event : review.events) {
    note("/events/" + std::to_string(event.position - 1), event.findings);
  }
  return Problem("invalid",
                 "something of the schedule would be dropped, so nothing was imported; correct it, "
                 "or give ?force=1 to import the rest",
                 errors)
      .Response();
}

void ImportSchedule(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  QueryReader query(request);
  const bool force = query.Flag("force");
  query.NoOthers();
  try {
    SavedAnswer answer(respond);
    const House::Imported imported =
        api.house.ImportSchedule(request.body, force, request.actor, answer.Callback());
    if (!imported.done) return respond(RefusedImport(imported.review));
    answer.Set(JsonAnswer(ReviewJson(imported.review, /*imported=*/true)));
  } catch (const Failure& failure) {
    RefuseXml(failure);
  }
}

}  // namespace

void AddScheduleRoutes(Routes& routes, const SharedContext& api) {
  AddRoute(routes, "GET", "/project/export", Role::kView, BodyKind::kNone,
           Handle(api, ExportSchedule));
  AddRoute(routes, "POST", "/project/import/preview", Role::kEdit, BodyKind::kXml,
           Handle(api, PreviewImport));
  AddRoute(routes, "POST", "/project/import", Role::kEdit, BodyKind::kXml,
           Handle(api, ImportSchedule));
}

}  // namespace controller
