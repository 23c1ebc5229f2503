#include "controller/Log.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "controller/Printable.h"

namespace controller {

namespace {

LogLevel mostVerbose = LogLevel::kInfo;
bool journalReads = false;
/// Lines that could not be written, and have not been told of yet.
unsigned long unread = 0;

/// How long a reader may take, once.
constexpr int kReaderPauseMs = 5;

const char* Name(LogLevel level) {
  switch (level) {
    case LogLevel::kError:
      return "error  ";
    case LogLevel::kWarning:
      return "warning";
    case LogLevel::kInfo:
      return "info   ";
    default:
      return "debug  ";
  }
}

std::string Format(const char* format, const tm& fields) {
  std::array<char, 64> text{};
  return {text.data(), std::strftime(text.data(), text.size(), format, &fields)};
}

/// Whether `fd` takes up to `PIPE_BUF` bytes at once. Somebody who has stopped reading must not
/// stop the house.
bool TakesMore(int fd) {
  pollfd waiting{fd, POLLOUT, 0};
  return poll(&waiting, 1, unread == 0 ? kReaderPauseMs : 0) == 1;
}

/// In one piece where the system lets it, so that lines of several processes do not mix. False
/// where the reader does not keep up.
bool WriteAll(int fd, std::string_view text) {
  while (!text.empty()) {
    if (!TakesMore(fd)) return false;
    const ssize_t written = ::write(fd, text.data(), std::min<std::size_t>(text.size(), PIPE_BUF));
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return true;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace

void Log::Configure(LogLevel level) {
  mostVerbose = level;
  journalReads = IsJournalStream(STDERR_FILENO, std::getenv("JOURNAL_STREAM"));
}

bool Log::Wants(LogLevel level) { return level <= mostVerbose; }

void Log::Write(LogLevel level, std::string_view text) {
  if (!Wants(level)) return;
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  const int keptErrno = errno;
  if (unread > 0) {
    const std::string gap = std::to_string(unread) + " lines are missing here: nobody read the log";
    if (WriteAll(STDERR_FILENO, FormatLogLine(LogLevel::kWarning, gap, journalReads, now))) {
      unread = 0;
    }
  }
  const bool taken =
      unread == 0 && WriteAll(STDERR_FILENO, FormatLogLine(level, text, journalReads, now));
  if (!taken) ++unread;
  errno = keptErrno;
}

std::string FormatLogLine(LogLevel level, std::string_view text, bool journal,
                          const timespec& now) {
  const std::string body = Printable(text) + '\n';
  if (journal) return '<' + std::to_string(static_cast<int>(level)) + '>' + body;
  tm fields{};
  if (localtime_r(&now.tv_sec, &fields) == nullptr) fields = {};
  std::array<char, 8> millis{};
  std::snprintf(millis.data(), millis.size(), ".%03d", static_cast<int>(now.tv_nsec / 1000000));
  return Format("%Y-%m-%dT%H:%M:%S", fields) + millis.data() + OffsetText(now.tv_sec) + ' ' +
         Name(level) + ' ' + body;
}

bool IsJournalStream(int fd, const char* journalStream) {
  unsigned long long device = 0;
  unsigned long long inode = 0;
  struct stat file {};
  if (journalStream == nullptr || fstat(fd, &file) != 0) return false;
  if (std::sscanf(journalStream, "%llu:%llu", &device, &inode) != 2) return false;
  return file.st_dev == device && file.st_ino == inode;
}

std::string LocalTimeText(std::time_t moment) {
  tm fields{};
  if (localtime_r(&moment, &fields) == nullptr) return "an unknown time";
  return Format("%Y-%m-%d %H:%M:%S", fields);
}

std::string OffsetText(std::time_t moment) {
  tm fields{};
  if (localtime_r(&moment, &fields) == nullptr) return "+00:00";
  const long minutes = std::labs(fields.tm_gmtoff) / 60;
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%c%02ld:%02ld", fields.tm_gmtoff < 0 ? '-' : '+',
                minutes / 60, minutes % 60);
  return text.data();
}

}  // namespace controller
