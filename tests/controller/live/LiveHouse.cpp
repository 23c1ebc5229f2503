#include "LiveHouse.h"

#include <chrono>
#include <event2/event.h>

#include "controller/LocalTimeText.h"
#include "controller/ProjectVariables.h"

namespace controller {

LiveHouse::LiveHouse() { Start(); }

LiveHouse::~LiveHouse() {
  if (controller_ != nullptr) controller_->SetListener(nullptr);
}

void LiveHouse::Start() {
  ServeOptions options;
  options.project = folder_ / "project.db";
  options.agent = VEXALINK_AGENT;
  options.place = Place{52.52, 13.405};
  options.empty = true;
  controller_ = std::make_unique<Controller>(options);
  controller_->SetListener(this);
}

void LiveHouse::Restart() {
  event_base_loopexit(controller_->Loop(), nullptr);
  controller_->Run([] {});
  controller_.reset();
  Start();
}

void LiveHouse::Crash() {
  controller_.reset();
  Start();
}

bool LiveHouse::Until(const std::function<bool()>& holds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!holds()) {
    if (std::chrono::steady_clock::now() > end) return false;
    event_base_loop(controller_->Loop(), EVLOOP_ONCE);
  }
  return true;
}

House::Saved LiveHouse::Saved() {
  saved = "not yet";
  return [this](const std::string& trouble) { saved = trouble; };
}

bool LiveHouse::WaitForSaved() {
  return Until([this] { return saved != "not yet"; }) && saved.empty();
}

std::vector<JournalRow> LiveHouse::Rows(const std::string& kind) {
  JournalQuery query;
  query.kinds = {kind};
  return controller_->Rows(query);
}

std::string LiveHouse::StoredXml() {
  ProjectStore store(folder_ / "project.db", ProjectStore::Use::kLook);
  return store.State(kSchedulerName).value_or(StoredState{}).xml;
}

EventElement LiveHouse::Daily(const std::string& description, int minutes) {
  EventElement event;
  event.description = description;
  event.offset_minutes = minutes;
  event.frequency = static_cast<int>(RepeatKind::kDaily);
  event.rate = 1;
  event.start = DaysAfter(LocalDay(std::time(nullptr)), -40);
  return event;
}

void LiveHouse::OnEventChanged(Change change, unsigned long eventId) {
  const char* const names[] = {"added", "modified", "deleted"};
  told.push_back(std::string(names[static_cast<int>(change)]) + ' ' + std::to_string(eventId));
}

void LiveHouse::OnProgrammingChanged(unsigned long eventId) {
  told.push_back("programming " + std::to_string(eventId));
}

void LiveHouse::OnJournalRow(const JournalRow& row) {
  told.push_back("row " + row.kind + (row.reason.empty() ? "" : " " + row.reason));
}

void LiveHouse::OnSaving(bool works, const std::string&) {
  told.emplace_back(works ? "saving works" : "saving fails");
}

}  // namespace controller
