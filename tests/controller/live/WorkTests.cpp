// What fires does something, once.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "LiveHouse.h"
#include "controller/Clock.h"
#include "controller/LocalTimeText.h"

namespace controller {
namespace {

using testing::HasSubstr;

/// Adds a line to `file` for each firing.
Programming Writes(const std::filesystem::path& file, Trigger on = Trigger::kEvent) {
  Programming programming;
  Action action;
  action.on = on;
  action.what = CommandAction{
      {"/bin/sh", "-c", "echo \"$0\" >> " + file.string(), "{event} {description} {trigger}"}, 10};
  programming.actions.push_back(action);
  return programming;
}

/// An event that fires in two or three seconds: at such a second of a minute as a zone makes it.
class SecondsZone {
 public:
  explicit SecondsZone(int seconds) {
    const char* before = std::getenv("TZ");
    if (before != nullptr) before_ = before;
    const auto late = static_cast<int>((std::time(nullptr) + seconds) % 60);
    char zone[32];
    std::snprintf(zone, sizeof zone, "TST-00:00:%02d", (60 - late) % 60);
    ::setenv("TZ", zone, 1);
    ::tzset();
  }
  ~SecondsZone() {
    before_ ? ::setenv("TZ", before_->c_str(), 1) : ::unsetenv("TZ");
    ::tzset();
  }
  /// Minutes after midnight of the next full minute.
  static int NextMinute() {
    const std::time_t now = std::time(nullptr);
    std::tm fields{};
    localtime_r(&now, &fields);
    return fields.tm_hour * 60 + fields.tm_min + 1;
  }

