// The disk fails, one call at a time: nothing is lost, it is told, and it goes on without a
// restart.

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>

#include "FaultyDisk.h"
#include "LiveHouse.h"
#include "controller/ProjectVariables.h"
#include "controller/live/ProgrammingTable.h"

namespace controller {
namespace {

using How = FaultyDisk::How;
using testing::Contains;
using testing::HasSubstr;

Programming Paused() {
  Programming programming;
  programming.pausedUntil = DayFields{2030, 1, 1};
  return programming;
}

/// What a house holds, to be compared with what it holds later.
struct Holdings {
  std::optional<std::string> schedule;
  std::map<unsigned long, std::string> programming;
  std::string name;

  static Holdings Of(Controller& house) {
    Holdings held;
    held.schedule = house.Scheduler().PersistText();
    for (unsigned long id = 1; id < 20; ++id) {
      if (!house.ProgrammingOf(id).IsPlain()) {
        held.programming[id] = ProgrammingText(house.ProgrammingOf(id));
      }
    }
    held.name = house.Name();
    return held;
  }
  bool operator==(const Holdings&) const = default;
};

/// A house on a disk that fails, with three events that are on it.
class Faults : public testing::Test {
 protected:
  Faults() {
    testing::internal::CaptureStderr();
    const Programming paused = Paused();
    for (const char* name : {"Porch", "Gate", "Pump"}) {
      house.Get().AddEvent(LiveHouse::Daily(name, 400), &paused, "ada", house.Saved());
    }
    house.Get().DeleteEvent(3, "ada", house.Saved());
    EXPECT_TRUE(house.WaitForSaved());
    house.told.clear();
  }
  ~Faults() override { testing::internal::GetCapturedStderr(); }

  /// A change that is told about, each as often as it is told.
  House::Saved Told() {
    const std::size_t change = answers.size();
    answers.emplace_back();
    return [this, change](const std::string& trouble) { answers[change].push_back(trouble); };
  }
  bool AllTold() const {
    for (const auto& answer : answers) {
      if (answer.empty()) return false;
    }
    return true;
  }
  /// One change of each kind. What has thrown has changed nothing, and is asked for again.
  void ChangeAll() {
    Controller& controller = house.Get();
    const Programming paused = Paused();
    const auto added = controller.AddEvent(LiveHouse::Daily("Lamp", 500), &paused, "ada", Told());
    ASSERT_EQ(added, 4u);
    EventElement later = LiveHouse::Daily("Porch", 480);
    later.eventid = 1;
    ASSERT_TRUE(controller.ReplaceEvent(later, "ada", Told()));
    Programming skip = Paused();
    skip.skipNext = true;
    controller.SetProgramming(1, skip, "ada", Told());
    ASSERT_TRUE(controller.DeleteEvent(2, "ada", Told()));
    Restore(3);
    ProjectPatch patch;
    patch.name = "Home";
    controller.ChangeProject(patch, "ada", Told());
  }
  void Restore(unsigned long id) {
    const House::Saved saved = Told();
    try {
      ASSERT_EQ(house.Get().RestoreEvent(id, "ada", saved), House::Restored::kDone);
    } catch (const Failure&) {
      ASSERT_EQ(house.Get().RestoreEvent(id, "ada", saved), House::Restored::kDone);
    }
  }
  std::size_t Rows(const std::string& reason) {
    std::size_t count = 0;
    for (const JournalRow& row : house.Rows("change")) count += row.reason == reason ? 1 : 0;
    return count;
  }
  long Count(const std::string& told) const {
    return std::count(house.told.begin(), house.told.end(), told);
  }
  void ExpectAllSaved(const Holdings& asked) {
    EXPECT_EQ(house.Get().SavingTrouble(), "");
    EXPECT_EQ(house.StoredXml(), asked.schedule.value_or(""));
    house.Crash();
    EXPECT_TRUE(Holdings::Of(house.Get()) == asked) << "it was on the disk";
    EXPECT_EQ(Rows("added"), 4u);
    EXPECT_EQ(Rows("modified"), 1u);
    EXPECT_EQ(Rows("programming"), 1u);
    EXPECT_EQ(Rows("deleted"), 2u);
    EXPECT_EQ(Rows("restored"), 1u);
    EXPECT_EQ(Rows("project"), 1u);
  }

