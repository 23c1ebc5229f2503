#include "controller/live/Controller.h"

#include <csignal>
#include <cstdlib>
#include <ctime>
#include <sys/stat.h>
#include <utility>

#include "controller/Clock.h"
#include "controller/LocalTimeText.h"
#include "controller/Log.h"
#include "controller/Printable.h"
#include "controller/ProjectVariables.h"
#include "controller/ServiceNotify.h"
#include "controller/TimeZone.h"

namespace controller {

namespace {

/// What tells the file with the system's zone from another, or from what it was before; empty where
/// the zone does not come from it.
std::string ZoneFileMark() {
  struct stat file {};
  const char* given = std::getenv("TZ");
  if (given != nullptr || ::stat("/etc/localtime", &file) != 0) return "";
  return std::to_string(file.st_dev) + ' ' + std::to_string(file.st_ino) + ' ' +
         std::to_string(file.st_mtim.tv_sec) + ' ' + std::to_string(file.st_size);
}

std::string SecondsText(double seconds) {
  return std::to_string(static_cast<long>(seconds)) + " s";
}

}  // namespace

Controller::~Controller() {
  listener_ = nullptr;
  runner_.reset();
  if (scheduler_ != nullptr) DestroyScheduler();
}

ExitStatus Controller::Run(const std::function<void()>& onStarted) {
  onStarted();
  if (scheduler_ == nullptr) OnClockWait(-1, 0, this);
  ServiceNotify::Ready(status_);
  event_base_dispatch(base_.get());
  return Stop();
}

void Controller::OnSignal(int signal) {
  if (signal == SIGHUP) return ReloadTimeZone();
  Log::Info(std::string("stopping, ") + (signal == SIGINT ? "interrupted" : "asked to"));
  event_base_loopbreak(base_.get());
}

bool Controller::OnTickBegins(IDriver&) {
  lastTick_ = std::time(nullptr);
  if (Clock::IsFrozen()) return true;  // the scheduler is being restarted
  const double second = ClockReading::Now().realtime;
  const double late = second - static_cast<double>(static_cast<std::time_t>(second));
  counters_.tickLateness = late;
  counters_.worstTickLateness = std::max(counters_.worstTickLateness, late);
  if (++counters_.ticks % 60 == 0) LookAtZoneFile();
  const DriverInstance* before = scheduler_.get();
  LookAtClock();
  return scheduler_.get() == before;
}

void Controller::LookAtClock() {
  const auto jump = clockGuard_.Look(ClockReading::Now());
  if (!jump || scheduler_ == nullptr) return;
  ++counters_.clockJumps;
  const std::string text =
      jump->slept ? "the machine was asleep for " + SecondsText(jump->seconds)
                  : "the clock was set " + std::string(jump->seconds < 0 ? "back" : "forward") +
                        " by " + SecondsText(jump->seconds < 0 ? -jump->seconds : jump->seconds);
  JournalRow row = NewRow("clock", jump->slept ? "slept" : "jump");
  row.text = text;
  Record(std::move(row));
  Log::Warning(text);
  if (jump->IsLarge()) RestartScheduler("clock-jump", [] {});
}

void Controller::LookAtZoneFile() {
  const std::string mark = ZoneFileMark();
  if (mark == zoneFile_) return;
  // From the loop and not from inside a tick: the scheduler is to be another afterwards.
  queue_.Post([this, mark] {
    zoneFile_ = mark;
    ReloadTimeZone();
  });
}

void Controller::ReloadTimeZone() {
  zoneFile_ = ZoneFileMark();
  if (scheduler_ == nullptr) return controller::ReloadTimeZone();
  ServiceNotify::Reloading();
  try {
    RestartScheduler("down", [this] {
      controller::ReloadTimeZone();
      try {
        SetPlace();
      } catch (const Failure& failure) {
        // The zone is another already, so the scheduler has to start anew, be it at the old place.
        Log::Warning("the place stays " + PlaceText(place_.place) + ": " + failure.what());
      }
    });
    // As it was read then: by now the system's files name the new one.
    const std::string before = std::exchange(zone_, TimeZoneText());
    if (before != zone_) {
      ++counters_.zoneChanges;
      JournalRow row = NewRow("clock", "zone");
      row.text = "time zone was " + before + ", is now " + zone_;
      Record(std::move(row), [this] {
        if (listener_ != nullptr) listener_->OnProjectChanged();
      });
    }
    Log::Info(before == zone_ ? "time zone read again: " + zone_ + ", as before"
                              : "time zone was " + before + ", is now " + zone_);
    TellSchedule();
  } catch (const Failure& failure) {
    if (scheduler_ == nullptr) throw;
    Log::Error(std::string("the time zone was not taken over: ") + failure.what());
  }
  ServiceNotify::Ready(status_);
}

void Controller::RestartScheduler(const std::string& cause,
                                  const std::function<void()>& meanwhile) {
  // The clock does not go on between the end of one scheduler and the start of the next.
  const ClockScope sameMoment(std::time(nullptr));
  // What is due at this moment belongs to what was before; a scheduler that starts leaves it out.
  // After a jump of the clock it is no longer the moment.
  if (cause != "clock-jump") host_.ExpireTimers();
  std::optional<std::string> state = scheduler_->PersistText();
  if (state) state = ReadableState(*std::move(state));
  meanwhile();
  ReplaceScheduler(state, cause);
}

void Controller::ReplaceScheduler(const std::optional<std::string>& state, const std::string& cause,
                                  const EventMoves& moves) {
  const std::time_t from = desk_.AccountedUntil();
  // While there is a scheduler still: for this, what waits may have to be saved.
  LoadBook(from);
  if (!moves.empty()) {
    desk_.Book().Move(moves);
    committer_.Add([moves](ProjectStore& store) { MoveDecisions(store, moves); });
  }
  DestroyScheduler();
  CreateScheduler(state, from, cause);
  committer_.Invalidate();
}

void Controller::OnTrouble(const std::string& why) {
  ServiceNotify::Status(why.empty() ? status_ : "the schedule cannot be saved: " + why);
  if (listener_ != nullptr) listener_->OnSaving(why.empty(), why);
}

ExitStatus Controller::Stop() {
  ServiceNotify::Stopping();
  queue_.Drain();
  bool saved = true;
  if (scheduler_ != nullptr) {
    // Ended here, so that what was under way is in the journal.
    runner_.reset();
    Record(NewRow("controller", "stopped"));
    // What fails once, as a lock that somebody else holds for a moment, is not the end of it.
    saved = committer_.SaveNow() || committer_.SaveNow();
    DestroyScheduler();
  }
  if (saved) {
    Log::Info("stopped, everything is saved");
  } else {
    Log::Error("stopped; what changed since the last save is lost");
  }
  return saved && !LoopFailed() ? ExitStatus::kOk : ExitStatus::kFailed;
}

}  // namespace controller
