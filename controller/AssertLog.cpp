#include "controller/AssertLog.h"

#include <sstream>

#include "controller/Log.h"

namespace controller {

namespace {

constexpr int kWholeRecords = 3;
constexpr std::time_t kSecondsBetweenSummaries = 3600;

/// Not `time()`: that one stands still or jumps where somebody moves the program's clock.
std::time_t Uptime() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec;
}

}  // namespace

AssertLog::AssertLog() : before_(vx::SetAssertSink(this)) {}

AssertLog::~AssertLog() {
  for (auto& [key, check] : checks_) {
    if (check.untold > 0) TellRepeats(key, check, Uptime());
  }
  vx::SetAssertSink(before_);
}

void AssertLog::OnAssert(const char* file, int line, const vx::StackTrace& stack) {
  const Key key(file, line);
  Check& check = checks_[key];
  const std::time_t now = Uptime();
  if (check.whole < kWholeRecords) {
    ++check.whole;
    check.lastTold = now;
    wantsStacks_ = true;
    WriteWhole(key, stack);
    return;
  }
  // The next record may be the first of another check; it is then written without its calls, and
  // the ones after it carry them again.
  wantsStacks_ = false;
  ++check.untold;
  if (now - check.lastTold >= kSecondsBetweenSummaries) TellRepeats(key, check, now);
}

void AssertLog::WriteWhole(const Key& key, const vx::StackTrace& stack) {
  Log::Warning("assertion: " + key.first + ":" + std::to_string(key.second));
  if (stack.Size() == 0) return;
  std::istringstream calls(vx::Symbolise(stack));
  for (std::string call; std::getline(calls, call);) Log::Warning("    " + call);
}

void AssertLog::TellRepeats(const Key& key, Check& check, std::time_t now) {
  Log::Warning("assertion: " + key.first + ":" + std::to_string(key.second) + " repeated " +
               std::to_string(check.untold) + " times");
  check.untold = 0;
  check.lastTold = now;
}

}  // namespace controller
