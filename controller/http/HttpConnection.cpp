#include "controller/http/HttpConnection.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <utility>

#include "controller/Failure.h"
#include "controller/http/Problem.h"
#include "controller/http/ResponseHead.h"

namespace controller {

namespace {

/// How much may wait of a client that asks before it has got its answers.
constexpr std::size_t kMostWaitingRequests = 32;
constexpr std::size_t kMostWaitingBytes = 1UL << 20;

/// Of a head whose refusal is known already: carries nothing, since the refusal has header fields.
class RefusedHead {};

}  // namespace

HttpConnection::HttpConnection(event_base* base, IOwner& owner, const HttpLimits& limits)
    : base_(base),
      owner_(owner),
      limits_(limits),
      framer_(*this, limits.head),
      timer_(MakeLoopEvent(base, -1, 0, OnTimer, this)),
      buffers_(bufferevent_socket_new(base, -1, 0)) {
  if (buffers_ == nullptr) throw Failure("out of memory");
  watch_ = evbuffer_add_cb(bufferevent_get_input(buffers_), OnInput, this);
  // Who the connection belongs to is known only when evhttp has taken the buffers, which may also
  // fail; until then they must not go.
  bufferevent_incref(buffers_);
  event_active(timer_.get(), EV_TIMEOUT, 0);
}

HttpConnection::~HttpConnection() {
  if (state_ == State::kOpening) bufferevent_decref(buffers_);
}

ListenAddress HttpConnection::Local() const { return LocalAddress(Socket()); }
ListenAddress HttpConnection::Peer() const { return PeerAddress(Socket()); }
int HttpConnection::Socket() const { return bufferevent_getfd(buffers_); }

void HttpConnection::Open() {
  // evhttp tells of a connection only with its first request. But it is the argument of the
  // callbacks that evhttp has put on the buffers, unless it has given them up already.
  void* argument = nullptr;
  bufferevent_getcb(buffers_, nullptr, nullptr, nullptr, &argument);
  connection_ = static_cast<evhttp_connection*>(argument);
  if (connection_ == nullptr) return owner_.OnEnded(*this);
  if (evhttp_connection_get_bufferevent(connection_) != buffers_) {
    throw Failure(
        "this libevent keeps its connections in another way; install the one that "
        "scripts/install-deps.sh asks for");
  }
  bufferevent_decref(buffers_);
  evhttp_connection_set_closecb(connection_, OnClose, this);
  const timeval writeTime = Milliseconds(limits_.writeTime);
  bufferevent_set_timeouts(buffers_, nullptr, &writeTime);
  const int on = 1;
  setsockopt(Socket(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
  Wait(State::kIdle);
  if (!owner_.HasRoom()) {
    Refuse(Problem("too-many", "too many connections are open; try again later").Response());
    Cut();
  }
}

void HttpConnection::OnInput(evbuffer* input, const evbuffer_cb_info* info, void* argument) {
  if (info->n_added == 0) return;
  auto& self = *static_cast<HttpConnection*>(argument);
  Guarded(self.base_, [&] { self.Read(input, info->orig_size); });
}

void HttpConnection::Read(evbuffer* input, std::size_t from) {
  if (passing_) return;
  if (state_ == State::kStreaming || state_ == State::kLingering) return DropInput();
  std::string bytes(evbuffer_get_length(input) - from, '\0');
  evbuffer_ptr place{};
  evbuffer_ptr_set(input, &place, from, EVBUFFER_PTR_SET);
  evbuffer_copyout_from(input, &place, bytes.data(), bytes.size());
  const std::string heldBefore(framer_.PartOfHead());
  try {
    framer_.Feed(bytes);
    const bool tooMuch = judged_.size() > kMostWaitingRequests ||
                         (judged_.size() > 1 && evbuffer_get_length(input) > kMostWaitingBytes);
    if (tooMuch) throw Problem("too-many", "too many requests were sent at once");
    Pass(input, from, heldBefore + bytes);
    if (state_ != State::kAnswering) WaitForMore();
  } catch (const RefusedHead&) {
    Refuse(HttpResponse(*judged_.back().refusal));
  } catch (const Problem& problem) {
    Refuse(problem.Response());
  }
}

/// Leaves in the buffer, behind the `from` bytes that evhttp has not taken yet, what of `bytes` it
/// may see: it must not judge a head before it was judged here, so a part of one is held back.
void HttpConnection::Pass(evbuffer* input, std::size_t from, std::string_view bytes) {
  const std::size_t held = framer_.PartOfHead().size();
  bytes.remove_suffix(held);
  if (held == 0 && evbuffer_get_length(input) - from == bytes.size()) return;
  std::string all(from, '\0');
  evbuffer_copyout(input, all.data(), all.size());
  all += bytes;
  passing_ = true;
  DropInput();
  const bool passed = evbuffer_add(input, all.data(), all.size()) == 0;
  passing_ = false;
  if (!passed) Cut();
}

std::size_t HttpConnection::OnHead(RequestHead head) {
  judged_.push_back(owner_.Judge(head, *this));
  const JudgedRequest& judged = judged_.back();
  if (!judged.refusal) return judged.route->bodyLimit;
  // Without a body the refusal waits for its turn, and the connection can be used further.
  if (head.HasBody()) throw RefusedHead();
  return 0;
}

std::optional<JudgedRequest> HttpConnection::TakeRequest() {
  if (judged_.empty()) return std::nullopt;
  JudgedRequest taken = std::move(judged_.front());
  judged_.pop_front();
  Wait(State::kAnswering);
  return taken;
}

void HttpConnection::OnAnswering() {
  // evhttp goes on reading while it writes, without a bound; and the end of what a client has to
  // say would end also what it is still to hear.
  bufferevent_disable(buffers_, EV_READ);
}

void HttpConnection::OnAnswered() { WaitForMore(); }

void HttpConnection::OnStreaming() {
  judged_.clear();
  Wait(State::kStreaming);
  DropInput();
}

/// Sends a last answer past evhttp, whose own buffer is empty while a request comes in, and then
/// listens a little longer: a socket that is closed with something unread takes back what it sent.
void HttpConnection::Refuse(const HttpResponse& response) {
  if (state_ == State::kAnswering) return Cut();
  const std::string answer = LastAnswer(response);
  // A few hundred bytes into an empty buffer of the system. Where they do not fit the client has
  // not read what it got before, and will not read this.
  (void)send(Socket(), answer.data(), answer.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
  shutdown(Socket(), SHUT_WR);
  judged_.clear();
  Wait(State::kLingering);
  DropInput();
  owner_.OnRefused(*this, response.status);
}

void HttpConnection::Cut() { shutdown(Socket(), SHUT_RDWR); }

void HttpConnection::DropInput() {
  evbuffer* const input = bufferevent_get_input(buffers_);
  evbuffer_drain(input, evbuffer_get_length(input));
}

void HttpConnection::WaitForMore() {
  switch (framer_.Where()) {
    case RequestFramer::Phase::kBetween:
      // What has come whole is evhttp's to hand out, which it does at once.
      return Wait(judged_.empty() ? State::kIdle : State::kBody);
    case RequestFramer::Phase::kHead:
      return Wait(State::kHead);
    case RequestFramer::Phase::kBody:
      return Wait(State::kBody);
  }
}

void HttpConnection::Wait(State state) {
  if (state == state_) return;
  state_ = state;
  long milliseconds = 0;
  switch (state) {
    case State::kIdle:
      milliseconds = limits_.idle;
      break;
    case State::kHead:
      milliseconds = limits_.headTime;
      break;
    case State::kBody:
      milliseconds = limits_.bodyTime;
      break;
    case State::kLingering:
      milliseconds = limits_.lingerTime;
      break;
    case State::kOpening:
    case State::kAnswering:
    case State::kStreaming:
      event_del(timer_.get());
      return;
  }
  const timeval delay = Milliseconds(milliseconds);
  event_add(timer_.get(), &delay);
}

void HttpConnection::OnTimer(int, short, void* argument) {
  auto& self = *static_cast<HttpConnection*>(argument);
  Guarded(self.base_, [&] { self.Expire(); });
}

void HttpConnection::Expire() {
  switch (state_) {
    case State::kOpening:
      return Open();
    case State::kHead:
    case State::kBody:
      return Refuse(Problem("timeout", "the request did not arrive in time").Response());
    default:
      return Cut();
  }
}

void HttpConnection::OnClose(evhttp_connection*, void* argument) {
  auto& self = *static_cast<HttpConnection*>(argument);
  Guarded(self.base_, [&] {
    evbuffer_remove_cb_entry(bufferevent_get_input(self.buffers_), self.watch_);
    if (self.tenant_ != nullptr) std::exchange(self.tenant_, nullptr)->OnConnectionGone();
    self.owner_.OnEnded(self);
  });
}

}  // namespace controller
