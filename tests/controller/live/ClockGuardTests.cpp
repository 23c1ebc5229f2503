#include <gtest/gtest.h>

#include "controller/live/ClockGuard.h"

namespace controller {
namespace {

TEST(ClockGuard, LetsTimePass) {
  ClockGuard guard({1000, 50, 50});
  EXPECT_FALSE(guard.Look({1001, 51, 51}));
  EXPECT_FALSE(guard.Look({1031, 81, 81})) << "a loop that was held up is no jump";
  EXPECT_FALSE(guard.Look({1032.9, 82, 82})) << "as a time server corrects it";
  EXPECT_FALSE(guard.Look({1034.8, 83, 83})) << "and once more: it is not added up";
}

TEST(ClockGuard, NoticesThatTheClockWasSet) {
  ClockGuard guard({1000, 50, 50});
  const auto forward = guard.Look({4601, 51, 51});
  ASSERT_TRUE(forward);
  EXPECT_DOUBLE_EQ(forward->seconds, 3600);
  EXPECT_FALSE(forward->slept);
  EXPECT_TRUE(forward->IsLarge());
  EXPECT_FALSE(guard.Look({4602, 52, 52})) << "told once";
  const auto back = guard.Look({4593, 53, 53});
  ASSERT_TRUE(back);
  EXPECT_DOUBLE_EQ(back->seconds, -10);
  EXPECT_FALSE(back->IsLarge());
}

TEST(ClockGuard, KnowsASleepFromAClockThatWasSet) {
  ClockGuard guard({1000, 50, 50});
  const auto slept = guard.Look({1000 + 7200 + 1, 51, 50 + 7200 + 1});
  ASSERT_TRUE(slept);
  EXPECT_TRUE(slept->slept);
  EXPECT_TRUE(slept->IsLarge());
  const auto both = guard.Look({10000 + 3600, 52, 8000});
  ASSERT_TRUE(both);
  EXPECT_FALSE(both->slept);
}

TEST(ClockGuard, ReadsTheSystemsClocks) {
  const ClockReading now = ClockReading::Now();
  EXPECT_GT(now.realtime, static_cast<double>(BuildTime()) - 1);
  EXPECT_GE(now.boottime, now.monotonic - 0.1);
  ClockGuard guard(now);
  EXPECT_FALSE(guard.Look(ClockReading::Now()));
}

}  // namespace
}  // namespace controller