 private:
  std::optional<std::string> before_;
};

TEST(Work, AFiringIsActedOnOnceItIsOnTheDisk) {
  const SecondsZone zone(3);
  const TempFolder folder;
  LiveHouse house;
  const Programming programming = Writes(folder / "done");
  const auto id = house.Get().AddEvent(LiveHouse::Daily("Porch", SecondsZone::NextMinute()),
                                       &programming, "ada", house.Saved());
  ASSERT_TRUE(house.Until([&] { return !house.Rows("action").empty(); }));
  EXPECT_EQ(ReadFile(folder / "done"), std::to_string(id) + " Porch event\n");
  const auto fired = house.Rows("fired");
  ASSERT_EQ(fired.size(), 1u);
  EXPECT_EQ(fired[0].reason, "timer");
  EXPECT_EQ(fired[0].at, fired[0].planned);
  const auto actions = house.Rows("action");
  EXPECT_EQ(actions[0].outcome, "done");
  EXPECT_THAT(actions[0].text, HasSubstr("runs sh"));
  ASSERT_EQ(house.Get().Today().size(), 1u);
  EXPECT_EQ(house.Get().Today()[0].state, OccurrenceState::kFired);
  EXPECT_EQ(house.Get().Today()[0].journalRow, fired[0].id);
  // Whatever happens now, today it is done.
  house.Crash();
  ASSERT_EQ(house.Get().Today().size(), 1u);
  EXPECT_EQ(house.Get().Today()[0].state, OccurrenceState::kFired);
  EXPECT_EQ(house.Get().Today()[0].reason, "timer");
  EXPECT_EQ(house.Rows("fired").size(), 1u);
}

TEST(Work, ASkipIsUsedUpAndKept) {
  const SecondsZone zone(3);
  const TempFolder folder;
  LiveHouse house;
  Programming programming = Writes(folder / "done");
  programming.skipNext = true;
  const auto id = house.Get().AddEvent(LiveHouse::Daily("Porch", SecondsZone::NextMinute()),
                                       &programming, "ada", house.Saved());
  ASSERT_TRUE(house.Until([&] { return !house.Rows("held").empty(); }));
  EXPECT_EQ(house.Rows("held")[0].reason, "skipped");
  EXPECT_FALSE(house.Get().ProgrammingOf(id).skipNext);
  house.Crash();
  EXPECT_FALSE(house.Get().ProgrammingOf(id).skipNext);
  EXPECT_FALSE(std::filesystem::exists(folder / "done"));
}

TEST(Work, ByHandAnEventDoesWhatIsAskedFor) {
  const TempFolder folder;
  LiveHouse house;
  Programming programming = Writes(folder / "done", Trigger::kPush);
  programming.actions.push_back(Writes(folder / "done", Trigger::kClick).actions[0]);
  programming.enabled = false;
  const auto id =
      house.Get().AddEvent(LiveHouse::Daily("Porch", 0), &programming, "ada", house.Saved());
  std::int64_t row = 0;
  house.Get().WorkByHand(id, {Trigger::kPush}, "ada",
                         [&row](std::int64_t journalRow) { row = journalRow; });
  ASSERT_TRUE(house.Until([&] { return !house.Rows("action").empty(); }));
  EXPECT_EQ(ReadFile(folder / "done"), std::to_string(id) + " Porch push\n");
  const auto fired = house.Rows("fired");
  ASSERT_EQ(fired.size(), 1u);
  EXPECT_EQ(fired[0].id, row);
  EXPECT_EQ(fired[0].reason, "by-hand");
  EXPECT_EQ(fired[0].actor, "ada");
}

TEST(Work, AnActionIsTriedInTheNameOfWhoWantedIt) {
  const TempFolder folder;
  LiveHouse house;
  std::optional<ActionOutcome> outcome;
  house.Get().TryAction(Writes(folder / "done").actions[0], 0, "ada",
                        [&outcome](const ActionOutcome& ended) { outcome = ended; });
  EXPECT_FALSE(outcome);
  ASSERT_TRUE(house.Until([&] { return !house.Rows("action").empty(); }));
  ASSERT_TRUE(outcome);
  EXPECT_EQ(outcome->kind, ActionOutcome::Kind::kDone) << outcome->detail;
  const JournalRow row = house.Rows("action")[0];
  EXPECT_EQ(row.actor + ' ' + row.reason + ' ' + row.outcome, "ada by-hand done");
  EXPECT_EQ(row.text, "runs sh: exit status 0");
  EXPECT_FALSE(row.planned) << "it was not planned";
}

TEST(Work, AnActionSetsAVariableOfTheHouseButNotItsPlace) {
  LiveHouse house;
  house.Get().SetHostVariable(1, 2001, "on", "ada");
  EXPECT_EQ((house.Get().Variables()[{1, 2001}]), "on");
  ASSERT_TRUE(house.Until([&] { return !house.Rows("change").empty(); }));
  const JournalRow row = house.Rows("change")[0];
  EXPECT_EQ(row.reason + ' ' + row.actor, "variable ada");
  EXPECT_EQ(row.text, "variable 2001 of device 1 is \"on\"");
  testing::internal::CaptureStderr();
  house.Get().SetHostVariable(1, 1001, "0", "ada");
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("no variable to be set"));
  EXPECT_EQ((house.Get().Variables()[{1, 1001}]), "52.52");
}

TEST(Work, WhatWasUnderWayWhenTheControllerDiedIsTold) {
  const SecondsZone zone(3);
  const TempFolder folder;
  LiveHouse house;
  Programming programming = Writes(folder / "done");
  programming.actions[0].delaySeconds = 3600;
  house.Get().AddEvent(LiveHouse::Daily("Porch", SecondsZone::NextMinute()), &programming, "ada",
                       house.Saved());
  ASSERT_TRUE(house.Until([&] { return !house.Rows("fired").empty(); }));
  ASSERT_TRUE(house.Until([&] { return house.Get().RunningActions().size() == 1; }));
  house.Crash();
  ASSERT_TRUE(house.Until([&] { return !house.Rows("action").empty(); }));
  EXPECT_EQ(house.Rows("action")[0].outcome, "unknown");
}

TEST(Work, WhatWasUnderWayByHandWhenTheControllerDiedIsToldToo) {
  const TempFolder folder;
  LiveHouse house;
  Programming programming = Writes(folder / "done", Trigger::kPush);
  programming.actions[0].delaySeconds = 3600;
  programming.actions.push_back(Writes(folder / "done").actions[0]);
  const auto id =
      house.Get().AddEvent(LiveHouse::Daily("Porch", 0), &programming, "ada", house.Saved());
  bool begun = false;
  house.Get().WorkByHand(id, {Trigger::kPush}, "ada", [&begun](std::int64_t) { begun = true; });
  ASSERT_TRUE(house.Until([&] { return begun; }));
  house.Crash();
  ASSERT_TRUE(house.Until([&] { return !house.Rows("action").empty(); }));
  EXPECT_EQ(house.Rows("action")[0].outcome, "unknown");
}

TEST(Work, OfTwoFiringsByHandInOneSecondTheOneThatWasUnderWayIsTold) {
  const TempFolder folder;
  LiveHouse house;
  Programming programming = Writes(folder / "done");
  programming.actions[0].delaySeconds = 3600;
  const auto id =
      house.Get().AddEvent(LiveHouse::Daily("Porch", 0), &programming, "ada", house.Saved());
  {
    const ClockScope sameSecond(std::time(nullptr));
    house.Get().WorkByHand(id, {Trigger::kEvent}, "ada", [](std::int64_t) {});
    ASSERT_TRUE(house.Until([&] { return house.Get().RunningActions().size() == 1; }));
    programming.actions[0].delaySeconds = 0;
    house.Get().SetProgramming(id, programming, "ada", house.Saved());
    house.Get().WorkByHand(id, {Trigger::kEvent}, "ada", [](std::int64_t) {});
    ASSERT_TRUE(house.Until([&] { return house.Rows("action").size() == 1; }));
  }
  house.Crash();
  ASSERT_TRUE(house.Until([&] { return house.Rows("controller").size() == 2; }));
  ASSERT_EQ(house.Rows("action").size(), 2u);
  EXPECT_EQ(house.Rows("action")[0].outcome, "unknown");
}

TEST(Work, WhatAnEventDoesOnlySinceItFiredWasNotUnderWay) {
  const TempFolder folder;
  LiveHouse house;
  const auto id = house.Get().AddEvent(LiveHouse::Daily("Porch", 0), nullptr, "ada", house.Saved());
  bool begun = false;
  house.Get().WorkByHand(id, {Trigger::kEvent}, "ada", [&begun](std::int64_t) { begun = true; });
  ASSERT_TRUE(house.Until([&] { return begun; }));
  house.Get().SetProgramming(id, Writes(folder / "done"), "ada", house.Saved());
  ASSERT_TRUE(house.WaitForSaved());
  const auto started = house.Rows("controller").size();
  house.Crash();
  ASSERT_TRUE(house.Until([&] { return house.Rows("controller").size() > started; }));
  EXPECT_TRUE(house.Rows("action").empty());
}

}  // namespace
}  // namespace controller
