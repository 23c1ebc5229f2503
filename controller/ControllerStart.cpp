#include <ctime>
#include <utility>

#include "controller/Controller.h"
#include "controller/FirstSchedule.h"
#include "controller/Log.h"
#include "controller/Printable.h"
#include "controller/ProjectVariables.h"
#include "controller/ScheduleReview.h"
#include "controller/ScheduleSummary.h"
#include "controller/TimeZone.h"

namespace controller {

namespace {

std::string Unreadable(const std::string& project, const std::string& why, std::size_t backups) {
  std::string text = "project " + project + ": " + why +
                     ". Nothing was changed. \"vexalink export\" writes it to a file as it stands; "
                     "put right, \"vexalink import\" takes it back";
  if (backups > 0) {
    text += "; " + CountText(backups, "earlier schedule") +
            " can be had with \"vexalink export --backup 1\" (the newest) and so on";
  }
  return text;
}

}  // namespace

Controller::Controller(ServeOptions options)
    : options_(std::move(options)),
      base_(MakeEventBase()),
      signals_(base_.get(), [this](int signal) { OnSignal(signal); }),
      loader_(LoadDriver(options_.agent)),
      lock_(PreparedProject(options_.project), "serve"),
      store_(options_.project, ProjectStore::Use::kKeep),
      queue_(base_.get()),
      seed_(store_.ProjectId()),
      host_(base_.get(), seed_, *this),
      saver_(
          base_.get(), store_, kSchedulerName, [this] { return scheduler_->PersistText(); },
          [this](const std::string& why) { OnTrouble(why); }) {
  Log::Info("project " + Quoted(options_.project.string()) + (store_.IsNew() ? ", new" : ""));
  SetPlace();
  zone_ = TimeZoneText();
  Log::Info("time zone " + zone_);
  Log::Info("agent " + Quoted(loader_->Path()));
  LoadSchedule();
  TellSchedule();
}

void Controller::SetPlace() {
  place_ = FindHousePlace(store_, std::exchange(options_.place, std::nullopt));
  const std::string line = "place " + PlaceText(place_.place) + ": " + place_.origin;
  place_.guessed ? Log::Warning(line) : Log::Info(line);
  host_.SetVariable(kProjectDevice, kLatitudeVariable, DegreesText(place_.place.latitude));
  host_.SetVariable(kProjectDevice, kLongitudeVariable, DegreesText(place_.place.longitude));
}

void Controller::LoadSchedule() {
  const auto stored = store_.State(kSchedulerName);
  if (!stored) {
    CreateScheduler(std::nullopt);
    if (!options_.empty) AddFirstSchedule();
    // Now and not when the loop runs: from here on the project is no longer a new one.
    saver_.SaveNow();
    return;
  }
  try {
    const auto document = ParseXml(stored->xml, "the saved schedule");
    EventsOf(*document->GetRoot());
  } catch (const Failure& failure) {
    throw Failure(Unreadable(Quoted(options_.project.string()), failure.what(),
                             store_.Backups(kSchedulerName).size()));
  }
  CreateScheduler(stored->xml);
  TellDropped(stored->xml);
}

void Controller::CreateScheduler(const std::optional<std::string>& persisted) {
  scheduler_ = std::make_unique<DriverInstance>(*loader_, host_);
  seed_.Seed();
  scheduler_->Initialize(kSchedulerDevice, persisted);
}

void Controller::DestroyScheduler() {
  const IDriver* driver = &scheduler_->Driver();
  scheduler_.reset();
  host_.Forget(driver);
}

void Controller::AddFirstSchedule() {
  for (const EventElement& event : FirstSchedule(time(nullptr))) {
    scheduler_->Command("ADD_EVENT", {{"EVENT_XML", MakeEventElement(event)->ToString()}});
  }
  Log::Info("the project starts with a schedule to try things with; --empty starts one without");
}

void Controller::TellDropped(const std::string& persisted) {
  const auto document = ParseXml(persisted, "the saved schedule");
  const VxXML::INode* events = EventsOf(*document->GetRoot());
  if (events == nullptr) return;
  std::size_t dropped = 0;
  for (const ReviewedEvent& event : ReviewLoading(*events)) {
    if (!event.Has(Finding::Kind::kDropped)) continue;
    ++dropped;
    Log::Warning("not loaded: child " + std::to_string(event.position) +
                 " of the saved schedule, " + EventName(event.eventid, event.description) + ": " +
                 event.findings[0].text);
  }
  if (dropped == 0) return;
  // The next save will be without them. A start that ends in a crash must not push out older
  // copies.
  const auto backups = store_.Backups(kSchedulerName);
  if (backups.empty() || backups[0].xml != persisted) {
    store_.BackUpState(kSchedulerName, CountText(dropped, "event") + " not loaded");
  }
  Log::Warning(CountText(dropped, "event") +
               " not loaded; the schedule as it was is kept: \"vexalink export --backup 1\"");
}

void Controller::TellSchedule() {
  const ScheduleSummary summary = Summarise(*scheduler_);
  status_ = CountText(summary.events, "event") + " loaded; " + NextText(summary);
  Log::Info(CountText(summary.events, "event") + " loaded");
  Log::Info(NextText(summary));
}

}  // namespace controller
