#include <nlohmann/json.hpp>
#include <utility>

#include "controller/DeletedEvents.h"
#include "controller/LocalTimeText.h"
#include "controller/Log.h"
#include "controller/Printable.h"
#include "controller/ScheduleSummary.h"
#include "controller/api/EventJson.h"
#include "controller/live/Controller.h"
#include "controller/programming/ProgrammingJson.h"

namespace controller {

namespace {

/// The programming of an event, as `EmRemoveByOwner` counts owners.
constexpr int kOwnerIsEvent = 3;

CommandMessage::Params EventParams(const EventElement& event) {
  return {{"EVENT_XML", MakeEventElement(event)->ToString()}};
}

/// An event that XML cannot hold would be lost on its way.
bool CanBeSaid(const EventElement& event) {
  return bool(VxXML::CreateXmlDocument(MakeEventElement(event)->ToString()));
}

}  // namespace

void Controller::OnUiData(IDriver&, const VxXML::INode& data) {
  Log::Debug("to user interfaces: " + Quoted(data.GetName()));
  using Change = IHouseListener::Change;
  if (data.IsNamed("event_deleted")) {
    notices_.push_back({Change::kDeleted, data.GetUnsigned("eventid")});
    return;
  }
  const VxXML::INode* event = data.GetChild("event");
  if (event == nullptr) return;
  const bool added = data.IsNamed("event_added");
  if (!added && !data.IsNamed("event_modified")) return;
  notices_.push_back({added ? Change::kAdded : Change::kModified, event->GetUnsigned("eventid")});
}

void Controller::OnStateInvalidated(IDriver&) { committer_.Invalidate(); }

void Controller::OnProgrammingDropped(IDriver&, unsigned long ownerId, int kind) {
  if (kind == kOwnerIsEvent) dropped_.insert(ownerId);
}

std::string Controller::EventText(unsigned long eventId) const {
  const EventElement* event = desk_.KnownEvent(eventId);
  std::string text;
  if (event != nullptr) AppendEventJson(text, *event, {});
  return text;
}

std::string Controller::WholeEventText(unsigned long eventId) const {
  std::string text = EventText(eventId);
  const Programming& programming = programming_.Of(eventId);
  if (text.empty() || programming.IsPlain()) return text;
  text.back() = ',';
  return text + "\"programming\":" + ProgrammingText(programming) + '}';
}

void Controller::Command(const std::string& name, const CommandMessage::Params& params,
                         const ChangeFacts& facts, Saved saved) {
  const DayFields today = LocalDay(std::time(nullptr));
  if (backupDay_ != today) {
    backupDay_ = today;
    BackUpBeforeNextSave("before the changes of " + DayText(today));
  }
  notices_.clear();
  dropped_.clear();
  scheduler_->Command(name, params);
  for (const unsigned long event : std::exchange(dropped_, {})) {
    programming_.Drop(event);
    runner_->Cancel(event);
    committer_.Add([event](ProjectStore& store) { ProgrammingTable::Erase(store, event); });
  }
  for (const Notice& notice : std::exchange(notices_, {})) {
    if (notice.change == IHouseListener::Change::kAdded) TakeUpAdded(notice.event, facts);
    desk_.OnEventChanged(notice.event, std::time(nullptr));
    TellChange(notice, facts);
  }
  Finish(std::move(saved));
}

void Controller::TakeUpAdded(unsigned long eventId, const ChangeFacts& facts) {
  lastAdded_ = eventId;
  // The number is known only now; what the event does must be there before it can fire, and in the
  // same transaction.
  if (facts.programming == nullptr || facts.programming->IsPlain()) return;
  programming_.Set(eventId, *facts.programming);
  committer_.Add([eventId, kept = *facts.programming](ProjectStore& store) {
    ProgrammingTable::Write(store, eventId, kept);
  });
}

void Controller::TellChange(const Notice& notice, const ChangeFacts& facts) {
  JournalRow row =
      NewRow("change", facts.reason.empty() ? ChangeName(notice.change) : facts.reason);
  row.event = notice.event;
  row.actor = facts.actor;
  row.before = facts.before;
  // What an event does stays as it is where only the event is changed.
  const bool modified = row.reason == ChangeName(IHouseListener::Change::kModified);
  row.after = modified ? EventText(notice.event) : WholeEventText(notice.event);
  const EventElement* event = desk_.KnownEvent(notice.event);
  row.description = event == nullptr ? facts.description : event->description;
  Log::Write(row.actor == kFirstStart ? LogLevel::kDebug : LogLevel::kInfo,
             EventName(row.event, row.description) + ' ' + row.reason + " by " + Quoted(row.actor));
  Record(std::move(row), [this, notice] {
    if (listener_ != nullptr) listener_->OnEventChanged(notice.change, notice.event);
  });
}

void Controller::Finish(Saved saved) {
  if (!saved) return;
  const auto once = std::make_shared<Saved>(std::move(saved));
  const auto tell = [once](const std::string& trouble) {
    if (*once) std::exchange(*once, nullptr)(trouble);
  };
  // Never from inside the call that has asked for the change.
  committer_.Add(
      {}, [tell] { tell(""); },
      [this, tell](const std::string& why) { queue_.Post([tell, why] { tell(why); }); });
}

unsigned long Controller::AddEvent(const EventElement& event, const Programming* programming,
                                   const std::string& actor, Saved saved) {
  if (!CanBeSaid(event)) return 0;
  EventElement fresh = event;
  fresh.eventid = 0;
  Command("ADD_EVENT", EventParams(fresh), {"", actor, "", "", programming}, {});
  const unsigned long added = std::exchange(lastAdded_, 0);
  if (added == 0) return 0;
  Finish(std::move(saved));
  return added;
}

bool Controller::ReplaceEvent(const EventElement& event, const std::string& actor, Saved saved) {
  const EventElement* before = desk_.Catalog().Find(*scheduler_, event.eventid);
  if (before == nullptr || event.eventid == 0 || !CanBeSaid(event)) return false;
  Command("MODIFY_EVENT", EventParams(event),
          {"", actor, EventText(event.eventid), before->description, nullptr}, std::move(saved));
  return true;
}

bool Controller::DeleteEvent(unsigned long eventId, const std::string& actor, Saved saved) {
  const EventElement* before = desk_.Catalog().Find(*scheduler_, eventId);
  const auto element = scheduler_->Request("GET_EVENT", {{"EVENT_ID", std::to_string(eventId)}});
  if (before == nullptr || !element) return false;
  const DeletedEvent deleted{eventId, element->ToString(),
                             ProgrammingText(programming_.Of(eventId))};
  unsavedDeleted_[eventId] = deleted;
  committer_.Add([deleted](ProjectStore& store) { DeletedEvents::Write(store, deleted); },
                 [this, eventId] { unsavedDeleted_.erase(eventId); });
  Command("DELETE_EVENT", {{"EVENT_ID", std::to_string(eventId)}},
          {"", actor, WholeEventText(eventId), before->description, nullptr}, std::move(saved));
  return true;
}

std::optional<DeletedEvent> Controller::FindDeleted(unsigned long eventId) {
  if (committer_.IsPending()) committer_.SaveNow();
  // While the disk does not take it, it is only here.
  const auto unsaved = unsavedDeleted_.find(eventId);
  if (unsaved != unsavedDeleted_.end()) return unsaved->second;
  return DeletedEvents::Find(store_, eventId);
}

House::Restored Controller::RestoreEvent(unsigned long eventId, const std::string& actor,
                                         Saved saved) {
  const auto deleted = FindDeleted(eventId);
  if (!deleted) return Restored::kNothingToRestore;
  const std::string& xml = deleted->xml;
  const Programming programming = ReadProgrammingText(deleted->programming);
  if (desk_.Catalog().Find(*scheduler_, eventId) != nullptr) return Restored::kIdTaken;
  const auto document = ParseXml(xml, "the deleted event");
  const std::string description = document->GetRoot()->GetText("description");
  for (const auto& [id, event] : desk_.Catalog().All()) {
    if (event.description == description) return Restored::kDescriptionTaken;
  }
  unsavedDeleted_.erase(eventId);
  programming_.Set(eventId, programming);
  committer_.Add([eventId, programming](ProjectStore& store) {
    ProgrammingTable::Write(store, eventId, programming);
    DeletedEvents::Erase(store, eventId);
  });
  Command("MODIFY_EVENT", {{"EVENT_XML", xml}}, {"restored", actor, "", "", nullptr},
          std::move(saved));
  return Restored::kDone;
}

void Controller::SetProgramming(unsigned long eventId, Programming programming,
                                const std::string& actor, Saved saved) {
  JournalRow row = NewRow("change", "programming");
  const EventElement* event = desk_.Catalog().Find(*scheduler_, eventId);
  row.event = eventId;
  row.description = event == nullptr ? "" : event->description;
  row.actor = actor;
  row.before = ProgrammingText(programming_.Of(eventId));
  row.after = ProgrammingText(programming);
  programming_.Set(eventId, programming);
  committer_.Add([eventId, programming](ProjectStore& store) {
    ProgrammingTable::Write(store, eventId, programming);
  });
  Record(std::move(row), [this, eventId] {
    if (listener_ != nullptr) listener_->OnProgrammingChanged(eventId);
  });
  Finish(std::move(saved));
}

}  // namespace controller
