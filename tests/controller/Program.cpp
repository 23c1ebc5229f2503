#include "Program.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <linux/capability.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace {

using std::chrono::steady_clock;
constexpr auto kPatience = std::chrono::minutes(2);
constexpr auto kPause = std::chrono::milliseconds(10);

void Redirect(const std::string& file, int flags, int fd) {
  const int opened = ::open(file.c_str(), flags, 0600);
  if (opened < 0 || ::dup2(opened, fd) < 0) ::_exit(126);
  if (opened != fd) ::close(opened);
}

void Apply(const Program::Environment& environment) {
  for (const auto& [name, value] : environment) {
    if (value) {
      ::setenv(name.c_str(), value->c_str(), 1);
    } else {
      ::unsetenv(name.c_str());
    }
  }
}

void AnnounceJournal() {
  struct stat file {};
  ::fstat(STDERR_FILENO, &file);
  const std::string stream = std::to_string(file.st_dev) + ':' + std::to_string(file.st_ino);
  ::setenv("JOURNAL_STREAM", stream.c_str(), 1);
}

}  // namespace

Program::Program(std::vector<std::string> arguments) : Program(std::move(arguments), Options{}) {}

Program::Program(std::vector<std::string> arguments, Options options) {
  arguments.insert(arguments.begin(), VEXALINK_PROGRAM);
  WriteFile(folder_ / "in", options.input);
  WriteFile(folder_ / "out", "");
  WriteFile(folder_ / "err", "");
  std::filesystem::create_directory(folder_ / "home");
  pid_ = ::fork();
  if (pid_ < 0) throw std::runtime_error("fork");
  if (pid_ == 0) Become(arguments, options);
}

void Program::Become(const std::vector<std::string>& arguments, const Options& options) {
  Redirect((folder_ / "in").string(), O_RDONLY, STDIN_FILENO);
  Redirect((folder_ / "out").string(), O_WRONLY | O_APPEND, STDOUT_FILENO);
  Redirect((folder_ / "err").string(), O_WRONLY | O_APPEND, STDERR_FILENO);
  Apply({{"HOME", (folder_ / "home").string()},
         {"XDG_STATE_HOME", std::nullopt},
         {"STATE_DIRECTORY", std::nullopt},
         {"NOTIFY_SOCKET", std::nullopt},
         {"JOURNAL_STREAM", std::nullopt}});
  Apply(options.environment);
  if (options.journal) AnnounceJournal();
  if (options.prepare) options.prepare();
  std::vector<char*> argv;
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  ::execv(argv[0], argv.data());
  ::_exit(127);
}

Program::~Program() {
  if (HasEnded()) return;
  ::kill(pid_, SIGKILL);
  ::waitpid(pid_, nullptr, 0);
}

void Program::Signal(int signal) const {
  if (!status_) ::kill(pid_, signal);
}

bool Program::HasEnded() {
  int status = 0;
  if (!status_ && ::waitpid(pid_, &status, WNOHANG) == pid_) {
    status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }
  return status_.has_value();
}

bool Program::WaitFor(const std::string& text) {
  const auto end = steady_clock::now() + kPatience;
  while (steady_clock::now() < end) {
    const bool ended = HasEnded();  // before the last look, so that nothing is missed
    if (Err().find(text) != std::string::npos) return true;
    if (ended) return false;
    std::this_thread::sleep_for(kPause);
  }
  return false;
}

int Program::Wait() {
  const auto end = steady_clock::now() + kPatience;
  while (!HasEnded() && steady_clock::now() < end) std::this_thread::sleep_for(kPause);
  return status_.value_or(-1);
}

int Program::Stop() {
  Signal(SIGTERM);
  return Wait();
}

bool GiveUpOverride() {
  if (::geteuid() != 0) return true;
  return ::prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, 0, 0, 0) == 0 &&
         ::prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH, 0, 0, 0) == 0;
}
