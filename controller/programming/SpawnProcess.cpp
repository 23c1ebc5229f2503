// How a program is started.

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include "controller/Failure.h"
#include "controller/Printable.h"
#include "controller/programming/ChildProcess.h"

namespace controller {

namespace {

// Frees what posix_spawn is told.
struct Told {
  Told() {
    posix_spawn_file_actions_init(&files);
    posix_spawnattr_init(&attributes);
  }
  ~Told() {
    posix_spawn_file_actions_destroy(&files);
    posix_spawnattr_destroy(&attributes);
  }
  Told(const Told&) = delete;
  Told& operator=(const Told&) = delete;

  posix_spawn_file_actions_t files;
  posix_spawnattr_t attributes;
};

void Must(int error) {
  if (error != 0) throw Failure(std::string("no program can be started: ") + std::strerror(error));
}

void TellFiles(Told& told, int outputEnd) {
  Must(posix_spawn_file_actions_addopen(&told.files, STDIN_FILENO, "/dev/null", O_RDONLY, 0));
  Must(posix_spawn_file_actions_adddup2(&told.files, outputEnd, STDOUT_FILENO));
  Must(posix_spawn_file_actions_adddup2(&told.files, outputEnd, STDERR_FILENO));
  // Also those that some library has opened without closing them to programs.
  Must(posix_spawn_file_actions_addclosefrom_np(&told.files, STDERR_FILENO + 1));
  Must(posix_spawn_file_actions_addchdir_np(&told.files, "/"));
}

void TellAttributes(Told& told) {
  sigset_t none;
  sigset_t all;
  sigemptyset(&none);
  sigfillset(&all);
  Must(posix_spawnattr_setsigmask(&told.attributes, &none));
  Must(posix_spawnattr_setsigdefault(&told.attributes, &all));
  Must(posix_spawnattr_setflags(
      &told.attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF));
}

std::vector<char*> Pointers(const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  // Nobody writes to them: that is how the C library takes what it only reads.
  for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

std::string WhyNot(const std::string& program, int error) {
  const std::string cannot = "cannot run " + Quoted(program) + ": ";
  switch (error) {
    case ENOENT:
      return cannot + "no such program, or what its first line names is missing";
    case EACCES:
      return cannot + "it may not be executed";
    case ENOEXEC:
      return cannot + "it is no program; a script needs a first line such as #!/bin/sh";
    case E2BIG:
      return cannot + "its arguments are too long";
    default:
      return cannot + std::strerror(error);
  }
}

}  // namespace

void ChildProcess::Spawn(const Order& order, int outputEnd) {
  Told told;
  TellFiles(told, outputEnd);
  TellAttributes(told);
  const std::vector<char*> argv = Pointers(order.argv);
  const std::vector<char*> environment = Pointers(order.environment);
  const int error =
      posix_spawnp(&pid_, argv[0], &told.files, &told.attributes, argv.data(), environment.data());
  if (error == 0) return;
  pid_ = 0;
  throw Failure(WhyNot(order.argv[0], error));
}

}  // namespace controller
