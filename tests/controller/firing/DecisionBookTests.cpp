#include <gtest/gtest.h>

#include "TempFolder.h"
#include "controller/firing/DecisionBook.h"

namespace controller {
namespace {

constexpr DayFields kYesterday{2024, 3, 5};
constexpr DayFields kToday{2024, 3, 6};
constexpr std::time_t kSeven = 1709708400;

TEST(DecisionBook, KnowsWhatWasActedOn) {
  DecisionBook book;
  EXPECT_FALSE(book.WasActedOn(7, kToday));
  book.Note({7, kToday, kSeven, OccurrenceState::kHeld});
  EXPECT_FALSE(book.WasActedOn(7, kToday));
  EXPECT_TRUE(book.WasHeld(7, kToday, kSeven));
  EXPECT_FALSE(book.WasHeld(7, kToday, kSeven + 60)) << "it was moved to another time";
  book.Note({7, kToday, kSeven + 60, OccurrenceState::kFired});
  EXPECT_TRUE(book.WasActedOn(7, kToday));
  EXPECT_FALSE(book.WasActedOn(8, kToday));
  EXPECT_FALSE(book.WasActedOn(7, kYesterday));
}

TEST(DecisionBook, WhatWasMissedMayStillCome) {
  DecisionBook book;
  book.Note({7, kToday, kSeven, OccurrenceState::kMissed});
  EXPECT_FALSE(book.WasHeld(7, kToday, kSeven));
  EXPECT_FALSE(book.WasActedOn(7, kToday));
  ASSERT_NE(book.Find(7, kToday), nullptr);
  EXPECT_EQ(book.Find(7, kToday)->outcome, OccurrenceState::kMissed);
}

TEST(DecisionBook, IsFoundAgainInTheProject) {
  const TempFolder folder;
  ProjectStore store(folder / "project.db", ProjectStore::Use::kKeep);
  DecisionBook::Write(store, {7, kYesterday, kSeven - 86400, OccurrenceState::kFired});
  DecisionBook::Write(store, {7, kToday, kSeven, OccurrenceState::kFired});
  DecisionBook::Write(store, {8, kToday, kSeven, OccurrenceState::kMissed});
  // It came up once more and was held back: that does not make it undone.
  DecisionBook::Write(store, {7, kToday, kSeven, OccurrenceState::kHeld});
  DecisionBook book;
  book.Load(store, kToday);
  EXPECT_TRUE(book.WasActedOn(7, kToday));
  EXPECT_FALSE(book.WasActedOn(7, kYesterday)) << "before what was asked for";
  EXPECT_EQ(book.Find(8, kToday)->outcome, OccurrenceState::kMissed);
  DecisionBook::Prune(store, kToday);
  book.Load(store, kYesterday);
  EXPECT_FALSE(book.WasActedOn(7, kYesterday));
  EXPECT_TRUE(book.WasActedOn(7, kToday));
  book.Forget({2024, 3, 7});
  EXPECT_FALSE(book.WasActedOn(7, kToday));
}

}  // namespace
}  // namespace controller
