#include "controller/Signals.h"

#include <csignal>
#include <utility>

#include "controller/Failure.h"

namespace controller {

namespace {

constexpr int kAnswered[] = {SIGTERM, SIGINT, SIGHUP};

sigset_t AnsweredSet() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : kAnswered) sigaddset(&set, signal);
  return set;
}

}  // namespace

Signals::Signals(event_base* base, std::function<void(int)> onSignal)
    : base_(base), onSignal_(std::move(onSignal)) {
  std::signal(SIGPIPE, SIG_IGN);
  // A file that may not grow any further is a disk that is full, and no reason to end.
  std::signal(SIGXFSZ, SIG_IGN);
  for (const int signal : kAnswered) {
    events_.push_back(MakeLoopEvent(base, signal, EV_SIGNAL | EV_PERSIST, OnSignal, this));
    if (event_add(events_.back().get(), nullptr) != 0) {
      throw Failure("signal " + std::to_string(signal) + " cannot be answered");
    }
  }
  // Whoever started this program may have blocked them.
  const sigset_t set = AnsweredSet();
  sigprocmask(SIG_UNBLOCK, &set, nullptr);
}

Signals::~Signals() {
  // Before the events go: they put the default action back, which is to die.
  const sigset_t set = AnsweredSet();
  sigprocmask(SIG_BLOCK, &set, nullptr);
}

void Signals::OnSignal(int signal, short, void* argument) {
  auto& self = *static_cast<Signals*>(argument);
  Guarded(self.base_, [&] { self.onSignal_(signal); });
}

}  // namespace controller
