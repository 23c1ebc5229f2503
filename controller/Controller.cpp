#include "controller/Controller.h"

#include <csignal>
#include <ctime>
#include <utility>

#include "controller/Clock.h"
#include "controller/Log.h"
#include "controller/Printable.h"
#include "controller/ProjectPath.h"
#include "controller/ProjectVariables.h"
#include "controller/ScheduleSummary.h"
#include "controller/ServiceNotify.h"
#include "controller/TimeZone.h"

namespace controller {

namespace {

/// Keeps the clock from going on between the end of one scheduler and the start of the next.
class StoppedClock {
 public:
  StoppedClock() { Clock::Freeze(std::time(nullptr)); }
  ~StoppedClock() { Clock::Release(); }
  StoppedClock(const StoppedClock&) = delete;
  StoppedClock& operator=(const StoppedClock&) = delete;
};

}  // namespace

const std::filesystem::path& PreparedProject(const std::filesystem::path& project) {
  MakeFolderFor(project);
  return project;
}

std::unique_ptr<DriverLoader> LoadDriver(const std::string& path) {
  std::string error;
  auto loader = DriverLoader::Open(path, &error);
  if (loader == nullptr) throw Failure(Printable(error));
  return loader;
}

Controller::~Controller() {
  if (scheduler_ != nullptr) DestroyScheduler();
}

ExitStatus Controller::Run() {
  ServiceNotify::Ready(status_);
  event_base_dispatch(base_.get());
  return Stop();
}

void Controller::OnEventFired(IDriver&, unsigned long eventId) {
  // Its name is the scheduler's to tell, which is in the middle of this call.
  queue_.Post([this, eventId] { TellFired(eventId); });
}

void Controller::OnBoundCall(IDriver&, unsigned long bindingId, const IBindMessage& message) {
  Log::Debug("binding " + std::to_string(bindingId) + ": " + Quoted(message.GetCommand()));
}

void Controller::OnUiData(IDriver&, const VxXML::INode& data) {
  Log::Debug("to user interfaces: " + Quoted(data.GetName()));
}

void Controller::OnStateInvalidated(IDriver&) { saver_.Invalidate(); }

void Controller::OnProgrammingDropped(IDriver&, unsigned long ownerId, int kind) {
  Log::Debug("programming of " + std::to_string(ownerId) + ", kind " + std::to_string(kind) +
             ", is to be dropped");
}

void Controller::TellFired(unsigned long eventId) {
  const auto event = scheduler_->Request("GET_EVENT", {{"EVENT_ID", std::to_string(eventId)}});
  Log::Info(EventName(eventId, event ? event->GetText("description") : "") + " fired");
}

void Controller::OnSignal(int signal) {
  if (signal == SIGHUP) return ReloadTimeZone();
  Log::Info(std::string("stopping, ") + (signal == SIGINT ? "interrupted" : "asked to"));
  event_base_loopbreak(base_.get());
}

void Controller::ReloadTimeZone() {
  ServiceNotify::Reloading();
  try {
    RestartScheduler();
    // As it was read then: by now the system's files name the new one.
    const std::string before = std::exchange(zone_, TimeZoneText());
    Log::Info(before == zone_ ? "time zone read again: " + zone_ + ", as before"
                              : "time zone was " + before + ", is now " + zone_);
    TellSchedule();
  } catch (const Failure& failure) {
    if (scheduler_ == nullptr) throw;
    Log::Error(std::string("the time zone was not taken over: ") + failure.what());
  }
  ServiceNotify::Ready(status_);
}

void Controller::RestartScheduler() {
  const StoppedClock sameMoment;
  // What is due at this moment belongs to the old zone; a scheduler that starts leaves it out.
  host_.ExpireTimers();
  std::optional<std::string> state = scheduler_->PersistText();
  if (state) state = ReadableState(*std::move(state));
  controller::ReloadTimeZone();
  try {
    SetPlace();
  } catch (const Failure& failure) {
    // The zone is another already, so the scheduler has to start anew, be it at the old place.
    Log::Warning("the place stays " + PlaceText(place_.place) + ": " + failure.what());
  }
  DestroyScheduler();
  CreateScheduler(state);
  saver_.Invalidate();
}

void Controller::OnTrouble(const std::string& why) {
  ServiceNotify::Status(why.empty() ? status_ : "the schedule cannot be saved: " + why);
}

ExitStatus Controller::Stop() {
  ServiceNotify::Stopping();
  queue_.Drain();
  const bool saved = scheduler_ != nullptr && saver_.SaveNow();
  if (scheduler_ != nullptr) DestroyScheduler();
  if (saved) {
    Log::Info("stopped, everything is saved");
  } else {
    Log::Error("stopped; what changed since the last save is lost");
  }
  return saved && !LoopFailed() ? ExitStatus::kOk : ExitStatus::kFailed;
}

}  // namespace controller
