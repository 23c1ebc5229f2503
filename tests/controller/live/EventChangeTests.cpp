// Events are changed: nothing is told before it is on the disk, and nothing is lost.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "LiveHouse.h"

namespace controller {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using Restored = House::Restored;

Programming Disabled() {
  Programming programming;
  programming.enabled = false;
  return programming;
}

TEST(EventChanges, AnEventIsAddedWithWhatItDoes) {
  LiveHouse house;
  const Programming disabled = Disabled();
  const auto id =
      house.Get().AddEvent(LiveHouse::Daily("Porch", 420), &disabled, "ada", house.Saved());
  ASSERT_EQ(id, 1u);
  EXPECT_FALSE(house.Get().ProgrammingOf(id).enabled);
  EXPECT_EQ(house.saved, "not yet") << "never from inside the call";
  EXPECT_THAT(house.told, Not(Contains("added 1")));
  ASSERT_TRUE(house.WaitForSaved());
  EXPECT_THAT(house.told, Contains("added 1"));
  EXPECT_THAT(house.StoredXml(), HasSubstr("<description>Porch</description>"));
  const auto rows = house.Rows("change");
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0].reason, "added");
  EXPECT_EQ(rows[0].actor, "ada");
  EXPECT_EQ(rows[0].description, "Porch");
  EXPECT_EQ(rows[0].before, "");
  EXPECT_THAT(rows[0].after, HasSubstr("\"at\":\"07:00\""));
  EXPECT_THAT(rows[0].after, HasSubstr("\"programming\":{\"enabled\":false"));
  house.Crash();
  EXPECT_FALSE(house.Get().ProgrammingOf(id).enabled) << "in one transaction with the event";
}

TEST(EventChanges, ADescriptionThatIsTakenIsRefused) {
  LiveHouse house;
  ASSERT_EQ(house.Get().AddEvent(LiveHouse::Daily("Porch", 420), nullptr, "ada", house.Saved()),
            1u);
  ASSERT_TRUE(house.WaitForSaved());
  EXPECT_EQ(house.Get().AddEvent(LiveHouse::Daily("Porch", 421), nullptr, "ada", {}), 0u);
  EXPECT_EQ(house.Rows("change").size(), 1u);
}

TEST(EventChanges, AReplacementKeepsTheIdAndTellsBothSides) {
  LiveHouse house;
  const auto id =
      house.Get().AddEvent(LiveHouse::Daily("Porch", 420), nullptr, "ada", house.Saved());
  EventElement later = LiveHouse::Daily("Porch", 480);
  later.eventid = id;
  ASSERT_TRUE(house.Get().ReplaceEvent(later, "bob", house.Saved()));
  ASSERT_TRUE(house.WaitForSaved());
  const auto rows = house.Rows("change");
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[0].reason, "modified");
  EXPECT_THAT(rows[0].before, HasSubstr("07:00"));
  EXPECT_THAT(rows[0].after, HasSubstr("08:00"));
  later.eventid = 99;
  EXPECT_FALSE(house.Get().ReplaceEvent(later, "bob", {})) << "there is no such event";
}

TEST(EventChanges, WhatIsDeletedCanBeBroughtBackWithAllThatItWas) {
  LiveHouse house;
  const Programming disabled = Disabled();
  const auto id =
      house.Get().AddEvent(LiveHouse::Daily("Porch", 420), &disabled, "ada", house.Saved());
  ASSERT_TRUE(house.WaitForSaved());
  const std::string before = house.StoredXml();
  EXPECT_EQ(house.Get().RestoreEvent(id, "ada", {}), Restored::kNothingToRestore);
  ASSERT_TRUE(house.Get().DeleteEvent(id, "ada", house.Saved()));
  EXPECT_TRUE(house.Get().ProgrammingOf(id).enabled) << "what it did has gone with it";
  ASSERT_TRUE(house.WaitForSaved());
  EXPECT_THAT(house.told, Contains("deleted 1"));
  EXPECT_THAT(house.Rows("change")[0].before, HasSubstr("\"programming\":{\"enabled\":false"));
  EXPECT_FALSE(house.Get().DeleteEvent(id, "ada", {}));
  house.Crash();
  ASSERT_EQ(house.Get().RestoreEvent(id, "ada", house.Saved()), Restored::kDone);
  ASSERT_TRUE(house.WaitForSaved());
  EXPECT_EQ(house.StoredXml(), before);
  EXPECT_FALSE(house.Get().ProgrammingOf(id).enabled);
  EXPECT_EQ(house.Get().RestoreEvent(id, "ada", {}), Restored::kNothingToRestore);
}

