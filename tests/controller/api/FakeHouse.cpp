#include "FakeHouse.h"

#include <utility>

#include "controller/Failure.h"
#include "controller/ProjectVariables.h"

using namespace controller;

namespace {

std::unique_ptr<DriverLoader> LoadAgent() {
  std::string error;
  auto loader = DriverLoader::Open(VEXALINK_AGENT, &error);
  if (loader == nullptr) throw Failure(error);
  return loader;
}

}  // namespace

FakeHouse::FakeHouse(const Place& where)
    : place{where, "as given", false},
      loader_(LoadAgent()),
      store_(folder_ / "project.db", ProjectStore::Use::kKeep) {
  Start(std::nullopt);
  store_.SaveState(kSchedulerName, *scheduler_->PersistText());
}

void FakeHouse::Start(const std::optional<std::string>& persisted) {
  scheduler_.reset();
  host_ = std::make_unique<ScratchHost>(place.place);
  scheduler_ = std::make_unique<DriverInstance>(*loader_, *host_);
  scheduler_->Initialize(kSchedulerDevice, persisted);
}

void FakeHouse::Settle() {
  while (!waiting_.empty()) {
    const auto work = std::move(waiting_.front());
    waiting_.pop_front();
    work();
  }
}

void FakeHouse::Save(const std::string& actor, Saved saved) {
  actors.push_back(actor);
  waiting_.emplace_back([this, saved = std::move(saved)] {
    if (savingTrouble.empty()) store_.SaveState(kSchedulerName, *scheduler_->PersistText());
    saved(savingTrouble);
  });
}

const Programming& FakeHouse::ProgrammingOf(unsigned long eventId) const {
  const auto found = programming.find(eventId);
  return found == programming.end() ? plain_ : found->second;
}

std::vector<JournalRow> FakeHouse::Rows(const JournalQuery& query) {
  asked = query;
  std::vector<JournalRow> found = rows;
  if (found.size() > query.limit) found.resize(query.limit);
  return found;
}

unsigned long FakeHouse::AddEvent(const EventElement& event, const Programming* given,
                                  const std::string& actor, Saved saved) {
  if (!takesEvents) return 0;
  scheduler_->Command("ADD_EVENT", {{"EVENT_XML", MakeEventElement(event)->ToString()}});
  const auto all = scheduler_->Request("GET_ALL_EVENTS");
  unsigned long id = 0;
  for (const auto* node = all->GetFirstChild(); node != nullptr; node = node->GetNextSibling()) {
    if (node->GetText("description") == event.description) id = node->GetUnsigned("eventid");
  }
  if (given != nullptr) programming[id] = *given;
  Save(actor, std::move(saved));
  return id;
}

bool FakeHouse::ReplaceEvent(const EventElement& event, const std::string& actor, Saved saved) {
  if (!takesEvents) return false;
  scheduler_->Command("MODIFY_EVENT", {{"EVENT_XML", MakeEventElement(event)->ToString()}});
  Save(actor, std::move(saved));
  return true;
}

bool FakeHouse::DeleteEvent(unsigned long eventId, const std::string& actor, Saved saved) {
  const std::string id = std::to_string(eventId);
  const auto event = scheduler_->Request("GET_EVENT", {{"EVENT_ID", id}});
  if (!event) return false;
  deleted_[eventId] = ReadEventElement(*event);
  scheduler_->Command("DELETE_EVENT", {{"EVENT_ID", id}});
  Save(actor, std::move(saved));
  return true;
}

House::Restored FakeHouse::RestoreEvent(unsigned long eventId, const std::string& actor,
                                        Saved saved) {
  if (restored != Restored::kDone) return restored;
  const auto found = deleted_.find(eventId);
  if (found == deleted_.end()) return Restored::kNothingToRestore;
  ReplaceEvent(found->second, actor, std::move(saved));
  return Restored::kDone;
}

void FakeHouse::SetProgramming(unsigned long eventId, Programming given, const std::string& actor,
                               Saved saved) {
  programming[eventId] = std::move(given);
  Save(actor, std::move(saved));
}

void FakeHouse::WorkByHand(unsigned long, const std::vector<Trigger>& triggers,
                           const std::string& actor, std::function<void(std::int64_t)> begun) {
  worked = triggers;
  actors.push_back(actor);
  waiting_.emplace_back([begun = std::move(begun)] { begun(812); });
}

void FakeHouse::TryAction(const Action&, unsigned long, const std::string& actor,
                          std::function<void(const ActionOutcome&)> done) {
  actors.push_back(actor);
  waiting_.emplace_back([done = std::move(done)] {
    done({ActionOutcome::Kind::kDone, "200 OK", "a\xFFz", 12});
  });
}

void FakeHouse::ChangeProject(const ProjectPatch& patch, const std::string& actor, Saved saved) {
  patched = patch;
  if (patch.name) name_ = *patch.name;
  if (patch.place) place.place = *patch.place;
  if (patch.awayUntil) away_ = *patch.awayUntil;
  Save(actor, std::move(saved));
}

House::Imported FakeHouse::ImportSchedule(const std::string& xml, bool force,
                                          const std::string& actor, Saved saved) {
  const auto document = ParseXml(xml, "the schedule");
  Imported imported{ReviewSchedule(*document->GetRoot(), *loader_, place.place), false};
  if (imported.review.Count(Finding::Kind::kDropped) > 0 && !force) return imported;
  imported.done = true;
  store_.BackUpState(kSchedulerName, "replaced by an import");
  Start(xml);
  Save(actor, std::move(saved));
  return imported;
}

void FakeHouse::BackUpSchedule(const std::string& actor, Saved saved) {
  store_.BackUpState(kSchedulerName, "put aside by hand");
  Save(actor, std::move(saved));
}

bool FakeHouse::RestoreBackup(std::size_t number, const std::string& actor, Saved saved) {
  const auto backups = store_.Backups(kSchedulerName);
  if (number < 1 || number > backups.size()) return false;
  Start(backups[number - 1].xml);
  Save(actor, std::move(saved));
  return true;
}

void FakeHouse::SetHostVariable(unsigned long device, unsigned long variable,
                                const std::string& value, const std::string&) {
  variables_[{device, variable}] = value;
}
