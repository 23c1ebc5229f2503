#include "controller/Files.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

#include "controller/Failure.h"
#include "controller/Printable.h"

namespace controller {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void Fail(const std::string& name, const std::string& what, ExitStatus status) {
  const std::string why = std::strerror(errno);
  throw Failure(Quoted(name) + " cannot be " + what + ": " + why, status);
}

/// An open file; closed when it goes.
class OpenFile {
 public:
  OpenFile(const std::string& name, int flags, mode_t mode)
      : fd_(::open(name.c_str(), flags | O_CLOEXEC, mode)) {}
  ~OpenFile() {
    if (fd_ >= 0) ::close(fd_);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  int Fd() const { return fd_; }

 private:
  int fd_;
};

std::string ReadAll(int fd, const std::string& name, std::size_t limit) {
  std::string text;
  std::vector<char> block(64 * 1024);
  for (;;) {
    const ssize_t size = ::read(fd, block.data(), block.size());
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) Fail(name, "read", ExitStatus::kBadInput);
    if (size == 0) return text;
    text.append(block.data(), static_cast<std::size_t>(size));
    if (text.size() > limit) {
      throw Failure(Quoted(name) + " is too large: more than " +
                        std::to_string(limit / (1024 * 1024)) + " MiB",
                    ExitStatus::kBadInput);
    }
  }
}

void SyncFolderOf(const fs::path& file) {
  const OpenFile folder(file.parent_path().string(), O_RDONLY | O_DIRECTORY, 0);
  if (folder.Fd() >= 0) ::fsync(folder.Fd());
}

void WriteThenRename(const fs::path& file, std::string_view text) {
  std::string temporary = file.string() + ".XXXXXX";
  const int fd = ::mkostemp(temporary.data(), O_CLOEXEC);
  if (fd < 0) Fail(file.string(), "written", ExitStatus::kFailed);
  try {
    WriteWhole(fd, text, file.string());
    const bool done = ::fsync(fd) == 0 && ::rename(temporary.c_str(), file.c_str()) == 0;
    if (!done) Fail(file.string(), "written", ExitStatus::kFailed);
  } catch (const Failure&) {
    ::close(fd);
    ::unlink(temporary.c_str());
    throw;
  }
  ::close(fd);
  SyncFolderOf(file);
}

}  // namespace

std::string ReadWhole(const std::string& file, std::size_t limit) {
  if (file == "-") return ReadAll(STDIN_FILENO, "standard input", limit);
  const OpenFile opened(file, O_RDONLY, 0);
  if (opened.Fd() < 0) Fail(file, "read", ExitStatus::kBadInput);
  return ReadAll(opened.Fd(), file, limit);
}

void WriteWhole(int fd, std::string_view text, const std::string& name) {
  while (!text.empty()) {
    const ssize_t written = ::write(fd, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) Fail(name, "written", ExitStatus::kFailed);
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

void ReplaceFile(const fs::path& file, std::string_view text) {
  std::error_code error;
  // A link stays a link: what it points to is replaced.
  const fs::path target = fs::weakly_canonical(fs::absolute(file, error), error);
  if (error) throw Failure(Quoted(file.string()) + " cannot be written: " + error.message());
  const fs::file_status status = fs::status(target, error);
  if (!fs::exists(status) || fs::is_regular_file(status)) return WriteThenRename(target, text);
  const OpenFile opened(target.string(), O_WRONLY, 0);
  if (opened.Fd() < 0) Fail(file.string(), "written", ExitStatus::kFailed);
  WriteWhole(opened.Fd(), text, file.string());
}

}  // namespace controller
