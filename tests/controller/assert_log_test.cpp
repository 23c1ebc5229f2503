#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controller/AssertLog.h"
#include "host/VxAssert.h"

namespace controller {
namespace {

using testing::HasSubstr;
using testing::Not;

std::ptrdiff_t Lines(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }

TEST(AssertLog, WritesARecordWithTheCallsThatLedToIt) {
  testing::internal::CaptureStderr();
  {
    AssertLog log;
    vx::AssertWrite("some/file", 42, vx::StackTrace());
  }
  const std::string text = testing::internal::GetCapturedStderr();
  EXPECT_THAT(text, HasSubstr("warning assertion: some/file:42\n"));
  EXPECT_GT(Lines(text), 2) << "the calls follow, a line each";
  EXPECT_THAT(text, Not(HasSubstr("repeated")));
}

TEST(AssertLog, CountsWhatRepeats) {
  testing::internal::CaptureStderr();
  {
    AssertLog log;
    for (int i = 0; i < 10000; ++i) vx::AssertWrite("some/file", 42, vx::StackTrace());
    EXPECT_FALSE(log.WantsStacks());
  }
  const std::string text = testing::internal::GetCapturedStderr();
  EXPECT_LT(Lines(text), 200);
  EXPECT_THAT(text, HasSubstr("some/file:42 repeated 9997 times\n"));
}

TEST(AssertLog, DoesNotLoseANewCheckAmongRepeats) {
  testing::internal::CaptureStderr();
  {
    AssertLog log;
    for (int i = 0; i < 100; ++i) vx::AssertWrite("some/file", 1, vx::StackTrace());
    vx::AssertWrite("some/file", 2, vx::StackTrace());
    EXPECT_TRUE(log.WantsStacks());
    vx::AssertWrite("other/file", 1, vx::StackTrace());
  }
  const std::string text = testing::internal::GetCapturedStderr();
  EXPECT_THAT(text, HasSubstr("assertion: some/file:2\n"));
  EXPECT_THAT(text, HasSubstr("assertion: other/file:1\n"));
}

TEST(AssertLog, PutsTheSinkBeforeInItsPlaceAgain) {
  vx::IAssertSink* before = vx::SetAssertSink(nullptr);
  vx::SetAssertSink(before);
  { AssertLog log; }
  EXPECT_EQ(vx::SetAssertSink(nullptr), before);
  vx::SetAssertSink(before);
}

}  // namespace
}  // namespace controller
