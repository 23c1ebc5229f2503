#pragma once

#include <ctime>
#include <map>
#include <string>
#include <utility>

#include "framework/AssertSink.h"

namespace controller {

/// Writes assertion records to the log, and keeps a defective event from filling the disk: of each
/// check (file and line) the first three records are written whole, with the calls that led to
/// them; what repeats after that is counted, and one line an hour, and one at the end, tells how
/// often. The process's assertion sink for as long as it lives.
class AssertLog : public vx::IAssertSink {
 public:
  AssertLog();
  /// Tells what has been counted and not told yet, and puts the sink before in its place again.
  ~AssertLog();
  AssertLog(const AssertLog&) = delete;
  AssertLog& operator=(const AssertLog&) = delete;

  void OnAssert(const char* file, int line, const vx::StackTrace& stack) override;
  /// False while records only repeat: making a stack is the dear part of a record.
  bool WantsStacks() const override { return wantsStacks_; }

 private:
  struct Check {
    int whole = 0;
    unsigned long untold = 0;
    std::time_t lastTold = 0;
  };
  using Key = std::pair<std::string, int>;

  void WriteWhole(const Key& key, const vx::StackTrace& stack);
  void TellRepeats(const Key& key, Check& check, std::time_t now);

  std::map<Key, Check> checks_;
  bool wantsStacks_ = true;
  vx::IAssertSink* before_;
};

}  // namespace controller
