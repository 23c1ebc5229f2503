#include <algorithm>
#include <ctime>
#include <utility>

#include "controller/Clock.h"
#include "controller/FirstSchedule.h"
#include "controller/LocalTimeText.h"
#include "controller/Log.h"
#include "controller/Printable.h"
#include "controller/ProjectPath.h"
#include "controller/ProjectVariables.h"
#include "controller/ScheduleReview.h"
#include "controller/ScheduleSummary.h"
#include "controller/ServiceNotify.h"
#include "controller/TimeZone.h"
#include "controller/firing/DayDraw.h"
#include "controller/json/ObjectReader.h"
#include "controller/live/Controller.h"

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

/// None where the text cannot be read.
std::vector<Action> ActionsOf(const std::string& programming) {
  try {
    return ReadProgrammingText(programming).actions;
  } catch (const Failure&) {
    return {};
  }
}

/// How many of the event's actions a firing began. By hand it may be those of one trigger only; the
/// row says which.
std::size_t BegunActions(const JournalRow& fired, const std::vector<Action>& actions) {
  if (fired.reason != "by-hand") return actions.size();
  return static_cast<std::size_t>(
      std::count_if(actions.begin(), actions.end(), [&fired](const Action& action) {
        return fired.text.find(TriggerName(action.on)) != std::string::npos;
      }));
}

std::unique_ptr<ScenarioRecorder> MakeRecorder(const ServeOptions& options) {
  if (!options.record) return nullptr;
  auto recorder = std::make_unique<ScenarioRecorder>(*options.record, options.transcript);
  Log::Info("recording to " + Quoted(options.record->string()));
  return recorder;
}

constexpr const char* kAccountedUntil = "accounted_until";
constexpr long kSecondsPerDay = 86400;
constexpr std::size_t kInterruptedRows = 1000;

}  // namespace

Controller::Controller(ServeOptions options)
    : options_(std::move(options)),
      base_(MakeEventBase()),
      signals_(base_.get(), [this](int signal) { OnSignal(signal); }),
      loader_(LoadDriver(options_.agent)),
      lock_(PreparedProject(options_.project), "serve"),
      store_(options_.project, ProjectStore::Use::kKeep),
      queue_(base_.get()),
      projectId_(store_.ProjectId()),
      recorder_(MakeRecorder(options_)),
      seed_(projectId_),
      host_(base_.get(), seed_, *this),
      committer_(
          base_.get(), store_, kSchedulerName, [this] { return scheduler_->PersistText(); },
          [this](const std::string& why) { OnTrouble(why); }),
      journal_(store_),
      programming_(store_),
      desk_(*this),
      runner_(new ActionRunner(base_.get(), *this)),
      clockGuard_(ClockReading::Now()),
      clockWatch_(base_.get(), [this] { LookAtClock(); }),
      clockWait_(MakeLoopEvent(base_.get(), -1, 0, OnClockWait, this)),
      name_(store_.Setting("name").value_or("")),
      awayUntil_(ReadDay(store_.Setting("away_until").value_or(""))) {
  Log::Info("project " + Quoted(options_.project.string()) + (store_.IsNew() ? ", new" : ""));
  committer_.SetStamp([this](ProjectStore& store) { WriteStamp(store); });
  if (recorder_ != nullptr) host_.SetRecorder(*recorder_);
  SetPlace();
  zone_ = TimeZoneText();
  Log::Info("time zone " + zone_);
  if (const std::string unknown = UnknownTimeZone(); !unknown.empty()) {
    Log::Warning("TZ is " + Quoted(unknown) +
                 ", which this system does not know, so the times are those of UTC; give a name "
                 "such as Europe/Berlin");
  }
  Log::Info("agent " + Quoted(loader_->Path()));
  if (ClockIsSane()) Begin();
}

bool Controller::ClockIsSane() {
  if (options_.trustClock) return true;
  const std::time_t now = std::time(nullptr);
  const std::time_t newest = Journal::Newest(store_).value_or(0);
  if (now >= BuildTime() && now >= newest) return true;
  const std::string problem =
      now < BuildTime()
          ? "earlier than " + LocalTimeText(BuildTime()) + ", when this program was built"
          : "earlier than " + LocalTimeText(newest) + ", when the journal was last written";
  const std::string text = "the clock says " + LocalTimeText(now) + ", which is " + problem +
                           "; nothing fires until it is set. If it is right, start with "
                           "--trust-clock";
  if (std::exchange(status_, text) != text) ServiceNotify::Status(text);
  return false;
}

void Controller::OnClockWait(int, short, void* argument) {
  auto& self = *static_cast<Controller*>(argument);
  Guarded(self.base_.get(), [&self] {
    const bool told = !self.status_.empty();
    if (self.ClockIsSane()) {
      self.Begin();
      ServiceNotify::Ready(self.status_);
      return;
    }
    if (!std::exchange(self.clockWaitTold_, told)) Log::Error(self.status_);
    const timeval second = Milliseconds(1000);
    event_add(self.clockWait_.get(), &second);
  });
}

