#pragma once

#include <ctime>
#include <string>
#include <string_view>

namespace controller {

/// How much a line matters; the numbers are syslog's.
enum class LogLevel : int { kError = 3, kWarning = 4, kInfo = 6, kDebug = 7 };

/// The program's log, on standard error: one line per record, made printable (see `Printable`) so
/// that no text from outside can forge a line. When the service manager's journal reads standard
/// error a line begins with `<level>` and has no time, since the journal keeps both. Driver's
/// thread only. A line that cannot be written is lost; logging never fails, never ends the program,
/// and never waits for a reader that has stopped: how many lines are missing is told once it reads
/// on.
class Log {
 public:
  /// Lines that matter less than `level` are left out from now on. Also finds out who reads
  /// standard error. Until then everything from `kInfo` up is written in the form for people.
  static void Configure(LogLevel level);
  static bool Wants(LogLevel level);

  static void Write(LogLevel level, std::string_view text);
  static void Error(std::string_view text) { Write(LogLevel::kError, text); }
  static void Warning(std::string_view text) { Write(LogLevel::kWarning, text); }
  static void Info(std::string_view text) { Write(LogLevel::kInfo, text); }
  static void Debug(std::string_view text) { Write(LogLevel::kDebug, text); }
};

/// One line as it is written, line end included: `<6>text` for the journal, else
/// `2024-03-06T07:00:00.123+01:00 info    text`.
std::string FormatLogLine(LogLevel level, std::string_view text, bool journal, const timespec& now);

/// Whether the file behind `fd` is the stream that JOURNAL_STREAM (`journalStream`, may be null)
/// names by device and inode: a redirected standard error is not the journal's.
bool IsJournalStream(int fd, const char* journalStream);

/// `2024-03-06 07:00:00`, local time.
std::string LocalTimeText(std::time_t moment);

/// The zone's distance from UTC at `moment`, "+05:30".
std::string OffsetText(std::time_t moment);

}  // namespace controller
