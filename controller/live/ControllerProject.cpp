#include <map>
#include <nlohmann/json.hpp>
#include <utility>

#include "controller/Clock.h"
#include "controller/DeletedEvents.h"
#include "controller/Log.h"
#include "controller/Printable.h"
#include "controller/ProjectVariables.h"
#include "controller/ScheduleSummary.h"
#include "controller/ScratchAgent.h"
#include "controller/live/Controller.h"

namespace controller {

namespace {

std::string ProjectText(const std::string& name, const Place& place,
                        const std::optional<DayFields>& awayUntil) {
  nlohmann::ordered_json json;
  json["name"] = name;
  json["place"] = {{"latitude", place.latitude}, {"longitude", place.longitude}};
  json["away_until"] = awayUntil ? nlohmann::ordered_json(DayText(*awayUntil)) : nullptr;
  return json.dump();
}

}  // namespace

void Controller::ChangeProject(const ProjectPatch& patch, const std::string& actor, Saved saved) {
  JournalRow row = NewRow("change", "project");
  row.actor = actor;
  row.before = ProjectText(name_, place_.place, AwayUntil());
  std::map<std::string, std::string> settings;
  if (patch.name) settings["name"] = name_ = *patch.name;
  if (patch.awayUntil) {
    awayUntil_ = *patch.awayUntil;
    settings["away_until"] = awayUntil_ ? DayText(*awayUntil_) : "";
  }
  if (patch.place) {
    settings["latitude"] = DegreesText(patch.place->latitude);
    settings["longitude"] = DegreesText(patch.place->longitude);
    RestartScheduler("down", [this, &patch] {
      place_ = {*patch.place, "as given, kept in the project", false};
      host_.SetVariable(kProjectDevice, kLatitudeVariable, DegreesText(patch.place->latitude));
      host_.SetVariable(kProjectDevice, kLongitudeVariable, DegreesText(patch.place->longitude));
    });
    Log::Info("place " + PlaceText(place_.place) + ": " + place_.origin);
  }
  row.after = ProjectText(name_, place_.place, AwayUntil());
  committer_.Add([settings](ProjectStore& store) { store.SaveSettings(settings); });
  Record(std::move(row), [this] {
    if (listener_ != nullptr) listener_->OnProjectChanged();
  });
  Finish(std::move(saved));
}

House::Imported Controller::ImportSchedule(const std::string& xml, bool force,
                                           const std::string& actor, Saved saved) {
  const auto document = ParseXml(xml, "the schedule");
  Imported imported;
  imported.review = ReviewSchedule(*document->GetRoot(), *loader_, place_.place);
  std::size_t dropped = imported.review.Count(Finding::Kind::kDropped);
  for (const Finding& finding : imported.review.whole) {
    if (finding.kind == Finding::Kind::kDropped) ++dropped;
  }
  if (dropped > 0 && !force) return imported;
  std::string state;
  {
    ScratchAgent scratch(*loader_, place_.place);
    state = ReadableState(scratch.StateAfterLoading(xml));
  }
  TakeSchedule(state, "replaced by an import", actor, std::move(saved));
  imported.done = true;
  return imported;
}

void Controller::TakeSchedule(const std::string& state, const std::string& reason,
                              const std::string& actor, Saved saved) {
  // What is put aside is what is on the disk, so that comes first.
  if (committer_.IsPending()) committer_.SaveNow();
  // Read before anything is changed: a disk that cannot be read leaves all as it is.
  const std::vector<DeletedEvent> kept = DeletedEvents::All(store_);
  const std::map<unsigned long, EventElement> before = desk_.Catalog().All();
  BackUpBeforeNextSave(reason);
  {
    const ClockScope sameMoment(std::time(nullptr));
    host_.ExpireTimers();
    ReplaceScheduler(state, "down", MovesBetween(before, EventsIn(state)));
  }
  JournalRow row = NewRow("change", "imported");
  row.actor = actor;
  row.text = reason + ": " + CountText(before.size(), "event") + " before, " +
             CountText(desk_.Catalog().All().size(), "event") + " now";
  Log::Info("the schedule was " + row.text);
  Record(std::move(row), [this] {
    if (listener_ != nullptr) listener_->OnScheduleReplaced();
  });
  MoveProgramming(before, actor);
  BringBackProgramming(kept, actor);
  Finish(std::move(saved));
}

void Controller::MoveProgramming(const std::map<unsigned long, EventElement>& before,
                                 const std::string& actor) {
  // What an event does belongs to the event, whatever number it has in the new schedule; its name
  // tells which it is.
  std::map<std::string, unsigned long> byName;
  for (const auto& [id, event] : desk_.Catalog().All()) byName.emplace(event.description, id);
  const std::map<unsigned long, Programming> old = programming_.All();
  for (const auto& [id, programming] : old) {
    programming_.Drop(id);
    committer_.Add([id = id](ProjectStore& store) { ProgrammingTable::Erase(store, id); });
  }
  for (const auto& [id, programming] : old) {
    const auto event = before.find(id);
    const auto now = event == before.end() ? byName.end() : byName.find(event->second.description);
    if (now == byName.end()) {
      runner_->Cancel(id);
      if (event != before.end()) PutAsideProgramming(event->second, programming, actor);
      continue;
    }
    programming_.Set(now->second, programming);
    committer_.Add([to = now->second, kept = programming](ProjectStore& store) {
      ProgrammingTable::Write(store, to, kept);
    });
  }
}

void Controller::PutAsideProgramming(const EventElement& event, const Programming& programming,
                                     const std::string& actor) {
  JournalRow row = NewRow("change", "programming");
  row.event = event.eventid;
  row.description = event.description;
  row.actor = actor;
  row.before = ProgrammingText(programming);
  row.text = "put aside: the new schedule has no event of that name";
  Log::Warning("what " + EventName(event.eventid, event.description) + " did is " + row.text);
  committer_.Add(
      [deleted = DeletedEvent{event.eventid, MakeEventElement(event)->ToString(), row.before}](
          ProjectStore& store) { DeletedEvents::Write(store, deleted); });
  Record(std::move(row));
}

void Controller::BringBackProgramming(const std::vector<DeletedEvent>& kept,
                                      const std::string& actor) {
  for (const DeletedEvent& deleted : kept) {
    const EventElement* event = desk_.KnownEvent(deleted.event);
    if (event == nullptr || programming_.All().count(deleted.event) != 0) continue;
    const auto document = ParseXml(deleted.xml, "the deleted event");
    if (document->GetRoot()->GetText("description") != event->description) continue;
    committer_.Add([id = deleted.event](ProjectStore& store) { DeletedEvents::Erase(store, id); });
    Programming programming = ReadProgrammingText(deleted.programming);
    if (programming.IsPlain()) continue;
    SetProgramming(deleted.event, std::move(programming), actor, [](const std::string&) {});
  }
}

void Controller::BackUpBeforeNextSave(const std::string& reason) {
  backupReason_ = reason;
  committer_.Add({}, [this] { backupReason_.clear(); });
}

void Controller::BackUpSchedule(const std::string& actor, Saved saved) {
  if (committer_.IsPending()) committer_.SaveNow();
  committer_.Add(
      [actor](ProjectStore& store) { store.BackUpState(kSchedulerName, "asked for by " + actor); });
  Finish(std::move(saved));
}

bool Controller::RestoreBackup(std::size_t number, const std::string& actor, Saved saved) {
  const auto backups = store_.Backups(kSchedulerName);
  if (number == 0 || number > backups.size()) return false;
  const std::string xml = backups[number - 1].xml;
  const auto document = ParseXml(xml, "backup " + std::to_string(number));
  EventsOf(*document->GetRoot());
  TakeSchedule(xml, "replaced by backup " + std::to_string(number), actor, std::move(saved));
  return true;
}

}  // namespace controller
