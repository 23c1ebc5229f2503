#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "controller/http/UrlText.h"

namespace controller {

/// How much the beginning of a request may hold.
struct HeadLimits {
  /// All of it, request line and header fields.
  std::size_t bytes = 16384;
  /// The request's target, path and query.
  std::size_t target = 4096;
  std::size_t fields = 64;
};

/// The beginning of a request, read strictly: what two programs might read in two ways is no head.
struct RequestHead {
  std::string method;
  /// As it came, for the log and to be compared.
  std::string target;
  /// Between them what the target says: "/api/v1/events" still percent-encoded, and the decoded
  /// query.
  std::string path;
  QueryFields query;
  /// 0 or 1 of HTTP/1.0 and HTTP/1.1.
  int minorVersion = 1;
  /// By name in lower case; of several with one name all, joined by ", ".
  std::map<std::string, std::string> fields;
  /// "house.local:7440" in lower case: of the target where it names a host, else of the Host field.
  std::string authority;
  /// How long the body is; nothing: it comes in chunks.
  std::optional<std::uint64_t> length = 0;

  bool HasBody() const { return !length || *length > 0; }
};

/// Reads a head, from the request line to the empty line, both included. Throws a `Problem` that
/// says what is wrong.
RequestHead ParseRequestHead(std::string_view text, const HeadLimits& limits);

/// A host, with or without a port.
struct Authority {
  /// In lower case; an IPv6 address without its brackets; without a dot at its end.
  std::string host;
  std::optional<unsigned> port;
};
/// Nothing where it is none.
std::optional<Authority> ParseAuthority(std::string_view text);

}  // namespace controller
