#include "controller/programming/ChildProcess.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

#include "controller/Failure.h"

namespace controller {

namespace {

constexpr std::size_t kKeptBytes = 4096;
constexpr long kAskMilliseconds = 20;
constexpr int kKillWaits = 100;
constexpr useconds_t kKillWaitMicroseconds = 5000;

void Close(int& fd) {
  if (fd >= 0) close(fd);
  fd = -1;
}

// Ends of programs are not told to a process that ignores SIGCHLD, as one may from its birth on.
void WantEndsOfChildren() {
  struct sigaction action {};
  if (sigaction(SIGCHLD, nullptr, &action) != 0 || action.sa_handler != SIG_IGN) return;
  action.sa_handler = SIG_DFL;
  sigaction(SIGCHLD, &action, nullptr);
}

}  // namespace

ChildProcess::ChildProcess(event_base* base, const Order& order, Done done)
    : base_(base), done_(std::move(done)), grace_(order.graceMilliseconds) {
  WantEndsOfChildren();
  int ends[2] = {-1, -1};
  if (pipe2(ends, O_CLOEXEC) != 0) throw Failure("no pipe for the output can be made");
  output_ = ends[0];
  try {
    // The reading end only: the program is to find an ordinary one.
    fcntl(output_, F_SETFL, O_NONBLOCK);
    timeUp_ = MakeLoopEvent(
        base, -1, 0,
        [](int, short, void* argument) {
          auto& self = *static_cast<ChildProcess*>(argument);
          Guarded(self.base_, [&] { self.OnTimeUp(); });
        },
        this);
    WatchOutput();
    Spawn(order, ends[1]);
    Close(ends[1]);
    WatchEnd(order.pidfd);
  } catch (...) {
    Close(ends[1]);
    KillAndReap();
    throw;
  }
  SetTimer(order.timeoutMilliseconds);
}

ChildProcess::~ChildProcess() { KillAndReap(); }

void ChildProcess::KillAndReap() {
  outputReady_.reset();
  endReady_.reset();
  if (pid_ > 0) {
    SignalGroup(SIGKILL);
    // A killed process ends at once, but where the kernel itself is stuck with it.
    for (int i = 0; i < kKillWaits && waitpid(pid_, nullptr, WNOHANG) == 0; ++i) {
      usleep(kKillWaitMicroseconds);
    }
  }
  Close(output_);
  Close(pidfd_);
}

void ChildProcess::WatchOutput() {
  outputReady_ = MakeLoopEvent(
      base_, output_, EV_READ | EV_PERSIST,
      [](int, short, void* argument) {
        auto& self = *static_cast<ChildProcess*>(argument);
        Guarded(self.base_, [&] { self.ReadOutput(); });
      },
      this);
  event_add(outputReady_.get(), nullptr);
}

void ChildProcess::WatchEnd(bool byPidfd) {
  const auto callback = [](int, short, void* argument) {
    auto& self = *static_cast<ChildProcess*>(argument);
    Guarded(self.base_, [&] { self.OnEnded(); });
  };
  if (byPidfd) pidfd_ = static_cast<int>(syscall(SYS_pidfd_open, pid_, 0));
  endReady_ = pidfd_ >= 0 ? MakeLoopEvent(base_, pidfd_, EV_READ, callback, this)
                          : MakeLoopEvent(base_, -1, EV_PERSIST, callback, this);
  const timeval ask = Milliseconds(kAskMilliseconds);
  event_add(endReady_.get(), pidfd_ >= 0 ? nullptr : &ask);
}

void ChildProcess::ReadOutput() {
  char bytes[16384];
  const ssize_t count = read(output_, bytes, sizeof bytes);
  if (count > 0) {
    const std::size_t room = kKeptBytes - kept_.size();
    kept_.append(bytes, std::min(room, static_cast<std::size_t>(count)));
    return;
  }
  if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
  outputReady_.reset();
  Close(output_);
  // Nobody of the group holds the output any longer: there is nobody to give time to.
  if (ended_) Finish();
}

// Leaves the end to be taken: until then nobody else gets the number.
bool ChildProcess::HasEnded() const {
  siginfo_t info{};
  const int done = waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOHANG | WNOWAIT);
  return done != 0 || info.si_pid != 0;
}

void ChildProcess::OnEnded() {
  if (!HasEnded()) return;  // asked too early
  endReady_.reset();
  ended_ = true;
  const bool groupMayLive = state_ == State::kTerminated && output_ >= 0;
  if (!groupMayLive) Finish();
}

void ChildProcess::OnTimeUp() {
  if (state_ == State::kRunning) {
    timedOut_ = true;
    Terminate();
    return;
  }
  const bool killedInVain = state_ == State::kKilled;
  state_ = State::kKilled;
  SignalGroup(SIGKILL);
  if (ended_ || killedInVain) return Finish();
  SetTimer(grace_);
}

void ChildProcess::Terminate() {
  if (state_ != State::kRunning) return;
  state_ = State::kTerminated;
  SignalGroup(SIGTERM);
  SetTimer(grace_);
}

void ChildProcess::Finish() {
  // What was told to end is to leave nobody behind.
  if (state_ != State::kRunning) SignalGroup(SIGKILL);
  while (output_ >= 0 && kept_.size() < kKeptBytes) {
    const std::size_t before = kept_.size();
    char bytes[kKeptBytes];
    const ssize_t count = read(output_, bytes, kKeptBytes - before);
    if (count <= 0) break;
    kept_.append(bytes, static_cast<std::size_t>(count));
  }
  outputReady_.reset();
  endReady_.reset();
  timeUp_.reset();
  Close(output_);
  End end;
  int status = 0;
  if (waitpid(pid_, &status, WNOHANG) == pid_) end.status = status;
  pid_ = 0;
  end.timedOut = timedOut_;
  end.output = std::move(kept_);
  const Done done = std::move(done_);
  done(end);  // `this` may be gone now
}

void ChildProcess::SignalGroup(int signal) const {
  if (pid_ > 0) kill(-pid_, signal);
}

void ChildProcess::SetTimer(long milliseconds) {
  const timeval delay = Milliseconds(milliseconds);
  event_add(timeUp_.get(), &delay);
}

}  // namespace controller
