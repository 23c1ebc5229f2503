#pragma once

#include <exception>
#include <functional>
#include <string>

#include "controller/cli/net/HttpClient.h"
#include "controller/cli/net/SseReader.h"
#include "controller/cli/net/StopSignals.h"

namespace controller::cli {

/// Follows the stream of a controller, over as many connections as it takes.
class EventStream {
 public:
  using Note = std::function<void(const std::string&)>;

  /// `note` is told when the connection is lost and when it is there again.
  EventStream(const HttpClient& http, SseReader::Handler handler, Note note);

  /// Until SIGINT or SIGTERM comes, or nobody reads standard output any longer. Throws a `Failure`
  /// where the first connection fails, the controller refuses, or the handler throws.
  void Follow();

 private:
  enum class End { kStopped, kLost };

  End FollowOnce(const StopSignals& stop);
  End Wait(CURLM* multi, const StopSignals& stop);
  /// Throws where the connection has ended in a way that trying again does not mend.
  void Judge(CURL* easy);
  static std::size_t TakeBytes(char* data, std::size_t one, std::size_t count, void* self) noexcept;
  void Take(std::string_view bytes);

  const HttpClient& http_;
  SseReader reader_;
  Note note_;
  CURL* easy_ = nullptr;
  bool everConnected_ = false;
  bool connected_ = false;
  bool toldLost_ = false;
  /// What came instead of a stream.
  std::string refusal_;
  std::string trouble_;
  std::exception_ptr thrown_;
};

}  // namespace controller::cli
