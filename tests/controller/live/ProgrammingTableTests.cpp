#include <gtest/gtest.h>

#include "TempFolder.h"
#include "controller/Failure.h"
#include "controller/live/ProgrammingTable.h"

namespace controller {
namespace {

Programming Lamp() {
  Programming programming;
  programming.skipNext = true;
  programming.pausedUntil = DayFields{2026, 12, 1};
  programming.catchUp = {CatchUp::Policy::kAlways, 10};
  Action action;
  action.what = CommandAction{{"/bin/true", "{event}"}, 5};
  programming.actions.push_back(action);
  return programming;
}

TEST(ProgrammingTable, FindsAgainWhatWasWritten) {
  const TempFolder folder;
  ProjectStore store(folder / "project.db", ProjectStore::Use::kKeep);
  ProgrammingTable::Write(store, 7, Lamp());
  ProgrammingTable::Write(store, 8, Programming{});
  const ProgrammingTable table(store);
  EXPECT_EQ(ProgrammingText(table.Of(7)), ProgrammingText(Lamp()));
  EXPECT_TRUE(table.Of(8).IsPlain());
  EXPECT_EQ(table.All().size(), 1u) << "plain programming needs no row";
  ProgrammingTable::Write(store, 7, Programming{});
  EXPECT_TRUE(ProgrammingTable(store).All().empty());
}

TEST(ProgrammingTable, AnEventWhoseRowCannotBeReadDoesNothing) {
  const TempFolder folder;
  ProjectStore store(folder / "project.db", ProjectStore::Use::kKeep);
  store.Database().Execute("INSERT INTO programming (event, body) VALUES (7, '{\"enabled\": 1}')");
  testing::internal::CaptureStderr();
  const ProgrammingTable table(store);
  EXPECT_NE(testing::internal::GetCapturedStderr().find("what event 7 does cannot be read"),
            std::string::npos);
  EXPECT_FALSE(table.Of(7).enabled);
  EXPECT_EQ(store.Database().Number("SELECT count(*) FROM programming"), 1) << "nothing is lost";
}

TEST(ProgrammingTable, RefusesATextOfAnotherForm) {
  EXPECT_THROW(ReadProgrammingText("{"), Failure);
  EXPECT_THROW(ReadProgrammingText("[]"), Failure);
  EXPECT_THROW(ReadProgrammingText("{\"enabled\": true, \"enabled\": true}"), Failure);
}

}  // namespace
}  // namespace controller