void Controller::Begin() {
  clockGuard_.Look(ClockReading::Now());
  startedAt_ = std::time(nullptr);
  TellInterrupted();
  Record(NewRow("controller", "started"));
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
  const std::time_t now = std::time(nullptr);
  if (!stored) {
    LoadBook(now);
    CreateScheduler(std::nullopt, now, "down");
    if (!options_.empty) AddFirstSchedule();
    // Now and not when the loop runs: from here on the project is no longer a new one.
    committer_.SaveNow();
    return;
  }
  try {
    const auto document = ParseXml(stored->xml, "the saved schedule");
    EventsOf(*document->GetRoot());
  } catch (const Failure& failure) {
    throw Failure(Unreadable(Quoted(options_.project.string()), failure.what(),
                             store_.Backups(kSchedulerName).size()));
  }
  const std::string accounted = store_.Setting(kAccountedUntil).value_or("");
  const std::time_t from = accounted.empty() ? now : std::strtol(accounted.c_str(), nullptr, 10);
  const std::time_t earliest = now - Journal::kKeptDays * kSecondsPerDay;
  LoadBook(std::clamp(from, earliest, now));
  CreateScheduler(stored->xml, std::clamp(from, earliest, now), "down");
  TellDropped(stored->xml);
}

void Controller::CreateScheduler(const std::optional<std::string>& persisted, std::time_t from,
                                 const std::string& cause) {
  const ClockScope sameMoment(std::time(nullptr));
  const std::time_t now = std::time(nullptr);
  std::optional<DayDraws> draws;
  if (persisted) draws = DrawDays(*loader_, place_.place, *persisted, from, now, projectId_);
  scheduler_ = std::make_unique<DriverInstance>(*loader_, host_, recorder_.get());
  seed_.Seed();
  scheduler_->Initialize(kSchedulerDevice, persisted);
  desk_.Begin(from, now, cause, draws);
  FillReasons();
}

void Controller::LoadBook(std::time_t from) {
  const DayFields first = DaysAfter(LocalDay(std::min(from, std::time(nullptr))), -1);
  if (scheduler_ == nullptr) return desk_.Book().Load(store_, first);
  // What waits to be saved is in the book only.
  if (committer_.IsPending() && !committer_.SaveNow()) return;
  try {
    desk_.Book().Load(store_, first);
  } catch (const Failure& failure) {
    Log::Warning(std::string("what became of the events of earlier days is not known: ") +
                 failure.what());
  }
}

void Controller::FillReasons() {
  try {
    ReadReasons();
  } catch (const Failure& failure) {
    // They are only shown; a disk that does not answer now must not keep the scheduler from going
    // on.
    Log::Warning(std::string("why some of today's events did not fire is not known: ") +
                 failure.what());
  }
}

void Controller::ReadReasons() {
  JournalQuery query;
  query.kinds = {"fired", "held", "missed"};
  query.date = desk_.Plan().Date();
  query.limit = static_cast<std::size_t>(Journal::kKeptRows);
  for (const JournalRow& row : Journal::Read(store_, query)) {
    PlannedOccurrence* occurrence = desk_.Plan().Find(row.event);
    if (occurrence == nullptr || occurrence->journalRow != 0) continue;
    if (row.kind != StateName(occurrence->state) || row.reason == "by-hand") continue;
    occurrence->reason = row.reason;
    occurrence->journalRow = row.id;
  }
}

void Controller::TellInterrupted() {
  JournalQuery query;
  query.kinds = {"controller", "fired", "action", "change"};
  query.limit = kInterruptedRows;
  std::map<std::pair<unsigned long, std::time_t>, std::size_t> ended;
  // What events did at the time of the row that is looked at, where that was changed later.
  std::map<unsigned long, std::vector<Action>> earlier;
  for (const JournalRow& row : Journal::Read(store_, query)) {
    if (row.kind == "controller") return;  // that is where the last run began, or ended in order
    const std::pair key(row.event, row.planned.value_or(0));
    if (row.kind == "action") {
      ++ended[key];
    } else if (row.kind == "change") {
      if (row.reason == "programming" && !row.before.empty()) {
        earlier[row.event] = ActionsOf(row.before);
      }
    } else {
      const auto changed = earlier.find(row.event);
      const std::size_t begun = BegunActions(
          row, changed == earlier.end() ? programming_.Of(row.event).actions : changed->second);
      // By hand it may have been worked twice in a second: each firing has actions of its own.
      std::size_t& done = ended[key];
      if (done < begun) TellInterrupted(row);
      done -= std::min(done, begun);
    }
  }
}

void Controller::TellInterrupted(const JournalRow& fired) {
  JournalRow unknown = NewRow("action", "");
  unknown.event = fired.event;
  unknown.description = fired.description;
  unknown.date = fired.date;
  unknown.planned = fired.planned;
  unknown.outcome = "unknown";
  unknown.text = "the controller ended before all of its actions did";
  Log::Warning(EventName(fired.event, fired.description) + ": " + unknown.text);
  Record(std::move(unknown));
}

void Controller::WriteStamp(ProjectStore& store) {
  if (scheduler_ == nullptr) return;
  if (!backupReason_.empty()) store.BackUpState(kSchedulerName, backupReason_);
  Journal::Bound(store);
  store.SaveSettings({{kAccountedUntil, std::to_string(desk_.AccountedUntil())}});
}

void Controller::DestroyScheduler() {
  const IDriver* driver = &scheduler_->Driver();
  scheduler_.reset();
  host_.Forget(driver);
}

void Controller::AddFirstSchedule() {
  for (const EventElement& event : FirstSchedule(time(nullptr))) {
    AddEvent(event, nullptr, kFirstStart, [](const std::string&) {});
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
