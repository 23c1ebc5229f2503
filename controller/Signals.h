#pragma once

#include <functional>
#include <vector>

#include "controller/Loop.h"

namespace controller {

/// The signals that a running controller answers, delivered on the loop: SIGTERM and SIGINT end it,
/// SIGHUP re-reads the time zone. SIGPIPE is ignored. Signals that come before the loop runs are
/// answered when it does; those that come when this has gone stay without effect, so that
/// impatience during the end does no harm.
class Signals {
 public:
  Signals(event_base* base, std::function<void(int signal)> onSignal);
  ~Signals();
  Signals(const Signals&) = delete;
  Signals& operator=(const Signals&) = delete;

 private:
  static void OnSignal(int signal, short, void* self);

  event_base* base_;
  std::function<void(int)> onSignal_;
  std::vector<LoopEvent> events_;
};

}  // namespace controller
