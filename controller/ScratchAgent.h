#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "controller/DriverInstance.h"
#include "controller/Place.h"
#include "framework/AssertSink.h"

namespace controller {

class ScratchHost;

/// A scheduler that is asked what it would make of something, and then thrown away: it has a place
/// and a clock but no timer, and whatever it does is ignored. The process's assertion sink for as
/// long as it lives.
class ScratchAgent final : private vx::IAssertSink {
 public:
  /// The loader must outlive it. Throws a `Failure`.
  ScratchAgent(const DriverLoader& loader, const Place& place);
  ~ScratchAgent();
  ScratchAgent(const ScratchAgent&) = delete;
  ScratchAgent& operator=(const ScratchAgent&) = delete;

  /// What the scheduler makes of one element.
  struct Answer {
    /// The event as the scheduler would keep it; null where it would not keep it.
    vx::auto_com<VxXML::INode> stored;
    /// The assertion records that it wrote, "FILE:LINE", each once.
    std::vector<std::string> assertions;
  };
  /// Offers one element, alone; nothing of it stays behind.
  Answer Offer(const VxXML::INode& event);
  /// The same, but the event stays, for what `Scheduler` is then asked.
  Answer Keep(const VxXML::INode& event);
  /// For requests.
  DriverInstance& Scheduler() { return *agent_; }

  /// What the scheduler would persist after starting with `persisted`, which must parse.
  std::string StateAfterLoading(const std::string& persisted);

 private:
  void OnAssert(const char* file, int line, const vx::StackTrace& stack) override;
  bool WantsStacks() const override { return false; }
  void Renew();

  const DriverLoader& loader_;
  std::unique_ptr<ScratchHost> host_;
  std::unique_ptr<DriverInstance> agent_;
  std::set<std::string> assertions_;
  vx::IAssertSink* before_;
};

}  // namespace controller
