#include "controller/cli/net/StopSignals.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <poll.h>
#include <string>
#include <sys/signalfd.h>
#include <unistd.h>

#include "controller/Failure.h"

namespace controller::cli {

namespace {

sigset_t Stopping() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGINT);
  sigaddset(&set, SIGTERM);
  return set;
}

long MillisecondsUntil(std::chrono::steady_clock::time_point end) {
  const auto left = end - std::chrono::steady_clock::now();
  return std::max(
      0L, static_cast<long>(std::chrono::duration_cast<std::chrono::milliseconds>(left).count()));
}

}  // namespace

StopSignals::StopSignals() {
  const sigset_t set = Stopping();
  fd_ = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
  if (fd_ < 0) throw Failure(std::string("cannot wait for signals: ") + std::strerror(errno));
  sigprocmask(SIG_BLOCK, &set, nullptr);
}

StopSignals::~StopSignals() {
  close(fd_);
  // One that came is answered by the end of the program, which this is a part of.
  const sigset_t set = Stopping();
  const timespec none{};
  while (sigtimedwait(&set, nullptr, &none) > 0) {
  }
  sigprocmask(SIG_UNBLOCK, &set, nullptr);
}

bool StopSignals::Came() const { return WaitFor(0); }

bool StopSignals::WaitFor(long milliseconds) const {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  while (true) {
    pollfd wait{fd_, POLLIN, 0};
    const int count = poll(&wait, 1, static_cast<int>(MillisecondsUntil(end)));
    if (count > 0) return true;
    if (count == 0 || errno != EINTR) return false;
  }
}

}  // namespace controller::cli
