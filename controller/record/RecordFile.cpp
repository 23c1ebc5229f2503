#include "controller/record/RecordFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <unistd.h>
#include <utility>

#include "controller/Failure.h"
#include "controller/Log.h"
#include "controller/Printable.h"

namespace controller {

namespace fs = std::filesystem;

RecordFile::RecordFile(fs::path file, IsRecord isRecord)
    : file_(std::move(file)), isRecord_(std::move(isRecord)) {
  MoveAside();
  Open();
}

RecordFile::~RecordFile() {
  if (fd_ >= 0) ::close(fd_);
}

void RecordFile::Open() {
  fd_ = ::open(file_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (fd_ >= 0) return;
  throw Failure("cannot record to " + Quoted(file_.string()) + ": " + std::strerror(errno) +
                    "; give another file",
                ExitStatus::kBadInput);
}

void RecordFile::MoveAside() const {
  std::error_code ignored;
  const fs::file_status there = fs::symlink_status(file_, ignored);
  if (!fs::exists(there)) return;
  std::string first;
  if (fs::is_regular_file(there)) std::getline(std::ifstream(file_) >> std::ws, first);
  const bool empty = fs::is_regular_file(there) && fs::file_size(file_, ignored) == 0;
  if (!empty && !isRecord_(first)) {
    throw Failure(
        Quoted(file_.string()) + " is there already and no earlier recording; give another file",
        ExitStatus::kBadInput);
  }
  for (int number = 1;; ++number) {
    const fs::path kept = file_.string() + '.' + std::to_string(number);
    if (fs::exists(fs::symlink_status(kept, ignored))) continue;
    std::error_code error;
    fs::rename(file_, kept, error);
    if (!error) return;
    throw Failure("cannot keep the recording " + Quoted(file_.string()) + " as " +
                      Quoted(kept.string()) + ": " + error.message(),
                  ExitStatus::kBadInput);
  }
}

void RecordFile::Append(const std::string& lines) {
  last_ = end_;
  Write(lines);
}

void RecordFile::ReplaceLast(const std::string& lines) { Write(lines); }

void RecordFile::Write(const std::string& lines) {
  if (fd_ < 0) return;
  for (std::size_t done = 0; done < lines.size();) {
    const off_t at = last_ + static_cast<off_t>(done);
    const ssize_t written = ::pwrite(fd_, lines.data() + done, lines.size() - done, at);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return GiveUp(written < 0 ? errno : ENOSPC);
    done += static_cast<std::size_t>(written);
  }
  const off_t end = last_ + static_cast<off_t>(lines.size());
  if (end < end_ && ::ftruncate(fd_, end) != 0) return GiveUp(errno);
  end_ = end;
}

void RecordFile::GiveUp(int error) {
  // What was begun of the last line would be no line.
  const bool whole = ::ftruncate(fd_, last_) == 0;
  ::close(std::exchange(fd_, -1));
  Log::Error("the recording to " + Quoted(file_.string()) + " has ended: " + std::strerror(error) +
             (whole ? "; what it holds until then can be played" : "") +
             ". The controller goes on without it");
}

void RecordFile::BeginAnew() {
  if (fd_ < 0) return;
  ::close(std::exchange(fd_, -1));
  last_ = end_ = 0;
  try {
    MoveAside();
    Open();
  } catch (const Failure& failure) {
    Log::Error(std::string(failure.what()) + ". The controller goes on without a recording");
  }
}

}  // namespace controller
