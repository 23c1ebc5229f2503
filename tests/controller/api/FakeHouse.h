#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "TempFolder.h"
#include "controller/DriverInstance.h"
#include "controller/House.h"
#include "controller/ScratchHost.h"

/// A house without a loop: a real scheduler and a real project file, and all else in memory. What
/// the controller would do later, `Settle` does.
class FakeHouse final : public controller::House {
 public:
  explicit FakeHouse(const controller::Place& where = {52.5, 13.3667});

  /// Saves, and whatever else waits; why saving fails is `savingTrouble`.
  void Settle();

  // What later calls answer, and what earlier ones have asked.
  std::string savingTrouble;
  bool takesEvents = true;
  Restored restored = Restored::kDone;
  controller::HousePlace place;
  controller::DayFields todayDate{2026, 11, 20};
  std::vector<controller::PlannedOccurrence> today;
  std::vector<controller::JournalRow> rows;
  std::vector<controller::RunningAction> running;
  std::optional<controller::JournalQuery> asked;
  std::vector<controller::Trigger> worked;
  std::vector<std::string> actors;
  std::optional<controller::ProjectPatch> patched;
  controller::HouseCounters counters;
  std::map<unsigned long, controller::Programming> programming;

  controller::DriverInstance& Scheduler() override { return *scheduler_; }
  const controller::DriverLoader& Loader() const override { return *loader_; }
  controller::ProjectStore& Store() override { return store_; }
  const controller::Programming& ProgrammingOf(unsigned long eventId) const override;
  controller::DayFields TodayDate() const override { return todayDate; }
  std::vector<controller::PlannedOccurrence> Today() const override { return today; }
  std::vector<controller::JournalRow> Rows(const controller::JournalQuery& query) override;
  std::string Name() const override { return name_; }
  const controller::HousePlace& WhereItIs() const override { return place; }
  std::optional<controller::DayFields> AwayUntil() const override { return away_; }
  std::map<std::pair<unsigned long, unsigned long>, std::string> Variables() const override {
    return variables_;
  }
  const controller::HouseCounters& Counters() const override { return counters; }
  std::string WaitingFor() const override { return ""; }
  std::string SavingTrouble() const override { return savingTrouble; }
  std::vector<controller::RunningAction> RunningActions() const override { return running; }
  std::time_t StartedAt() const override { return 1790000000; }

  unsigned long AddEvent(const controller::EventElement& event,
                         const controller::Programming* programming, const std::string& actor,
                         Saved saved) override;
  bool ReplaceEvent(const controller::EventElement& event, const std::string& actor,
                    Saved saved) override;
  bool DeleteEvent(unsigned long eventId, const std::string& actor, Saved saved) override;
  Restored RestoreEvent(unsigned long eventId, const std::string& actor, Saved saved) override;
  void SetProgramming(unsigned long eventId, controller::Programming programming,
                      const std::string& actor, Saved saved) override;
  void WorkByHand(unsigned long eventId, const std::vector<controller::Trigger>& triggers,
                  const std::string& actor, std::function<void(std::int64_t)> begun) override;
  void TryAction(const controller::Action& action, unsigned long eventId, const std::string& actor,
                 std::function<void(const controller::ActionOutcome&)> done) override;
  void ChangeProject(const controller::ProjectPatch& patch, const std::string& actor,
                     Saved saved) override;
  Imported ImportSchedule(const std::string& xml, bool force, const std::string& actor,
                          Saved saved) override;
  void BackUpSchedule(const std::string& actor, Saved saved) override;
  bool RestoreBackup(std::size_t number, const std::string& actor, Saved saved) override;
  void SetHostVariable(unsigned long device, unsigned long variable,
                       const std::string& value, const std::string& actor) override;
  void SetListener(controller::IHouseListener*) override {}

 private:
  void Save(const std::string& actor, Saved saved);
  void Start(const std::optional<std::string>& persisted);

  TempFolder folder_;
  std::unique_ptr<controller::DriverLoader> loader_;
  controller::ProjectStore store_;
  std::unique_ptr<controller::ScratchHost> host_;
  std::unique_ptr<controller::DriverInstance> scheduler_;
  std::deque<std::function<void()>> waiting_;
  controller::Programming plain_;
  std::map<unsigned long, controller::EventElement> deleted_;
  std::string name_ = "Home";
  std::optional<controller::DayFields> away_;
  std::map<std::pair<unsigned long, unsigned long>, std::string> variables_;
};
