#include "controller/programming/HookCall.h"

#include <algorithm>
#include <utility>

#include "controller/Failure.h"
#include "controller/NumberText.h"
#include "controller/Printable.h"
#include "controller/programming/HookRules.h"

namespace controller {

namespace {

constexpr int kMostRedirects = 3;
constexpr std::size_t kKeptBytes = 4096;
// Who answers with more than this is not listened to any longer; the status has been told.
constexpr std::size_t kMostBytes = 1UL << 20;

bool IsRedirect(long status) {
  return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

bool StatusMayPass(long status) {
  return status == 408 || status == 429 || (status >= 500 && status <= 599);
}

// What a network does today and not tomorrow; all else is a mistake that repeating does not mend.
bool CodeMayPass(CURLcode code) {
  switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_CONNECT:
    case CURLE_OPERATION_TIMEDOUT:
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_GOT_NOTHING:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_PARTIAL_FILE:
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
      return true;
    default:
      return false;
  }
}

}  // namespace

HookClient::Call::Call(const Curl& curl, unsigned long id, HookRequest request, Done done)
    : curl_(curl),
      id_(id),
      request_(std::move(request)),
      done_(std::move(done)),
      deadline_(std::chrono::steady_clock::now() +
                std::chrono::milliseconds(request_.timeoutMilliseconds)),
      easy_(curl.easy_init()) {
  if (!easy_) throw Failure("out of memory");
}

template <typename Value>
void HookClient::Call::Set(CURLoption option, Value value) {
  const CURLcode code = curl_.easy_setopt(easy_.get(), option, value);
  if (code == CURLE_OK) return;
  throw Failure("libcurl does not take option " + std::to_string(option) + ": " +
                curl_.easy_strerror(code) + "; install a newer one");
}

void HookClient::Call::Prepare() {
  curl_.easy_reset(easy_.get());
  statusLine_.clear();
  body_.clear();
  received_ = 0;
  error_.fill('\0');
  Set(CURLOPT_PRIVATE, static_cast<void*>(this));
  Set(CURLOPT_URL, request_.url.c_str());
  SetLimits();
  SetReceivers();
  SetMethod();
  SetHeaders();
}

void HookClient::Call::SetLimits() {
  Set(CURLOPT_PROTOCOLS_STR, "http,https");
  // Redirects are followed here, one by one: the library would send the headers to any host.
  Set(CURLOPT_FOLLOWLOCATION, 0L);
  // An empty name: none, whatever the environment says.
  Set(CURLOPT_PROXY, "");
  Set(CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
  Set(CURLOPT_NOSIGNAL, 1L);
  // A name that is still being looked up when the time is over is left to its thread; the library
  // would otherwise wait for it, and hold the loop.
  Set(CURLOPT_QUICK_EXIT, 1L);
  Set(CURLOPT_TIMEOUT_MS, std::max(MillisecondsLeft(), 1L));
  Set(CURLOPT_CONNECTTIMEOUT_MS, std::max(MillisecondsLeft(), 1L));
  Set(CURLOPT_USERAGENT, "vexalink/" VEXALINK_VERSION);
}

void HookClient::Call::SetReceivers() {
  Set(CURLOPT_ERRORBUFFER, error_.data());
  Set(CURLOPT_WRITEFUNCTION, &Call::OnBody);
  Set(CURLOPT_WRITEDATA, static_cast<void*>(this));
  Set(CURLOPT_HEADERFUNCTION, &Call::OnHeader);
  Set(CURLOPT_HEADERDATA, static_cast<void*>(this));
}

void HookClient::Call::SetMethod() {
  const bool hasBody = !request_.body.empty() || request_.method == "POST" ||
                       request_.method == "PUT" || request_.method == "PATCH";
  if (hasBody) {
    Set(CURLOPT_POST, 1L);
    Set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request_.body.size()));
    Set(CURLOPT_POSTFIELDS, request_.body.c_str());  // not copied
  }
  Set(CURLOPT_CUSTOMREQUEST, request_.method.c_str());
}

void HookClient::Call::SetHeaders() {
  headers_.reset();
  bool hasType = false;
  for (const auto& [name, value] : request_.headers) {
    hasType = hasType || SameName(name, "Content-Type");
    // The library reads "Name:" as "leave it out", and "Name;" as "with nothing behind it".
    AddHeader(Trimmed(value).empty() ? name + ';' : name + ": " + value);
  }
  // What the library would say by itself: that an empty body is a form, and that the server is to
  // be asked before a large one is sent.
  if (!hasType) AddHeader("Content-Type:");
  AddHeader("Expect:");
  Set(CURLOPT_HTTPHEADER, headers_.get());
}

