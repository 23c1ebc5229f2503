#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <sys/types.h>

namespace controller {

/// A file that is written line by line as things happen. Each line is in the file when the
/// operation returns, so that it is there also where the program ends in a crash. Where the file
/// cannot be written any more, its last whole line is the end of it, the log says so, and
/// everything after is let pass.
class RecordFile {
 public:
  /// Tells whether a file that is in the way begins like an earlier record.
  using IsRecord = std::function<bool(const std::string& firstLine)>;

  /// Begins a new file. An earlier record of that name is kept as "NAME.1", or the next number that
  /// is free; any other file is left alone. Throws a `Failure`.
  RecordFile(std::filesystem::path file, IsRecord isRecord);
  ~RecordFile();
  RecordFile(const RecordFile&) = delete;
  RecordFile& operator=(const RecordFile&) = delete;

  /// One line or several, with their ends.
  void Append(const std::string& lines);
  /// Writes over what was appended last.
  void ReplaceLast(const std::string& lines);
  /// Ends this file, which is kept under a number, and begins anew.
  void BeginAnew();

 private:
  void Open();
  void MoveAside() const;
  void Write(const std::string& lines);
  void GiveUp(int error);

  std::filesystem::path file_;
  IsRecord isRecord_;
  int fd_ = -1;
  off_t last_ = 0;
  off_t end_ = 0;
};

}  // namespace controller
