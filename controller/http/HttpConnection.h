#pragma once

#include <deque>
#include <event2/buffer.h>
#include <event2/bufferevent.h>
#include <event2/http.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "controller/Loop.h"
#include "controller/http/Http.h"
#include "controller/http/HttpLimits.h"
#include "controller/http/ListenAddress.h"
#include "controller/http/RequestFramer.h"

namespace controller {

/// A request whose head has been judged: either somebody is there to answer it, or it is refused.
struct JudgedRequest {
  HttpRequest request;
  /// As it came.
  std::string method;
  std::string target;
  const HttpRoute* route = nullptr;
  std::optional<HttpResponse> refusal;
};

/// Stands between a socket and evhttp and lets only such bytes through as are a request. evhttp is
/// lax about where a request ends, waits for ever for one that trickles in, takes a whole body
/// before anybody can say no, and refuses with pages of its own; so every byte is read here first
/// (see `RequestFramer`), as it is added to the buffer that evhttp is about to read, and where
/// something is wrong the buffer is emptied and the refusal is sent from here.
class HttpConnection final : private RequestFramer::IReader {
 public:
  class IOwner {
   public:
    /// Whether one more may be served; the connection itself is counted already.
    virtual bool HasRoom() const = 0;
    /// Judges a head; a refusal is part of the answer. Must not throw.
    virtual JudgedRequest Judge(const RequestHead& head, const HttpConnection& connection) = 0;
    /// A request was refused here and not by an answer through evhttp.
    virtual void OnRefused(const HttpConnection& connection, int status) = 0;
    /// The connection has ended; it may be destroyed now.
    virtual void OnEnded(HttpConnection& connection) = 0;

   protected:
    ~IOwner() = default;
  };
  /// Who is at work on the request that was handed out last, and is told when it has become void.
  class ITenant {
   public:
    /// The connection, and the request with it, is about to go.
    virtual void OnConnectionGone() = 0;

   protected:
    ~ITenant() = default;
  };

  /// Makes the buffers that evhttp is to use for a new connection. Throws a `Failure`.
  HttpConnection(event_base* base, IOwner& owner, const HttpLimits& limits);
  ~HttpConnection();
  HttpConnection(const HttpConnection&) = delete;
  HttpConnection& operator=(const HttpConnection&) = delete;

  bufferevent* Buffers() const { return buffers_; }
  ListenAddress Local() const;
  ListenAddress Peer() const;

  /// evhttp has read the next request: what was made of it. Nothing where none is expected.
  std::optional<JudgedRequest> TakeRequest();
  /// Who answers it now; null: nobody any longer.
  void SetTenant(ITenant* tenant) { tenant_ = tenant; }
  /// The answer is under way: nothing is read until it is sent.
  void OnAnswering();
  /// The answer has been sent.
  void OnAnswered();
  /// The answer goes on and on: what the client says from now on is dropped.
  void OnStreaming();
  /// Ends the connection without a word, from the loop, not from inside the call.
  void Cut();

 private:
  /// What is being waited for.
  enum class State { kOpening, kIdle, kHead, kBody, kAnswering, kStreaming, kLingering };

  std::size_t OnHead(RequestHead head) override;
  void OnRequestEnd() override {}

  static void OnInput(evbuffer* input, const evbuffer_cb_info* info, void* self);
  static void OnTimer(int, short, void* self);
  static void OnClose(evhttp_connection* connection, void* self);

  void Open();
  void Read(evbuffer* input, std::size_t from);
  void Pass(evbuffer* input, std::size_t from, std::string_view bytes);
  void Expire();
  void Refuse(const HttpResponse& response);
  void DropInput();
  void Wait(State state);
  void WaitForMore();
  int Socket() const;

  event_base* base_;
  IOwner& owner_;
  const HttpLimits& limits_;
  RequestFramer framer_;
  LoopEvent timer_;
  bufferevent* buffers_ = nullptr;
  evhttp_connection* connection_ = nullptr;
  evbuffer_cb_entry* watch_ = nullptr;
  State state_ = State::kOpening;
  /// The buffer is being changed by `Pass`.
  bool passing_ = false;
  std::deque<JudgedRequest> judged_;
  ITenant* tenant_ = nullptr;
};

}  // namespace controller
