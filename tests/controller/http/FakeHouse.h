#pragma once

#include <stdexcept>

#include "controller/House.h"

/// A house of which only what is counted can be seen; anything else fails the test.
class FakeHouse final : public controller::House {
 public:
  controller::HouseCounters counters;
  std::vector<controller::PlannedOccurrence> today;
  std::string trouble;
  std::string waiting;

  std::vector<controller::PlannedOccurrence> Today() const override { return today; }
  const controller::HouseCounters& Counters() const override { return counters; }
  std::string WaitingFor() const override { return waiting; }
  std::string SavingTrouble() const override { return trouble; }
  std::time_t StartedAt() const override { return 1795000000; }

  controller::DriverInstance& Scheduler() override { No(); }
  const controller::DriverLoader& Loader() const override { No(); }
  controller::ProjectStore& Store() override { No(); }
  const controller::Programming& ProgrammingOf(unsigned long) const override { No(); }
  controller::DayFields TodayDate() const override { No(); }
  std::vector<controller::JournalRow> Rows(const controller::JournalQuery&) override { No(); }
  std::string Name() const override { No(); }
  const controller::HousePlace& WhereItIs() const override { No(); }
  std::optional<controller::DayFields> AwayUntil() const override { No(); }
  std::map<std::pair<unsigned long, unsigned long>, std::string> Variables() const override {
    No();
  }
  std::vector<controller::RunningAction> RunningActions() const override { No(); }
  unsigned long AddEvent(const controller::EventElement&, const controller::Programming*,
                         const std::string&, Saved) override {
    No();
  }
  bool ReplaceEvent(const controller::EventElement&, const std::string&, Saved) override { No(); }
  bool DeleteEvent(unsigned long, const std::string&, Saved) override { No(); }
  Restored RestoreEvent(unsigned long, const std::string&, Saved) override { No(); }
  void SetProgramming(unsigned long, controller::Programming, const std::string&, Saved) override {
    No();
  }
  void WorkByHand(unsigned long, const std::vector<controller::Trigger>&, const std::string&,
                  std::function<void(std::int64_t)>) override {
    No();
  }
  void TryAction(const controller::Action&, unsigned long, const std::string&,
                 std::function<void(const controller::ActionOutcome&)>) override {
    No();
  }
  void ChangeProject(const controller::ProjectPatch&, const std::string&, Saved) override { No(); }
  Imported ImportSchedule(const std::string&, bool, const std::string&, Saved) override { No(); }
  void BackUpSchedule(const std::string&, Saved) override { No(); }
  bool RestoreBackup(std::size_t, const std::string&, Saved) override { No(); }
  void SetHostVariable(unsigned long, unsigned long, const std::string&, const std::string&) override { No(); }
  void SetListener(controller::IHouseListener*) override { No(); }

 private:
  [[noreturn]] static void No() { throw std::logic_error("the fake house has no such thing"); }
};