  FaultyDisk disk;
  LiveHouse house;
  std::vector<std::vector<std::string>> answers;
};

/// Everything at once, the `number`-th call failing; false once there are fewer calls than that.
class FaultRound : public Faults {
 public:
  void TestBody() override {}
  bool Run(int number, How how) {
    SCOPED_TRACE("call " + std::to_string(number));
    disk.FailAt(number, how);
    ChangeAll();
    EXPECT_TRUE(house.Until([this] { return AllTold(); }));
    SCOPED_TRACE(disk.What());
    for (const auto& answer : answers) {
      EXPECT_EQ(answer.size(), 1u) << "told once";
      EXPECT_TRUE(answer[0].empty() || Count("saving fails") > 0);
    }
    // Somebody asks for more, so that the test need not wait for the next attempt.
    house.Get().BackUpSchedule("ada", Told());
    EXPECT_TRUE(house.Until([this] { return house.Get().SavingTrouble().empty() && AllTold(); }));
    EXPECT_EQ(Count("saving works"), Count("saving fails"));
    const bool failed = disk.HasFailed();
    const Holdings asked = Holdings::Of(house.Get());
    disk.Heal();
    ExpectAllSaved(asked);
    return failed;
  }
};

void RunUntilNothingFails(How how) {
  int number = 1;
  while (FaultRound().Run(number, how) && !testing::Test::HasFailure()) ++number;
  EXPECT_GT(number, 10) << "or hardly anything was tried";
}

TEST(FaultSweep, NothingIsLostWhereTheDiskIsFullOnce) { RunUntilNothingFails(How::kFull); }

TEST(FaultSweep, NothingIsLostWhereTheDiskBreaksOnce) { RunUntilNothingFails(How::kBroken); }

TEST_F(Faults, ADiskThatStaysFullIsToldAndTakesEverythingLater) {
  disk.FailAlways(How::kFull);
  ChangeAll();
  ASSERT_TRUE(house.Until([this] { return AllTold(); }));
  for (const auto& answer : answers) EXPECT_THAT(answer.at(0), HasSubstr("the disk is full"));
  EXPECT_THAT(house.told, Contains("saving fails"));
  EXPECT_THAT(house.Get().SavingTrouble(), HasSubstr("the disk is full"));
  // What was deleted meanwhile is nowhere on the disk, and can be brought back.
  EXPECT_EQ(house.Get().RestoreEvent(2, "ada", Told()), House::Restored::kDone);
  EXPECT_FALSE(house.Get().ProgrammingOf(2).IsPlain());
  ASSERT_TRUE(house.Get().DeleteEvent(4, "ada", Told()));
  EXPECT_EQ(house.Get().RestoreEvent(4, "ada", Told()), House::Restored::kDone);
  EXPECT_EQ(house.Get().RestoreEvent(4, "ada", {}), House::Restored::kNothingToRestore);
  ASSERT_TRUE(house.Until([this] { return AllTold(); }));
  disk.Heal();
  ASSERT_TRUE(house.Until([this] { return house.Get().SavingTrouble().empty(); }))
      << "by itself, after a second or two";
  for (const auto& answer : answers) EXPECT_EQ(answer.size(), 1u);
  const Holdings asked = Holdings::Of(house.Get());
  EXPECT_EQ(asked.programming.size(), 4u);
  EXPECT_EQ(house.StoredXml(), asked.schedule.value_or(""));
  house.Crash();
  EXPECT_TRUE(Holdings::Of(house.Get()) == asked);
}

TEST_F(Faults, AReplacedScheduleIsNotLostEither) {
  const std::string before = house.StoredXml();
  for (int number = 1;; ++number) {
    SCOPED_TRACE("call " + std::to_string(number));
    answers.clear();
    disk.FailAt(number, How::kBroken);
    try {
      const House::Saved saved = Told();
      ASSERT_TRUE(house.Get().ImportSchedule("<events/>", false, "ada", saved).done);
    } catch (const Failure&) {
      answers.clear();
    }
    ASSERT_TRUE(house.Until([this] { return AllTold(); }));
    const bool failed = disk.HasFailed();
    disk.Heal();
    house.Get().BackUpSchedule("ada", Told());
    ASSERT_TRUE(house.Until([this] { return AllTold(); }));
    ASSERT_EQ(house.Get().Scheduler().PersistText(), house.StoredXml());
    std::size_t backup = 1;
    for (const StoredState& kept : house.Get().Store().Backups(kSchedulerName)) {
      if (kept.xml == before) break;
      ++backup;
    }
    disk.FailAt(number, How::kFull);
    try {
      ASSERT_TRUE(house.Get().RestoreBackup(backup, "ada", Told())) << "it was put aside";
    } catch (const Failure&) {
      disk.Heal();
      ASSERT_TRUE(house.Get().RestoreBackup(backup, "ada", Told()));
    }
    const bool failedToo = disk.HasFailed();
    disk.Heal();
    house.Get().BackUpSchedule("ada", [](const std::string&) {});
    ASSERT_TRUE(house.Until([this] { return house.Get().SavingTrouble().empty(); }));
    house.Crash();
    ASSERT_EQ(house.StoredXml(), before);
    if (!failed && !failedToo) break;
    ASSERT_LT(number, 500);
  }
}

TEST_F(Faults, AStartThatFailsLeavesEverythingAsItWas) {
  const Holdings kept = Holdings::Of(house.Get());
  int failedStarts = 0;
  for (int number = 1;; ++number) {
    SCOPED_TRACE("call " + std::to_string(number));
    disk.FailAt(number, number % 2 == 0 ? How::kFull : How::kBroken);
    try {
      house.Crash();
    } catch (const Failure& failure) {
      ++failedStarts;
      EXPECT_THAT(failure.what(), HasSubstr("project"));
    }
    const bool failed = disk.HasFailed();
    disk.Heal();
    house.Crash();
    ASSERT_TRUE(Holdings::Of(house.Get()) == kept);
    if (!failed) break;
    ASSERT_LT(number, 500);
  }
  EXPECT_GT(failedStarts, 3);
}

TEST_F(Faults, AStopWhoseSavingFailsOnceSavesAllTheSame) {
  for (int number = 1;; ++number) {
    SCOPED_TRACE("call " + std::to_string(number));
    EventElement moved = LiveHouse::Daily("Porch", number);
    moved.eventid = 1;
    ASSERT_TRUE(house.Get().ReplaceEvent(moved, "ada", Told()));
    const Holdings asked = Holdings::Of(house.Get());
    disk.FailAt(number, How::kBroken);
    try {
      house.Restart();
    } catch (const Failure&) {
      // That was the start.
      disk.Heal();
      house.Crash();
      ASSERT_TRUE(Holdings::Of(house.Get()) == asked);
      continue;
    }
    const bool failed = disk.HasFailed();
    disk.Heal();
    ASSERT_TRUE(Holdings::Of(house.Get()) == asked);
    if (!failed) break;
    ASSERT_LT(number, 500);
  }
}

}  // namespace
}  // namespace controller