void HookClient::Call::AddHeader(const std::string& line) {
  curl_slist* longer = curl_.slist_append(headers_.get(), line.c_str());
  if (longer == nullptr) throw Failure("out of memory");
  // A list keeps its head; it is null before the first.
  (void)headers_.release();
  headers_.reset(longer);
}

bool HookClient::Call::Follow() {
  const long status = Status();
  char* location = nullptr;
  curl_.easy_getinfo(easy_.get(), CURLINFO_REDIRECT_URL, &location);
  if (!IsRedirect(status) || location == nullptr) return false;
  if (++redirects_ > kMostRedirects) {
    refused_ = "more than " + std::to_string(kMostRedirects) + " redirects";
    return false;
  }
  auto next = Redirected(request_, status, location);
  if (!next) {
    refused_ = "redirected to " + Quoted(location) + ", which is neither http nor https";
    return false;
  }
  request_ = std::move(*next);
  return true;
}

HookAnswer HookClient::Call::Answer(CURLcode code) {
  const bool enough = received_ > kMostBytes && Status() != 0;
  if (code == CURLE_OK || enough) return Answered();
  HookAnswer answer;
  answer.kind =
      code == CURLE_OPERATION_TIMEDOUT ? HookAnswer::Kind::kTimedOut : HookAnswer::Kind::kNoAnswer;
  answer.status = Status();
  answer.text = ErrorText(code);
  answer.body = body_;
  answer.mayPass = CodeMayPass(code);
  return answer;
}

HookAnswer HookClient::Call::Answered() const {
  HookAnswer answer;
  answer.kind = HookAnswer::Kind::kAnswered;
  answer.status = Status();
  answer.text = statusLine_.empty() ? std::to_string(answer.status) : statusLine_;
  if (!refused_.empty()) answer.text += ", " + refused_;
  answer.body = body_;
  answer.mayPass = StatusMayPass(answer.status);
  curl_off_t seconds = 0;
  curl_.easy_getinfo(easy_.get(), CURLINFO_RETRY_AFTER, &seconds);
  if (seconds > 0) answer.retryAfterSeconds = static_cast<long>(seconds);
  return answer;
}

std::string HookClient::Call::ErrorText(CURLcode code) const {
  if (code == CURLE_OPERATION_TIMEDOUT) {
    return "no answer within " + std::to_string(request_.timeoutMilliseconds / 1000) + " s";
  }
  std::string text = error_[0] != '\0' ? error_.data() : curl_.easy_strerror(code);
  // A word of a sentence begins small; "SSL" stays.
  const bool isWord = text.size() > 1 && text[1] >= 'a' && text[1] <= 'z';
  if (isWord && text[0] >= 'A' && text[0] <= 'Z') text[0] = static_cast<char>(text[0] - 'A' + 'a');
  return Printable(text, 300);
}

long HookClient::Call::Status() const {
  long status = 0;
  curl_.easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status);
  return status;
}

long HookClient::Call::MillisecondsLeft() const {
  const auto left = deadline_ - std::chrono::steady_clock::now();
  return static_cast<long>(std::chrono::duration_cast<std::chrono::milliseconds>(left).count());
}

std::size_t HookClient::Call::OnBody(char* data, std::size_t size, std::size_t count,
                                     void* argument) noexcept {
  auto& self = *static_cast<Call*>(argument);
  const std::size_t bytes = size * count;
  self.received_ += bytes;
  try {
    self.body_.append(data, std::min(bytes, kKeptBytes - self.body_.size()));
  } catch (const std::exception&) {
    return 0;
  }
  return self.received_ > kMostBytes ? 0 : bytes;
}

std::size_t HookClient::Call::OnHeader(char* data, std::size_t size, std::size_t count,
                                       void* argument) noexcept {
  auto& self = *static_cast<Call*>(argument);
  const std::size_t bytes = size * count;
  try {
    const std::string_view line(data, bytes);
    const std::size_t blank = line.find(' ');
    if (line.substr(0, 5) == "HTTP/" && blank != line.npos) {
      self.statusLine_ = Printable(Trimmed(line.substr(blank)), 100);
    }
  } catch (const std::exception&) {
    return 0;
  }
  return bytes;
}

}  // namespace controller
