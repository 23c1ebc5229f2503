#include "controller/Committer.h"

#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <vector>

#include "TempFolder.h"
#include "controller/Failure.h"
#include "controller/Sqlite.h"

namespace controller {
namespace {

using testing::HasSubstr;

class CommitterTest : public testing::Test {
 protected:
  /// Runs the loop until the saver has nothing left to do, a minute at most.
  void RunUntilSaved() {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (saver.IsPending() && std::chrono::steady_clock::now() < end) {
      event_base_loop(base.get(), EVLOOP_ONCE);
    }
  }
  std::string Stored() { return store.State("scheduler").value_or(StoredState{}).xml; }

  const TempFolder folder;
  const EventBase base = MakeEventBase();
  ProjectStore store{folder / "project.db", ProjectStore::Use::kKeep};
  std::optional<std::string> state = "<a>1</a>";
  std::vector<std::string> troubles;
  Committer saver{base.get(), store, "scheduler", [this] { return state; },
                  [this](const std::string& why) { troubles.push_back(why); }};
};

TEST_F(CommitterTest, SavesAfterTheCallThatInvalidated) {
  saver.Invalidate();
  EXPECT_EQ(Stored(), "") << "the driver is still in its call";
  state = "<a>2</a>";
  RunUntilSaved();
  EXPECT_EQ(Stored(), "<a>2</a>");
  EXPECT_TRUE(troubles.empty());
}

TEST_F(CommitterTest, TriesAgainUntilTheDiskTakesIt) {
  testing::internal::CaptureStderr();
  {
    SqliteDatabase other((folder / "project.db").string(), SqliteDatabase::Mode::kExisting, 0);
    other.Execute("BEGIN EXCLUSIVE");
    EXPECT_FALSE(saver.SaveNow());
    EXPECT_TRUE(saver.IsPending());
    state = "<a>2</a>";
    saver.Invalidate();
    EXPECT_FALSE(saver.SaveNow());
    other.Execute("COMMIT");
  }
  RunUntilSaved();
  EXPECT_EQ(Stored(), "<a>2</a>");
  ASSERT_EQ(troubles.size(), 2u) << "told when it begins and when it ends";
  EXPECT_THAT(troubles[0], HasSubstr("another process holds it"));
  EXPECT_EQ(troubles[1], "");
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_THAT(log, HasSubstr("error   the schedule could not be saved"));
  EXPECT_THAT(log, HasSubstr("in 1 s"));
  EXPECT_THAT(log, HasSubstr("in 2 s"));
  EXPECT_THAT(log, HasSubstr("saving works again"));
}

TEST_F(CommitterTest, NeverSavesWhatCannotBeReadBack) {
  state = "<a>good</a>";
  ASSERT_TRUE(saver.SaveNow());
  testing::internal::CaptureStderr();
  state = "<a>not closed";
  EXPECT_FALSE(saver.SaveNow());
  EXPECT_EQ(Stored(), "<a>good</a>");
  state = "<a>\x01\xFF</a>";
  EXPECT_TRUE(saver.SaveNow());
  EXPECT_EQ(Stored(), "<a>\xEF\xBF\xBD\xEF\xBF\xBD</a>");
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              HasSubstr("2 characters that XML cannot hold"));
}

TEST_F(CommitterTest, HasNothingToDoForADriverWithoutState) {
  state = std::nullopt;
  EXPECT_TRUE(saver.SaveNow());
  EXPECT_EQ(Stored(), "");
}

TEST_F(CommitterTest, WhatComesTogetherIsSavedTogether) {
  const auto before = saver.Saves();
  std::vector<int> told;
  for (int each = 1; each <= 3; ++each) {
    saver.Add(
        [each](ProjectStore& into) {
          into.SaveSettings({{"s" + std::to_string(each), "kept"}});
        },
        [&told, each] { told.push_back(each); });
  }
  saver.Invalidate();
  EXPECT_TRUE(told.empty());
  RunUntilSaved();
  EXPECT_EQ(told, (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(saver.Saves(), before + 1);
  EXPECT_EQ(store.Setting("s3"), "kept");
}

TEST_F(CommitterTest, TellsOnceThatItTakesLongerAndOnceThatItIsDone) {
  testing::internal::CaptureStderr();
  std::vector<std::string> told;
  {
    SqliteDatabase other((folder / "project.db").string(), SqliteDatabase::Mode::kExisting, 0);
    other.Execute("BEGIN EXCLUSIVE");
    saver.Add(
        [](ProjectStore& into) {
          into.SaveSettings({{"a", "1"}});
        },
        [&told] { told.emplace_back("saved"); },
        [&told](const std::string& why) { told.push_back(why); });
    EXPECT_FALSE(saver.SaveNow());
    EXPECT_FALSE(saver.SaveNow());
    saver.Add(
        [](ProjectStore& into) {
          into.SaveSettings({{"b", "2"}});
        },
        [&told] { told.emplace_back("saved too"); },
        [&told](const std::string&) { told.emplace_back("late too"); });
    other.Execute("COMMIT");
  }
  RunUntilSaved();
  ASSERT_EQ(told.size(), 4u);
  EXPECT_THAT(told[0], HasSubstr("another process holds it"));
  EXPECT_EQ(told[1], "late too") << "who comes later learns it at once";
  EXPECT_EQ(told[2], "saved");
  EXPECT_EQ(told[3], "saved too");
  EXPECT_EQ(store.Setting("a"), "1");
  EXPECT_EQ(store.Setting("b"), "2");
  testing::internal::GetCapturedStderr();
}

TEST_F(CommitterTest, AWriteThatFailsLeavesNothingOfTheOthers) {
  testing::internal::CaptureStderr();
  bool fails = true;
  saver.SetStamp([](ProjectStore& into) { into.SaveSettings({{"stamp", "1"}}); });
  saver.Add([](ProjectStore& into) { into.SaveSettings({{"a", "1"}}); });
  saver.Add([&fails](ProjectStore&) {
    if (fails) throw Failure("no room");
  });
  EXPECT_FALSE(saver.SaveNow());
  EXPECT_FALSE(store.Setting("a"));
  EXPECT_FALSE(store.Setting("stamp"));
  EXPECT_EQ(saver.Trouble(), "no room");
  fails = false;
  EXPECT_TRUE(saver.SaveNow());
  EXPECT_EQ(store.Setting("a"), "1");
  EXPECT_EQ(store.Setting("stamp"), "1");
  EXPECT_EQ(saver.Trouble(), "");
  testing::internal::GetCapturedStderr();
}

}  // namespace
}  // namespace controller
