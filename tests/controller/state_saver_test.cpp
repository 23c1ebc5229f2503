#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <vector>

#include "TempFolder.h"
#include "controller/Failure.h"
#include "controller/Sqlite.h"
#include "controller/StateSaver.h"

namespace controller {
namespace {

using testing::HasSubstr;

class StateSaverTest : public testing::Test {
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
  StateSaver saver{base.get(), store, "scheduler", [this] { return state; },
                   [this](const std::string& why) { troubles.push_back(why); }};
};

TEST_F(StateSaverTest, SavesAfterTheCallThatInvalidated) {
  saver.Invalidate();
  EXPECT_EQ(Stored(), "") << "the driver is still in its call";
  state = "<a>2</a>";
  RunUntilSaved();
  EXPECT_EQ(Stored(), "<a>2</a>");
  EXPECT_TRUE(troubles.empty());
}

TEST_F(StateSaverTest, TriesAgainUntilTheDiskTakesIt) {
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

TEST_F(StateSaverTest, NeverSavesWhatCannotBeReadBack) {
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

TEST_F(StateSaverTest, HasNothingToDoForADriverWithoutState) {
  state = std::nullopt;
  EXPECT_TRUE(saver.SaveNow());
  EXPECT_EQ(Stored(), "");
}

}  // namespace
}  // namespace controller
