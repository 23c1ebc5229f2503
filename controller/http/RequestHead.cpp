#include "controller/http/RequestHead.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>

#include "controller/Printable.h"
#include "controller/http/Problem.h"

namespace controller {

namespace {

[[noreturn]] void Malformed(const std::string& why) { throw Problem("malformed", why); }

bool IsDigit(char byte) { return byte >= '0' && byte <= '9'; }
bool IsLetter(char byte) { return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z'); }

/// RFC 9110, 5.6.2: what methods and the names of fields are made of.
bool IsToken(std::string_view text) {
  const auto isTokenByte = [](char byte) {
    return IsLetter(byte) || IsDigit(byte) ||
           std::string_view("!#$%&'*+-.^_`|~").find(byte) != std::string_view::npos;
  };
  return !text.empty() && std::all_of(text.begin(), text.end(), isTokenByte);
}

/// Takes the next line off `text`, which holds whole lines only.
std::string_view NextLine(std::string_view& text) {
  const std::size_t end = text.find("\r\n");
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(end + 2);
  return line;
}

void CheckBytes(std::string_view text) {
  for (const char byte : text) {
    const auto code = static_cast<unsigned char>(byte);
    if ((code < 0x20 && byte != '\t') || code == 0x7F) {
      Malformed("a control character stands in the header; only tabs may");
    }
  }
}

void ReadMethod(RequestHead& head, std::string_view method) {
  constexpr std::array<std::string_view, 7> kKnown = {"GET",   "HEAD",   "POST",   "PUT",
                                                      "PATCH", "DELETE", "OPTIONS"};
  if (!IsToken(method)) Malformed("the request does not begin with a method");
  if (std::find(kKnown.begin(), kKnown.end(), method) == kKnown.end()) {
    throw Problem("not-implemented", "the method " + Quoted(method) +
                                         " is not known here; known are GET, HEAD, POST, PUT, "
                                         "PATCH, DELETE and OPTIONS");
  }
  head.method = method;
}

void ReadVersion(RequestHead& head, std::string_view version) {
  if (version != "HTTP/1.1" && version != "HTTP/1.0") {
    if (version.size() == 8 && version.starts_with("HTTP/") && IsDigit(version[5]) &&
        version[6] == '.' && IsDigit(version[7])) {
      throw Problem("version-not-supported",
                    "the request is " + Quoted(version) + "; HTTP/1.1 is spoken here");
    }
    Malformed("the request line does not end with HTTP/1.1");
  }
  head.minorVersion = version.back() - '0';
}

void CheckTargetBytes(std::string_view target) {
  for (const char byte : target) {
    const bool allowed = byte > 0x20 && byte < 0x7F &&
                         std::string_view("\"<>#\\").find(byte) == std::string_view::npos;
    if (!allowed) {
      Malformed("the address " + Quoted(target) +
                " holds a character that has to be percent-encoded");
    }
  }
}

/// "http://host/path" as a proxy would be asked: gives back what follows the host.
std::string_view ReadAbsoluteTarget(RequestHead& head, std::string_view target) {
  const std::size_t scheme = target.find("://");
  const std::string name = LowerCase(target.substr(0, scheme));
  if (scheme == std::string_view::npos || (name != "http" && name != "https")) {
    Malformed("the address " + Quoted(target) + " does not begin with \"/\"");
  }
  target.remove_prefix(scheme + 3);
  const std::size_t end = target.find_first_of("/?");
  if (end == std::string_view::npos || target[end] != '/') {
    Malformed("the address names a host but no path");
  }
  head.authority = LowerCase(target.substr(0, end));
  return target.substr(end);
}

void ReadTarget(RequestHead& head, std::string_view target, const HeadLimits& limits) {
  if (target.size() > limits.target) {
    throw Problem("uri-too-long", "the address has " + std::to_string(target.size()) +
                                      " bytes; at most " + std::to_string(limits.target) +
                                      " are taken");
  }
  CheckTargetBytes(target);
  head.target = target;
  if (!target.starts_with('/')) target = ReadAbsoluteTarget(head, target);
  if (target.starts_with("//")) Malformed("the address begins with two slashes");
  const std::size_t mark = target.find('?');
  head.path = target.substr(0, mark);
  if (mark == std::string_view::npos) return;
  auto query = ParseQuery(target.substr(mark + 1));
  if (!query) Malformed("the query " + Quoted(target.substr(mark)) + " is not well encoded");
  head.query = *std::move(query);
}

void ReadRequestLine(RequestHead& head, std::string_view line, const HeadLimits& limits) {
  const std::size_t first = line.find(' ');
  const std::size_t last = line.rfind(' ');
  if (first == std::string_view::npos || first == last) {
    Malformed("the request line is not \"METHOD ADDRESS HTTP/1.1\"");
  }
  ReadMethod(head, line.substr(0, first));
  ReadVersion(head, line.substr(last + 1));
  ReadTarget(head, line.substr(first + 1, last - first - 1), limits);
}

void ReadField(RequestHead& head, std::string_view line) {
  if (line.starts_with(' ') || line.starts_with('\t')) {
    Malformed("a header field goes on in a second line");
  }
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos || !IsToken(line.substr(0, colon))) {
    Malformed("the header field " + Quoted(line.substr(0, colon)) +
              " is not \"Name: value\" without a space before the colon");
  }
  const std::string name = LowerCase(line.substr(0, colon));
  const std::string value(WithoutBlanks(line.substr(colon + 1)));
  const auto [place, isNew] = head.fields.try_emplace(name, value);
  if (isNew) return;
  for (const char* const once : {"host", "content-length", "transfer-encoding", "content-type",
                                 "authorization", "origin", "expect"}) {
    if (name == once) Malformed("the header field " + Quoted(name) + " is given twice");
  }
  place->second += ", " + value;
}

std::uint64_t ReadLength(const std::string& text) {
  const bool digits = !text.empty() && std::all_of(text.begin(), text.end(), IsDigit);
  // 15 digits are far more than any limit, and far less than any overflow.
  if (!digits || text.size() > 15) {
    Malformed("Content-Length is " + Quoted(text) + "; give a number of bytes");
  }
  return std::stoull(text);
}

/// Where the body ends, RFC 9112, 6: whatever might be read in two ways is refused.
void ReadFraming(RequestHead& head) {
  const auto length = head.fields.find("content-length");
  const auto coding = head.fields.find("transfer-encoding");
  if (length != head.fields.end() && coding != head.fields.end()) {
    Malformed("both Content-Length and Transfer-Encoding are given");
  }
  if (length != head.fields.end()) head.length = ReadLength(length->second);
  if (coding != head.fields.end()) {
    if (LowerCase(coding->second) != "chunked" || head.minorVersion == 0) {
      Malformed("Transfer-Encoding is " + Quoted(coding->second) +
                "; \"chunked\" is understood, in HTTP/1.1");
    }
    head.length.reset();
  }
  const bool takesBody = head.method == "POST" || head.method == "PUT" || head.method == "PATCH";
  if (head.HasBody() && !takesBody) Malformed("a " + head.method + " request takes no body");
}

void ReadHost(RequestHead& head) {
  const auto host = head.fields.find("host");
  if (host == head.fields.end()) Malformed("the header field Host is missing");
  if (head.authority.empty()) head.authority = LowerCase(host->second);
  if (!ParseAuthority(head.authority) || !ParseAuthority(host->second)) {
    Malformed("the host " + Quoted(head.authority) + " is no name and no address");
  }
}

void ReadExpectation(const RequestHead& head) {
  const auto expect = head.fields.find("expect");
  if (expect == head.fields.end() || LowerCase(expect->second) == "100-continue") return;
  throw Problem("expectation-failed",
                "Expect is " + Quoted(expect->second) + "; \"100-continue\" is understood");
}

}  // namespace

RequestHead ParseRequestHead(std::string_view text, const HeadLimits& limits) {
  RequestHead head;
  const std::string_view requestLine = NextLine(text);
  CheckBytes(requestLine);
  ReadRequestLine(head, requestLine, limits);
  std::size_t count = 0;
  for (std::string_view line = NextLine(text); !line.empty(); line = NextLine(text)) {
    CheckBytes(line);
    if (++count > limits.fields) {
      throw Problem("headers-too-large",
                    "more than " + std::to_string(limits.fields) + " header fields are given");
    }
    ReadField(head, line);
  }
  ReadHost(head);
  ReadFraming(head);
  ReadExpectation(head);
  return head;
}

std::optional<Authority> ParseAuthority(std::string_view text) {
  Authority authority;
  std::string_view rest;
  if (text.starts_with('[')) {
    const std::size_t end = text.find(']');
    if (end == std::string_view::npos) return std::nullopt;
    authority.host = LowerCase(text.substr(1, end - 1));
    in6_addr address{};
    if (inet_pton(AF_INET6, authority.host.c_str(), &address) != 1) return std::nullopt;
    rest = text.substr(end + 1);
  } else {
    const std::size_t colon = text.find(':');
    authority.host = LowerCase(text.substr(0, colon));
    if (authority.host.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-._") !=
        std::string::npos) {
      return std::nullopt;
    }
    if (authority.host.ends_with('.')) authority.host.pop_back();
    rest = colon == std::string_view::npos ? std::string_view() : text.substr(colon);
  }
  if (authority.host.empty()) return std::nullopt;
  if (rest.empty()) return authority;
  if (rest.size() < 2 || rest.size() > 6 || rest[0] != ':') return std::nullopt;
  unsigned port = 0;
  for (const char digit : rest.substr(1)) {
    if (!IsDigit(digit)) return std::nullopt;
    port = port * 10 + static_cast<unsigned>(digit - '0');
  }
  if (port > 65535) return std::nullopt;
  authority.port = port;
  return authority;
}

}  // namespace controller
