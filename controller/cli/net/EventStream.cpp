#include "controller/cli/net/EventStream.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <poll.h>
#include <unistd.h>
#include <utility>

#include "controller/Failure.h"
#include "controller/cli/net/Api.h"

namespace controller::cli {

namespace {

using Clock = std::chrono::steady_clock;

/// The controller sends something every 15 seconds.
constexpr std::chrono::seconds kSilence{45};
constexpr int kPollMilliseconds = 1000;
constexpr long kFirstPause = 1000;
constexpr long kLongestPause = 30000;
constexpr std::size_t kLargestRefusal = 65536;

struct MultiFree {
  void operator()(CURLM* multi) const { Curl::Load().multi_cleanup(multi); }
};

/// Takes the transfer out before either goes.
class Joined {
 public:
  Joined(CURLM* multi, CURL* easy) : multi_(multi), easy_(easy) {
    Curl::Load().multi_add_handle(multi_, easy_);
  }
  ~Joined() { Curl::Load().multi_remove_handle(multi_, easy_); }
  Joined(const Joined&) = delete;
  Joined& operator=(const Joined&) = delete;

 private:
  CURLM* multi_;
  CURL* easy_;
};

/// Whether the other end of the pipe that standard output leads to is closed.
bool NobodyReads() {
  pollfd out{STDOUT_FILENO, 0, 0};
  return poll(&out, 1, 0) > 0 && (out.revents & (POLLERR | POLLNVAL)) != 0;
}

long StatusOf(CURL* easy) {
  long status = 0;
  Curl::Load().easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
  return status;
}

}  // namespace

EventStream::EventStream(const HttpClient& http, SseReader::Handler handler, Note note)
    : http_(http), reader_(std::move(handler)), note_(std::move(note)) {}

void EventStream::Follow() {
  const StopSignals stop;
  long pause = kFirstPause;
  while (true) {
    if (FollowOnce(stop) == End::kStopped) return;
    if (connected_) pause = reader_.Retry().value_or(kFirstPause);
    if (!std::exchange(toldLost_, true)) note_(trouble_ + "; trying again");
    if (stop.WaitFor(pause)) return;
    pause = std::min(2 * pause, kLongestPause);
  }
}

EventStream::End EventStream::FollowOnce(const StopSignals& stop) {
  const Curl& curl = Curl::Load();
  const EasyHandle easy(curl.easy_init());
  const std::unique_ptr<CURLM, MultiFree> multi(curl.multi_init());
  if (!easy || !multi) throw std::bad_alloc();
  HeaderLines lines;
  easy_ = easy.get();
  connected_ = false;
  refusal_.clear();
  reader_.Restart();
  http_.Prepare(easy_, "/api/v1/stream", lines);
  lines.Add("Accept: text/event-stream");
  if (!reader_.LastId().empty()) lines.Add("Last-Event-ID: " + reader_.LastId());
  curl.easy_setopt(easy_, CURLOPT_HTTPHEADER, lines.Get());
  curl.easy_setopt(easy_, CURLOPT_WRITEFUNCTION, &EventStream::TakeBytes);
  curl.easy_setopt(easy_, CURLOPT_WRITEDATA, this);
  std::array<char, CURL_ERROR_SIZE> trouble{};
  curl.easy_setopt(easy_, CURLOPT_ERRORBUFFER, trouble.data());
  const Joined joined(multi.get(), easy_);
  const End end = Wait(multi.get(), stop);
  if (end == End::kStopped) return end;
  CURLcode code = CURLE_OPERATION_TIMEDOUT;  // silence, which only this program knows of
  int left = 0;
  while (const CURLMsg* message = curl.multi_info_read(multi.get(), &left)) {
    if (message->msg == CURLMSG_DONE) code = message->data.result;
  }
  trouble_ = code == CURLE_OK ? "the controller at " + http_.Address() + " has ended the stream"
                              : http_.TroubleText(code, trouble.data());
  Judge(easy_);
  return End::kLost;
}

EventStream::End EventStream::Wait(CURLM* multi, const StopSignals& stop) {
  const Curl& curl = Curl::Load();
  auto heard = Clock::now();
  curl_off_t bytes = -1;
  for (int running = 1; running > 0;) {
    if (curl.multi_perform(multi, &running) != CURLM_OK) break;
    if (thrown_) std::rethrow_exception(std::exchange(thrown_, nullptr));
    curl_off_t now = 0;
    curl.easy_getinfo(easy_, CURLINFO_SIZE_DOWNLOAD_T, &now);
    if (std::exchange(bytes, now) != now) heard = Clock::now();
    if (Clock::now() - heard > kSilence || running == 0) break;
    std::array<curl_waitfd, 2> also = {{{stop.Fd(), CURL_WAIT_POLLIN, 0}, {STDOUT_FILENO, 0, 0}}};
    curl.multi_poll(multi, also.data(), static_cast<unsigned>(also.size()), kPollMilliseconds,
                    nullptr);
    if (stop.Came() || NobodyReads()) return End::kStopped;
  }
  return End::kLost;
}

void EventStream::Judge(CURL* easy) {
  const long status = StatusOf(easy);
  constexpr long kTooMany = 429;
  if (status >= 400 && status < 500 && status != kTooMany) {
    ThrowRefusal({.status = status, .contentType = "", .version = "", .body = refusal_},
                 http_.Address());
  }
  if (everConnected_) return;
  if (status != 0 && status != 200) {
    ThrowRefusal({.status = status, .contentType = "", .version = "", .body = refusal_},
                 http_.Address());
  }
  throw Failure(trouble_, ExitStatus::kUnreachable);
}

std::size_t EventStream::TakeBytes(char* data, std::size_t one, std::size_t count,
                                   void* self) noexcept {
  auto& stream = *static_cast<EventStream*>(self);
  try {
    stream.Take({data, one * count});
    return one * count;
  } catch (...) {
    stream.thrown_ = std::current_exception();
    return 0;
  }
}

void EventStream::Take(std::string_view bytes) {
  if (StatusOf(easy_) != 200) {
    refusal_.append(bytes.substr(0, kLargestRefusal - std::min(kLargestRefusal, refusal_.size())));
    return;
  }
  if (!std::exchange(connected_, true)) {
    everConnected_ = true;
    if (std::exchange(toldLost_, false)) note_("the controller answers again");
  }
  reader_.Feed(bytes);
}

}  // namespace controller::cli
