#include "controller/cli/net/SseReader.h"

#include "controller/Failure.h"
#include "controller/cli/parse/TextParts.h"

namespace controller::cli {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr long kLongestRetry = 3600000;

}  // namespace

void SseReader::Feed(std::string_view bytes) {
  for (const char c : bytes) {
    // "\r\n" is one line end.
    const bool second = afterReturn_ && c == '\n';
    afterReturn_ = c == '\r';
    if (second) continue;
    if (c == '\r' || c == '\n') {
      TakeLine();
      line_.clear();
      continue;
    }
    line_ += c;
    if (line_.size() > limit_) throw Failure("the stream has a line without end");
  }
}

void SseReader::Restart() {
  line_.clear();
  type_.clear();
  data_.clear();
  hasData_ = false;
  afterReturn_ = false;
  atBegin_ = true;
  id_ = lastId_;
}

void SseReader::TakeLine() {
  std::string_view line = line_;
  if (atBegin_ && line.starts_with(kByteOrderMark)) line.remove_prefix(kByteOrderMark.size());
  atBegin_ = false;
  if (line.empty()) {
    Dispatch();
    return;
  }
  const std::size_t colon = line.find(':');
  if (colon == 0) return;  // a comment
  std::string_view value = colon == std::string_view::npos ? "" : line.substr(colon + 1);
  if (value.starts_with(' ')) value.remove_prefix(1);
  TakeField(line.substr(0, colon), value);
}

void SseReader::TakeField(std::string_view name, std::string_view value) {
  if (name == "event") {
    type_ = value;
  } else if (name == "data") {
    if (hasData_) data_ += '\n';
    data_ += value;
    hasData_ = true;
    if (data_.size() > limit_) throw Failure("the stream has an event without end");
  } else if (name == "id") {
    if (value.find('\0') == std::string_view::npos) id_ = value;
  } else if (name == "retry") {
    if (const auto milliseconds = ReadNumber(value, kLongestRetry)) retry_ = *milliseconds;
  }
}

void SseReader::Dispatch() {
  lastId_ = id_;
  const SseEvent event{type_.empty() ? "message" : type_, data_, lastId_};
  const bool complete = hasData_;
  type_.clear();
  data_.clear();
  hasData_ = false;
  if (complete) handler_(event);
}

}  // namespace controller::cli
