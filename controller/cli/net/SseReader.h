#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace controller::cli {

/// One event of a `text/event-stream`.
struct SseEvent {
  /// "message" where the stream names none.
  std::string type;
  std::string data;
  /// The last id that the stream has told, with this event or before.
  std::string id;
};

/// Reads a `text/event-stream` (WHATWG HTML, 9.2) as it comes, in pieces of any size.
class SseReader {
 public:
  using Handler = std::function<void(const SseEvent&)>;

  /// An event, or a line, of more than `limit` bytes makes `Feed` throw a `Failure`.
  explicit SseReader(Handler handler, std::size_t limit = 16UL << 20)
      : handler_(std::move(handler)), limit_(limit) {}

  /// Calls the handler for each event that is complete.
  void Feed(std::string_view bytes);
  /// A new connection: what was begun is dropped, the last id is kept.
  void Restart();

  const std::string& LastId() const { return lastId_; }
  /// How long to wait before connecting again, in milliseconds, where the stream has said so.
  std::optional<long> Retry() const { return retry_; }

 private:
  void TakeLine();
  void TakeField(std::string_view name, std::string_view value);
  void Dispatch();

  Handler handler_;
  std::size_t limit_;
  std::string line_;
  bool afterReturn_ = false;
  bool atBegin_ = true;
  std::string type_;
  std::string data_;
  bool hasData_ = false;
  std::string id_;
  std::string lastId_;
  std::optional<long> retry_;
};

}  // namespace controller::cli
