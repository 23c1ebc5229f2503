#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <event2/event.h>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "controller/Loop.h"
#include "controller/http/Http.h"

namespace controller {

/// What a stream bears at most.
struct EventStreamLimits {
  std::size_t clients = 256;
  /// What is kept for those who come again.
  std::size_t events = 1000;
  std::size_t bytes = 4UL << 20;
  /// A client that has so much to read is dropped; it may come again.
  std::size_t unread = 1UL << 20;
  /// In milliseconds.
  long heartbeat = 15000;
};

/// What happens, told to everybody who listens, as server-sent events. Each has an id "EPOCH-N":
/// the epoch is another for each stream that ever was, N counts up. Who comes again and says which
/// was the last gets what was missed, or `reset` where that is not known any longer. From the loop
/// only.
class EventStream {
 public:
  /// Whether the one who began to listen with this request still may, asked at each heartbeat.
  using StillAllowed = std::function<bool(const HttpRequest& request)>;

  EventStream(event_base* base, StillAllowed stillAllowed, const EventStreamLimits& limits = {});

  /// `GET` on `path`, for the server's table. The stream must outlive the server or at least its
  /// connections.
  HttpRoute Route(const std::string& path);
  /// Tells everybody. `name` is one of docs/api.md; `json` a JSON text.
  void Publish(std::string_view name, std::string_view json);
  /// Tells everybody to read everything again.
  void PublishReset() { Publish("reset", "{}"); }

  std::size_t Clients() const { return clients_.size(); }
  std::uint64_t Published() const { return sequence_; }
  /// How many clients have been dropped because they did not read.
  std::uint64_t Dropped() const { return dropped_; }
  /// The id of the latest event.
  std::string LatestId() const { return Id(sequence_); }

 private:
  struct Client {
    HttpRequest request;
    std::unique_ptr<IHttpStream> stream;
  };
  using ClientPlace = std::list<Client>::iterator;

  static void OnHeartbeat(int, short, void* self);

  void Welcome(const HttpRequest& request, const Respond& respond);
  void Accept(const HttpRequest& request, std::unique_ptr<IHttpStream> stream);
  std::string Begin(const HttpRequest& request) const;
  std::optional<std::string> Since(std::string_view lastId) const;
  std::string Id(std::uint64_t sequence) const;
  void Tell(std::string_view text);
  void Keep(std::string frame);
  void Leave(ClientPlace client);

  event_base* base_;
  StillAllowed stillAllowed_;
  EventStreamLimits limits_;
  std::string epoch_;
  std::uint64_t sequence_ = 0;
  /// The latest events as they are sent; the last of them has the number `sequence_`.
  std::deque<std::string> kept_;
  std::size_t keptBytes_ = 0;
  std::uint64_t dropped_ = 0;
  LoopEvent heartbeat_;
  std::list<Client> clients_;
};

}  // namespace controller
