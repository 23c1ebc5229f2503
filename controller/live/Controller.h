#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "controller/AssertLog.h"
#include "controller/Commands.h"
#include "controller/Committer.h"
#include "controller/DaySeed.h"
#include "controller/DeletedEvents.h"
#include "controller/DriverInstance.h"
#include "controller/DriverLoader.h"
#include "controller/Failure.h"
#include "controller/House.h"
#include "controller/HousePlace.h"
#include "controller/IHostObserver.h"
#include "controller/LiveDriverHost.h"
#include "controller/Loop.h"
#include "controller/ProjectLock.h"
#include "controller/ProjectStore.h"
#include "controller/Signals.h"
#include "controller/firing/FiringDesk.h"
#include "controller/live/ClockGuard.h"
#include "controller/live/ProgrammingTable.h"
#include "controller/record/ScenarioRecorder.h"

namespace controller {

/// Who has changed what a new project starts with.
constexpr const char* kFirstStart = "first start";

/// A running controller: one project, one scheduler, one loop. Everything it owns is given back,
/// and the schedule is saved, when it ends.
class Controller final : public House,
                         private IHostObserver,
                         private IFiringHouse,
                         private IActionHouse {
 public:
  /// Takes the project and, where the clock can be trusted, starts the scheduler with what is kept
  /// of it. Throws a `Failure`; nothing that could not be read has then been written over.
  explicit Controller(ServeOptions options);
  ~Controller() override;
  Controller(const Controller&) = delete;
  Controller& operator=(const Controller&) = delete;

  /// Runs until a signal ends it. kFailed where the schedule could not be saved at the end.
  /// `onStarted` is called first, from inside; the scheduler may still have to wait for the clock.
  ExitStatus Run(const std::function<void()>& onStarted);
  event_base* Loop() { return base_.get(); }

  // House: looking (ControllerLook.cpp).
  DriverInstance& Scheduler() override { return *scheduler_; }
  const DriverLoader& Loader() const override { return *loader_; }
  ProjectStore& Store() override { return store_; }
  const Programming& ProgrammingOf(unsigned long eventId) const override;
  DayFields TodayDate() const override { return desk_.Plan().Date(); }
  std::vector<PlannedOccurrence> Today() const override;
  std::vector<JournalRow> Rows(const JournalQuery& query) override;
  std::string Name() const override { return name_; }
  const HousePlace& WhereItIs() const override { return place_; }
  std::optional<DayFields> AwayUntil() const override;
  std::map<std::pair<unsigned long, unsigned long>, std::string> Variables() const override;
  const HouseCounters& Counters() const override;
  std::string WaitingFor() const override { return scheduler_ == nullptr ? status_ : ""; }
  std::string SavingTrouble() const override { return committer_.Trouble(); }
  std::vector<RunningAction> RunningActions() const override { return runner_->Running(); }
  std::time_t StartedAt() const override { return startedAt_; }
  void SetListener(IHouseListener* listener) override { listener_ = listener; }

  // House: changing events (ControllerEvents.cpp).
  unsigned long AddEvent(const EventElement& event, const Programming* programming,
                         const std::string& actor, Saved saved) override;
  bool ReplaceEvent(const EventElement& event, const std::string& actor, Saved saved) override;
  bool DeleteEvent(unsigned long eventId, const std::string& actor, Saved saved) override;
  Restored RestoreEvent(unsigned long eventId, const std::string& actor, Saved saved) override;
  void SetProgramming(unsigned long eventId, Programming programming, const std::string& actor,
                      Saved saved) override;

  // House: working by hand (ControllerFirings.cpp).
  void WorkByHand(unsigned long eventId, const std::vector<Trigger>& triggers,
                  const std::string& actor,
                  std::function<void(std::int64_t journalRow)> begun) override;
  void TryAction(const Action& action, unsigned long eventId, const std::string& actor,
                 std::function<void(const ActionOutcome&)> done) override;
  void SetHostVariable(unsigned long device, unsigned long variable, const std::string& value,
                       const std::string& actor) override;

  // House: changing the project (ControllerProject.cpp).
  void ChangeProject(const ProjectPatch& patch, const std::string& actor, Saved saved) override;
  Imported ImportSchedule(const std::string& xml, bool force, const std::string& actor,
                          Saved saved) override;
  void BackUpSchedule(const std::string& actor, Saved saved) override;
  bool RestoreBackup(std::size_t number, const std::string& actor, Saved saved) override;

 private:
  /// What the scheduler has told the user interfaces during one command.
  struct Notice {
    IHouseListener::Change change;
    unsigned long event;
  };
  /// What a command changed, for the journal.
  struct ChangeFacts {
    std::string reason;
    std::string actor;
    std::string before;
    /// Of an event that is gone afterwards.
    std::string description;
    /// What an added event does; null: nothing.
    const Programming* programming = nullptr;
  };

  // IHostObserver: inside the driver's calls, but for the ticks.
  void OnEventFired(IDriver& driver, unsigned long eventId) override;
  void OnBoundCall(IDriver& driver, unsigned long bindingId, const IBindMessage& message) override;
  void OnUiData(IDriver& driver, const VxXML::INode& data) override;
  void OnStateInvalidated(IDriver& driver) override;
  void OnProgrammingDropped(IDriver& driver, unsigned long ownerId, int kind) override;
  bool OnTickBegins(IDriver& driver) override;
  void OnTickEnded(IDriver& driver) override;
  void OnDriverLog(IDriver& driver, unsigned int level, const char* text) override;

  // IFiringHouse.
  std::optional<DayFields> AwayBefore() const override { return awayUntil_; }
  long long OnDecision(const FiringDecision& decision) override;
  void OnPlanChanged() override;

  // IActionHouse.
  bool TestCondition(const Condition& condition) override;
  void SetVariable(const VariableAction& action) override;
  /// False where it is not one to be set.
  bool SetVariable(unsigned long device, unsigned long variable, const std::string& value);
  void OnActionEnded(const FiringFacts& facts, const Action& action,
                     const ActionOutcome& outcome) override;

  // Starting and stopping (ControllerStart.cpp, Controller.cpp).
  bool ClockIsSane();
  void Begin();
  static void OnClockWait(int, short, void* self);
  void SetPlace();
  void LoadSchedule();
  void CreateScheduler(const std::optional<std::string>& persisted, std::time_t from,
                       const std::string& cause);
  void DestroyScheduler();
  void AddFirstSchedule();
  void TellDropped(const std::string& persisted);
  void TellSchedule();
  void TellInterrupted();
  void TellInterrupted(const JournalRow& fired);
  void FillReasons();
  void ReadReasons();
  /// Takes up what became of whatever may be due after `from`, or by the clock as it is now.
  void LoadBook(std::time_t from);
  void OnSignal(int signal);
  void ReloadTimeZone();
  void LookAtZoneFile();
  void LookAtClock();
  void RestartScheduler(const std::string& cause, const std::function<void()>& meanwhile);
  /// `moves` are the events that have other numbers in `state`.
  void ReplaceScheduler(const std::optional<std::string>& state, const std::string& cause,
                        const EventMoves& moves = {});
  void OnTrouble(const std::string& why);
  void WriteStamp(ProjectStore& store);
  void OnNewDay();
  ExitStatus Stop();

  // Recording (ControllerFirings.cpp, ControllerEvents.cpp).
  JournalRow NewRow(const std::string& kind, const std::string& reason);
  JournalRow ActionRow(const FiringFacts& facts, const Action& action, const ActionOutcome& outcome,
                       const std::string& reason);
  void Record(JournalRow row, Committer::OnSaved more = {});
  void Act(const FiringDecision& decision, std::int64_t row);
  void RunActions(const FiringFacts& facts, const std::vector<Trigger>& triggers);
  void CountFiring(const FiringDecision& decision);
  void Command(const std::string& name, const CommandMessage::Params& params,
               const ChangeFacts& facts, Saved saved);
  void TakeUpAdded(unsigned long eventId, const ChangeFacts& facts);
  void TellChange(const Notice& notice, const ChangeFacts& facts);
  void Finish(Saved saved);
  std::optional<DeletedEvent> FindDeleted(unsigned long eventId);
  void TakeSchedule(const std::string& state, const std::string& reason, const std::string& actor,
                    Saved saved);
  /// What is on the disk is put aside in the transaction that is next.
  void BackUpBeforeNextSave(const std::string& reason);
  void MoveProgramming(const std::map<unsigned long, EventElement>& before,
                       const std::string& actor);
  void PutAsideProgramming(const EventElement& event, const Programming& programming,
                           const std::string& actor);
  void BringBackProgramming(const std::vector<DeletedEvent>& kept, const std::string& actor);
  std::string EventText(unsigned long eventId) const;
  /// With what it does, where it does anything.
  std::string WholeEventText(unsigned long eventId) const;

  ServeOptions options_;
  EventBase base_;
  Signals signals_;
  std::unique_ptr<DriverLoader> loader_;
  ProjectLock lock_;
  ProjectStore store_;
  AssertLog asserts_;
  LoopQueue queue_;
  std::string projectId_;
  /// Null: nothing is recorded.
  std::unique_ptr<ScenarioRecorder> recorder_;
  DaySeed seed_;
  LiveDriverHost host_;
  std::unique_ptr<DriverInstance> scheduler_;
  Committer committer_;
  Journal journal_;
  ProgrammingTable programming_;
  FiringDesk desk_;
  std::unique_ptr<ActionRunner> runner_;
  ClockGuard clockGuard_;
  ClockWatch clockWatch_;
  LoopEvent clockWait_;
  HousePlace place_;
  std::string zone_;
  std::string zoneFile_;
  std::string status_;
  std::string name_;
  std::optional<DayFields> awayUntil_;
  std::vector<Notice> notices_;
  std::set<unsigned long> dropped_;
  std::map<unsigned long, DeletedEvent> unsavedDeleted_;
  unsigned long lastAdded_ = 0;
  std::string backupReason_;
  DayFields backupDay_;
  bool planTold_ = true;
  bool clockWaitTold_ = false;
  std::time_t startedAt_ = 0;
  std::time_t lastTick_ = 0;
  mutable HouseCounters counters_;
  IHouseListener* listener_ = nullptr;
};

}  // namespace controller
