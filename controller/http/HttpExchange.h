#pragma once

#include <event2/http.h>
#include <functional>
#include <string>

#include "controller/http/Http.h"
#include "controller/http/HttpConnection.h"

namespace controller {

/// One request and its one answer. Held by the `Respond` that its handler was given; where that
/// goes without an answer the client is told that something failed.
class HttpExchange final : private HttpConnection::ITenant {
 public:
  using Answered = std::function<void(const HttpResponse& response)>;

  /// `answered` is told the answer as it is sent.
  HttpExchange(evhttp_request* request, HttpConnection& connection, bool bodyWanted,
               Answered answered);
  ~HttpExchange();
  HttpExchange(const HttpExchange&) = delete;
  HttpExchange& operator=(const HttpExchange&) = delete;

  /// Sends the answer. Later ones, and one whose client has gone, are dropped.
  void Answer(HttpResponse response);

 private:
  void OnConnectionGone() override;
  void AnswerWhole(const HttpResponse& response);
  void AnswerOnAndOn(const HttpResponse& response);
  void AddFields(const HttpResponse& response);

  /// Null: answered, or gone.
  evhttp_request* request_;
  HttpConnection& connection_;
  bool bodyWanted_;
  Answered answered_;
};

}  // namespace controller
