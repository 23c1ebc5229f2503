#include "controller/ProjectLock.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "controller/Failure.h"
#include "controller/Log.h"
#include "controller/Printable.h"

namespace controller {

namespace {

/// A holder that was killed may hold it a little longer: in a write that the disk has not finished,
/// or in the copy that a program which it was just starting still has.
constexpr auto kPatience = std::chrono::seconds(1);
constexpr auto kPause = std::chrono::milliseconds(10);

bool TakeWithin(std::chrono::steady_clock::duration patience, int fd) {
  const auto end = std::chrono::steady_clock::now() + patience;
  while (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
    const int why = errno;
    if ((why != EWOULDBLOCK && why != EINTR) || std::chrono::steady_clock::now() >= end) {
      errno = why;
      return false;
    }
    std::this_thread::sleep_for(kPause);
  }
  return true;
}

[[noreturn]] void FailOn(const std::filesystem::path& file, int why) {
  throw Failure("lock file " + Quoted(file.string()) + ": " + std::strerror(why) +
                "; the project's folder must be writable, or give another --project");
}

/// What the holder has written about itself; it may not have come to that yet.
std::string HolderOf(int fd) {
  std::array<char, 200> text{};
  const ssize_t size = ::pread(fd, text.data(), text.size(), 0);
  if (size <= 0) return "another process";
  return Printable({text.data(), static_cast<std::size_t>(size)});
}

/// Whether the file that was opened is still the one of that name: its holder takes it away when it
/// ends, perhaps between our opening and our locking it.
bool IsStillThere(const std::filesystem::path& path, int fd) {
  struct stat opened {};
  struct stat named {};
  return ::fstat(fd, &opened) == 0 && ::stat(path.c_str(), &named) == 0 &&
         opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

}  // namespace

ProjectLock::ProjectLock(const std::filesystem::path& project, const std::string& use)
    : path_(project.string() + ".lock") {
  for (;;) {
    fd_ = ::open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
    if (fd_ < 0) FailOn(path_, errno);
    if (!TakeWithin(kPatience, fd_)) {
      const int why = errno;
      const std::string holder = HolderOf(fd_);
      ::close(fd_);
      if (why != EWOULDBLOCK) FailOn(path_, why);
      throw Failure("project " + Quoted(project.string()) + " is in use by " + holder +
                    "; stop that first, or give another --project");
    }
    if (IsStillThere(path_, fd_)) break;
    ::close(fd_);
  }
  const std::string who = "\"vexalink " + use + "\", process " + std::to_string(::getpid()) +
                          ", since " + LocalTimeText(std::time(nullptr));
  // Who it is only serves the message above: a disk that is full does not stop the program here.
  if (::ftruncate(fd_, 0) != 0 || ::pwrite(fd_, who.data(), who.size(), 0) < 0) {
    Log::Warning("lock file " + Quoted(path_.string()) + ": " + std::strerror(errno));
  }
}

ProjectLock::~ProjectLock() {
  ::unlink(path_.c_str());
  ::close(fd_);
}

}  // namespace controller
