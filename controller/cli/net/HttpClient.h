#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "controller/Curl.h"
#include "controller/cli/net/ClientOptions.h"

namespace controller::cli {

/// A request to a controller.
struct HttpCall {
  std::string method = "GET";
  /// With its query, percent-encoded: "/api/v1/events?q=Porch".
  std::string path;
  /// Sent with its content type, where there is one.
  std::string body;
  std::string contentType;
  /// The version that must still be there (If-Match); empty: any.
  std::string ifMatch;
  /// How long the whole answer may take.
  long seconds = 30;
};

struct HttpAnswer {
  long status = 0;
  /// Of the body, without parameters, lower case.
  std::string contentType;
  /// The version of what is answered (ETag), where there is one.
  std::string version;
  std::string body;
};

/// Header lines for libcurl; what they are given to must go before them.
class HeaderLines {
 public:
  HeaderLines() = default;
  ~HeaderLines();
  HeaderLines(const HeaderLines&) = delete;
  HeaderLines& operator=(const HeaderLines&) = delete;

  void Add(const std::string& line);
  curl_slist* Get() const { return lines_; }

 private:
  curl_slist* lines_ = nullptr;
};

struct EasyFree {
  void operator()(CURL* easy) const { Curl::Load().easy_cleanup(easy); }
};
using EasyHandle = std::unique_ptr<CURL, EasyFree>;

/// Talks to one controller over HTTP, one request at a time.
class HttpClient {
 public:
  /// Throws a `Failure` where the options are no address or token, or there is no libcurl.
  explicit HttpClient(const ClientOptions& options);

  /// Throws a `Failure` (kUnreachable) where no answer comes; any status is an answer.
  HttpAnswer Ask(const HttpCall& call);

  /// Sets what every request to the controller has: where it goes, that it goes through no proxy
  /// on this machine, who it is. The headers are added to `lines`.
  void Prepare(CURL* easy, const std::string& path, HeaderLines& lines) const;
  /// What to say where libcurl reports `code`; `buffer` is what it added.
  std::string TroubleText(CURLcode code, const char* buffer) const;

  const std::string& Address() const { return address_; }

 private:
  std::string address_;
  std::string token_;
  EasyHandle easy_;
};

/// A text as a part of a path or a query: percent-encoded.
std::string PercentEncoded(std::string_view text);

}  // namespace controller::cli