TEST(EventChanges, WhatCannotBeBroughtBackSaysWhy) {
  LiveHouse house;
  const auto id =
      house.Get().AddEvent(LiveHouse::Daily("Porch", 420), nullptr, "ada", house.Saved());
  ASSERT_TRUE(house.Get().DeleteEvent(id, "ada", house.Saved()));
  ASSERT_EQ(house.Get().AddEvent(LiveHouse::Daily("Porch", 1), nullptr, "ada", house.Saved()), 2u);
  EXPECT_EQ(house.Get().RestoreEvent(id, "ada", {}), Restored::kDescriptionTaken);
}

TEST(EventChanges, AReplacedScheduleTakesWhatEventsDoAlongByTheirName) {
  LiveHouse house;
  const Programming disabled = Disabled();
  house.Get().AddEvent(LiveHouse::Daily("Porch", 420), &disabled, "ada", house.Saved());
  house.Get().AddEvent(LiveHouse::Daily("Gate", 420), &disabled, "ada", house.Saved());
  ASSERT_TRUE(house.WaitForSaved());
  const std::string xml =
      "<events><event><eventid>2</eventid><description>Porch</description><start><offset>0</offset>"
      "<offset_minutes>60</offset_minutes><start_date><start_day>1</start_day><start_month>1"
      "</start_month><start_year>2024</start_year></start_date></start></event></events>";
  const auto imported = house.Get().ImportSchedule(xml, false, "ada", house.Saved());
  ASSERT_TRUE(imported.done);
  ASSERT_TRUE(house.WaitForSaved());
  EXPECT_FALSE(house.Get().ProgrammingOf(2).enabled) << "that of Porch";
  EXPECT_TRUE(house.Get().ProgrammingOf(1).enabled);
  EXPECT_THAT(house.told, Contains("replaced"));
  // What Gate did is not lost without a trace, and comes back with it.
  const auto aside = house.Rows("change").at(0);
  EXPECT_EQ(aside.reason + ' ' + aside.description + ' ' + aside.actor, "programming Gate ada");
  EXPECT_THAT(aside.before, HasSubstr("\"enabled\":false"));
  EXPECT_EQ(aside.after, "");
  ASSERT_TRUE(house.Get().RestoreBackup(1, "ada", house.Saved()));
  ASSERT_TRUE(house.WaitForSaved());
  EXPECT_THAT(house.StoredXml(), HasSubstr("Gate"));
  EXPECT_FALSE(house.Get().ProgrammingOf(1).enabled);
  EXPECT_FALSE(house.Get().ProgrammingOf(2).enabled) << "that of Gate";
  house.Crash();
  EXPECT_FALSE(house.Get().ProgrammingOf(2).enabled);
  EXPECT_FALSE(house.Get().RestoreBackup(99, "ada", {}));
}

TEST(EventChanges, AnImportThatWouldLoseSomethingChangesNothing) {
  LiveHouse house;
  house.Get().AddEvent(LiveHouse::Daily("Porch", 420), nullptr, "ada", house.Saved());
  ASSERT_TRUE(house.WaitForSaved());
  const std::string before = house.StoredXml();
  const auto imported = house.Get().ImportSchedule("<events><event/></events>", false, "ada", {});
  EXPECT_FALSE(imported.done);
  EXPECT_EQ(imported.review.Count(Finding::Kind::kDropped), 1u);
  EXPECT_EQ(house.StoredXml(), before);
  EXPECT_THROW(house.Get().ImportSchedule("<events>", false, "ada", {}), Failure);
}

}  // namespace
}  // namespace controller
