// Assertion records: written, told where they came from, and gone on after.

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "framework/AssertSink.h"
#include "host/VxAssert.h"
#include "tests/support/FakeHost.h"

// Outside any namespace and never inlined: these names must come up in the stacks.
[[gnu::noinline]] vx::StackTrace TraceOfTheAssertionTest() {
  vx::StackTrace stack;
  return stack;
}

namespace {

class Records final : public vx::IAssertSink {
 public:
  explicit Records(bool wantsStacks)
      : wantsStacks_(wantsStacks), before_(vx::SetAssertSink(this)) {}
  ~Records() { vx::SetAssertSink(before_); }
  Records(const Records&) = delete;
  Records& operator=(const Records&) = delete;
  void OnAssert(const char* file, int line, const vx::StackTrace& stack) override {
    records.push_back(std::string(file) + ":" + std::to_string(line));
    stacks.push_back(vx::Symbolise(stack));
  }
  bool WantsStacks() const override { return wantsStacks_; }

  std::vector<std::string> records;
  std::vector<std::string> stacks;

 private:
  bool wantsStacks_;
  vx::IAssertSink* before_;
};

TEST(AssertWrite, SendsFileAndLineToTheSinkAndReturns) {
  const Records sink(/*wantsStacks=*/false);
  vx::AssertWrite("agent/some", 146, vx::StackTrace());
  vx::AssertWrite("", -1, vx::StackTrace());
  EXPECT_EQ(sink.records, (std::vector<std::string>{"agent/some:146", ":-1"}));
}

TEST(AssertWrite, KeepsNoPointerToTheFileName) {
  const Records sink(/*wantsStacks=*/false);
  {
    std::string file(5000, 'f');
    vx::AssertWrite(file.c_str(), 1, vx::StackTrace());
    file.assign(5000, 'x');
  }
  EXPECT_EQ(sink.records.at(0), std::string(5000, 'f') + ":1");
}

TEST(AssertWrite, GoesToStandardErrorByDefaultAndNeverAborts) {
  vx::IAssertSink* const before = vx::SetAssertSink(nullptr);
  testing::internal::CaptureStderr();
  vx::AssertWrite("agent/some", 107, TraceOfTheAssertionTest());
  const std::string written = testing::internal::GetCapturedStderr();
  vx::SetAssertSink(before);
  EXPECT_EQ(written.find("assertion: agent/some:107\n"), 0U) << written;
  EXPECT_NE(written.find("TraceOfTheAssertionTest"), std::string::npos) << written;
}

TEST(SetAssertSink, AnswersTheSinkBefore) {
  Records first(/*wantsStacks=*/false);
  Records second(/*wantsStacks=*/false);
  EXPECT_EQ(vx::SetAssertSink(&first), &second);
  vx::AssertWrite("a", 1, vx::StackTrace());
  EXPECT_EQ(vx::SetAssertSink(&second), &first);
  EXPECT_EQ(first.records.size(), 1U);
  EXPECT_TRUE(second.records.empty());
}

TEST(StackTrace, NamesTheFunctionsThatLedToIt) {
  const Records sink(/*wantsStacks=*/true);
  const vx::StackTrace stack = TraceOfTheAssertionTest();
  const std::string text = vx::Symbolise(stack);
  EXPECT_NE(text.find("TraceOfTheAssertionTest"), std::string::npos) << text;
  EXPECT_NE(text.find("TestBody"), std::string::npos) << "this test itself: " << text;
  EXPECT_NE(text.find("vexalink_framework_tests"), std::string::npos) << "the program: " << text;
}

TEST(StackTrace, IsEmptyWhereTheSinkWantsNone) {
  const Records sink(/*wantsStacks=*/false);
  const vx::StackTrace stack;
  EXPECT_EQ(stack.Size(), 0U);
  EXPECT_EQ(vx::Symbolise(stack), "");
}

int Descend(int levels, vx::StackTrace* out) {
  if (levels == 0) {
    *out = vx::StackTrace();
    return 0;
  }
  const int below = Descend(levels - 1, out);
  return below + 1;
}

TEST(StackTrace, HoldsNoMoreThanItsFrames) {
  const Records sink(/*wantsStacks=*/true);
  vx::StackTrace stack;
  EXPECT_EQ(Descend(200, &stack), 200);
  EXPECT_LE(stack.Size(), vx::StackTrace::kMaxFrames);
  EXPECT_GT(stack.Size(), 0U);
}

TEST(Symbolise, WritesALineForEachCall) {
  const Records sink(/*wantsStacks=*/true);
  const vx::StackTrace stack = TraceOfTheAssertionTest();
  const std::string text = vx::Symbolise(stack);
  EXPECT_EQ(static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')), stack.Size());
}

TEST(AssertSinks, OfTheTestSupportGiveBackTheSinkBefore) {
  const Records sink(/*wantsStacks=*/false);
  {
    FakeHost host;
    AssertLines lines;
    vx::AssertWrite("a", 54, vx::StackTrace());
    EXPECT_EQ(lines.lines, std::vector<int>{54});
    EXPECT_TRUE(host.calls.empty());
  }
  vx::AssertWrite("b", 55, vx::StackTrace());
  EXPECT_EQ(sink.records, std::vector<std::string>{"b:55"});
}

}  // namespace
