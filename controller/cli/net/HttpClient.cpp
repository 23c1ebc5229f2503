#include "controller/cli/net/HttpClient.h"

#include <array>
#include <exception>
#include <memory>

#include "controller/Failure.h"
#include "controller/Printable.h"
#include "controller/cli/parse/TextParts.h"

namespace controller::cli {

namespace {

constexpr long kConnectSeconds = 5;
constexpr std::size_t kLargestAnswer = 64UL << 20;

/// Called by libcurl: no exception may leave it. What it does not take ends the transfer.
std::size_t TakeBody(char* data, std::size_t one, std::size_t count, void* body) noexcept {
  auto& text = *static_cast<std::string*>(body);
  const std::size_t size = one * count;
  if (text.size() + size > kLargestAnswer) return 0;
  try {
    text.append(data, size);
    return size;
  } catch (const std::exception&) {
    return 0;
  }
}

/// Called by libcurl with each line of the head.
std::size_t TakeHeader(char* data, std::size_t one, std::size_t count, void* version) noexcept {
  constexpr std::string_view kName = "etag:";
  const std::string_view line(data, one * count);
  try {
    if (LowerCase(line.substr(0, kName.size())) != kName) return line.size();
    std::string_view value = line.substr(kName.size());
    while (!value.empty() && value.front() == ' ') value.remove_prefix(1);
    while (!value.empty() && value.back() <= ' ') value.remove_suffix(1);
    *static_cast<std::string*>(version) = value;
    return line.size();
  } catch (const std::exception&) {
    return 0;
  }
}

std::string MediaType(const char* header) {
  const std::string text = header == nullptr ? "" : header;
  std::string type = LowerCase(text.substr(0, text.find(';')));
  while (!type.empty() && type.back() == ' ') type.pop_back();
  return type;
}

void SetBody(CURL* easy, const HttpCall& call, HeaderLines& lines) {
  const Curl& curl = Curl::Load();
  curl.easy_setopt(easy, CURLOPT_CUSTOMREQUEST, call.method.c_str());
  if (call.contentType.empty() && call.method == "GET") return;
  curl.easy_setopt(easy, CURLOPT_POSTFIELDS, call.body.c_str());
  curl.easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(call.body.size()));
  // Without one of its own libcurl would send a form's.
  lines.Add(call.contentType.empty() ? "Content-Type:" : "Content-Type: " + call.contentType);
  lines.Add("Expect:");
}

}  // namespace

HeaderLines::~HeaderLines() {
  if (lines_ != nullptr) Curl::Load().slist_free_all(lines_);
}

void HeaderLines::Add(const std::string& line) {
  curl_slist* const longer = Curl::Load().slist_append(lines_, line.c_str());
  if (longer == nullptr) throw std::bad_alloc();
  lines_ = longer;
}

HttpClient::HttpClient(const ClientOptions& options)
    : address_(ClientAddress(options.url)),
      token_(ClientToken(options)),
      easy_(Curl::Load().easy_init()) {
  if (!easy_) throw std::bad_alloc();
}

void HttpClient::Prepare(CURL* easy, const std::string& path, HeaderLines& lines) const {
  const Curl& curl = Curl::Load();
  const std::string url = address_ + path;
  curl.easy_setopt(easy, CURLOPT_URL, url.c_str());
  curl.easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
  curl.easy_setopt(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  curl.easy_setopt(easy, CURLOPT_CONNECTTIMEOUT, kConnectSeconds);
  curl.easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
  curl.easy_setopt(easy, CURLOPT_USERAGENT, "vexalink/" VEXALINK_VERSION);
  if (IsLoopback(address_)) curl.easy_setopt(easy, CURLOPT_PROXY, "");
  lines.Add("Vexalink-Actor: " + ClientActor());
  if (!token_.empty()) lines.Add("Authorization: Bearer " + token_);
}

HttpAnswer HttpClient::Ask(const HttpCall& call) {
  const Curl& curl = Curl::Load();
  CURL* const easy = easy_.get();
  HttpAnswer answer;
  HeaderLines lines;
  std::array<char, CURL_ERROR_SIZE> trouble{};
  curl.easy_reset(easy);
  Prepare(easy, call.path, lines);
  SetBody(easy, call, lines);
  if (!call.ifMatch.empty()) lines.Add("If-Match: " + call.ifMatch);
  curl.easy_setopt(easy, CURLOPT_HTTPHEADER, lines.Get());
  curl.easy_setopt(easy, CURLOPT_TIMEOUT, call.seconds);
  curl.easy_setopt(easy, CURLOPT_ERRORBUFFER, trouble.data());
  curl.easy_setopt(easy, CURLOPT_HEADERFUNCTION, TakeHeader);
  curl.easy_setopt(easy, CURLOPT_HEADERDATA, &answer.version);
  curl.easy_setopt(easy, CURLOPT_WRITEFUNCTION, TakeBody);
  curl.easy_setopt(easy, CURLOPT_WRITEDATA, &answer.body);
  const CURLcode code = curl.easy_perform(easy);
  // What is gone when this returns.
  curl.easy_setopt(easy, CURLOPT_ERRORBUFFER, nullptr);
  curl.easy_setopt(easy, CURLOPT_HTTPHEADER, nullptr);
  if (code == CURLE_WRITE_ERROR) {
    throw Failure("what answers at " + address_ + " sends more than 64 MiB; is --url right?");
  }
  if (code != CURLE_OK) {
    throw Failure(TroubleText(code, trouble.data()), ExitStatus::kUnreachable);
  }
  const char* type = nullptr;
  curl.easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &answer.status);
  curl.easy_getinfo(easy, CURLINFO_CONTENT_TYPE, &type);
  answer.contentType = MediaType(type);
  return answer;
}

std::string HttpClient::TroubleText(CURLcode code, const char* buffer) const {
  const std::string why =
      Printable(*buffer != '\0' ? buffer : Curl::Load().easy_strerror(code), 500);
  switch (code) {
    case CURLE_OPERATION_TIMEDOUT:
    case CURLE_GOT_NOTHING:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
    case CURLE_PARTIAL_FILE:
      return "the controller at " + address_ + " does not answer to the end: " + why;
    case CURLE_COULDNT_CONNECT:
    case CURLE_COULDNT_RESOLVE_HOST:
      return "no controller answers at " + address_ + ": " + why +
             "; start one with \"vexalink serve\", or give its address with --url";
    default:
      return "the controller at " + address_ + " cannot be talked to: " + why;
  }
}

std::string PercentEncoded(std::string_view text) {
  constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string encoded;
  for (const char c : text) {
    if (kPlain.find(c) != std::string_view::npos) {
      encoded += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    encoded += {'%', kDigits[byte >> 4U], kDigits[byte & 15U]};
  }
  return encoded;
}

}  // namespace controller::cli
