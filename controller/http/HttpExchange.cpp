#include "controller/http/HttpExchange.h"

#include <memory>
#include <sys/socket.h>
#include <utility>

#include "controller/Failure.h"
#include "controller/Log.h"
#include "controller/http/Problem.h"
#include "controller/http/ResponseHead.h"

namespace controller {

namespace {

struct BufferFree {
  void operator()(evbuffer* buffer) const { evbuffer_free(buffer); }
};
using Buffer = std::unique_ptr<evbuffer, BufferFree>;

Buffer ToBuffer(std::string_view text) {
  Buffer buffer(evbuffer_new());
  if (buffer == nullptr || evbuffer_add(buffer.get(), text.data(), text.size()) != 0) {
    throw Failure("out of memory");
  }
  return buffer;
}

/// Where evhttp has dropped the connection under a request that is being answered, nobody but us
/// has the request any longer.
void FreeIfLeftAlone(evhttp_request* request) {
  if (evhttp_request_get_connection(request) == nullptr) evhttp_request_free(request);
}

class Stream final : public IHttpStream, private HttpConnection::ITenant {
 public:
  Stream(evhttp_request* request, HttpConnection& connection)
      : request_(request), connection_(connection) {
    connection_.SetTenant(this);
    connection_.OnStreaming();
  }

  ~Stream() override {
    if (request_ == nullptr) return;
    // Says that this is the end of it, where there is room to say so. evhttp would do it itself but
    // only when the loop turns again, which it may not.
    if (Unread() == 0) {
      constexpr std::string_view kLastChunk = "0\r\n\r\n";
      (void)send(bufferevent_getfd(connection_.Buffers()), kLastChunk.data(), kLastChunk.size(),
                 MSG_DONTWAIT | MSG_NOSIGNAL);
    }
    gone_ = nullptr;
    evhttp_connection_free(evhttp_request_get_connection(request_));
  }

  void Write(std::string_view text) override {
    if (request_ == nullptr || text.empty()) return;
    evhttp_send_reply_chunk(request_, ToBuffer(text).get());
  }

  std::size_t Unread() const override {
    if (request_ == nullptr) return 0;
    return evbuffer_get_length(bufferevent_get_output(connection_.Buffers()));
  }

  void WhenGone(std::function<void()> gone) override { gone_ = std::move(gone); }

 private:
  void OnConnectionGone() override {
    FreeIfLeftAlone(std::exchange(request_, nullptr));
    const std::function<void()> gone = std::move(gone_);
    if (gone) gone();
  }

  evhttp_request* request_;
  HttpConnection& connection_;
  std::function<void()> gone_;
};

void OnComplete(evhttp_request*, void* argument) {
  static_cast<HttpConnection*>(argument)->OnAnswered();
}

}  // namespace

HttpExchange::HttpExchange(evhttp_request* request, HttpConnection& connection, bool bodyWanted,
                           Answered answered)
    : request_(request),
      connection_(connection),
      bodyWanted_(bodyWanted),
      answered_(std::move(answered)) {
  connection_.SetTenant(this);
}

HttpExchange::~HttpExchange() {
  if (request_ == nullptr) return;
  try {
    Log::Error("a request was left without an answer");
    Answer(Problem("internal", "the controller gave no answer; its log may say why").Response());
  } catch (const std::exception& failure) {
    Log::Error(std::string("a request cannot be answered: ") + failure.what());
  }
}

void HttpExchange::Answer(HttpResponse response) {
  if (request_ == nullptr) return;
  answered_(response);
  if (!StatusHasBody(response.status)) response.body.clear();
  if (response.goesOn && bodyWanted_) return AnswerOnAndOn(response);
  AnswerWhole(response);
}

void HttpExchange::AddFields(const HttpResponse& response) {
  evkeyvalq* const fields = evhttp_request_get_output_headers(request_);
  for (const auto& [name, value] : ResponseFields(response)) {
    if (evhttp_add_header(fields, name.c_str(), value.c_str()) == 0) continue;
    Log::Error("the header field " + name + " of an answer was left out: it holds a line end");
  }
}

void HttpExchange::AnswerWhole(const HttpResponse& response) {
  AddFields(response);
  if (StatusHasBody(response.status)) {
    // Said here since evhttp would leave it out of the answer to a HEAD.
    evhttp_add_header(evhttp_request_get_output_headers(request_), "Content-Length",
                      std::to_string(response.body.size()).c_str());
  }
  const Buffer body = ToBuffer(bodyWanted_ ? std::string_view(response.body) : "");
  evhttp_request* const request = std::exchange(request_, nullptr);
  connection_.SetTenant(nullptr);
  evhttp_request_set_on_complete_cb(request, OnComplete, &connection_);
  evhttp_send_reply(request, response.status, StatusText(response.status), body.get());
  connection_.OnAnswering();
}

void HttpExchange::AnswerOnAndOn(const HttpResponse& response) {
  AddFields(response);
  evhttp_add_header(evhttp_request_get_output_headers(request_), "Connection", "close");
  evhttp_request* const request = std::exchange(request_, nullptr);
  evhttp_send_reply_start(request, response.status, StatusText(response.status));
  auto stream = std::make_unique<Stream>(request, connection_);
  stream->Write(response.body);
  response.goesOn(std::move(stream));
}

void HttpExchange::OnConnectionGone() { FreeIfLeftAlone(std::exchange(request_, nullptr)); }

}  // namespace controller
