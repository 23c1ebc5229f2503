#include "controller/programming/HookRules.h"

#include <algorithm>
#include <array>

#include "controller/Printable.h"
#include "controller/programming/Placeholders.h"

namespace controller {

namespace {

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::string Lowered(std::string_view text) {
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(), Lower);
  return out;
}

bool IsAlphanumeric(char c) {
  return (c >= '0' && c <= '9') || (Lower(c) >= 'a' && Lower(c) <= 'z');
}

// The first character that no URL holds as it is.
std::optional<std::string> StrayCharacter(std::string_view url) {
  for (std::size_t i = 0; i < url.size(); ++i) {
    const auto c = static_cast<unsigned char>(url[i]);
    constexpr std::string_view kNever = " \"<>\\^`|";
    if (c < 0x20 || c == 0x7F || kNever.find(url[i]) != kNever.npos) {
      return Quoted(url.substr(i, 1));
    }
    if (c >= 0x80)
      return Quoted(url.substr(i, std::min(url.find_first_of("/?#", i), url.size()) - i));
  }
  return std::nullopt;
}

bool IsPort(std::string_view port) {
  if (port.empty() || port.size() > 5) return false;
  int number = 0;
  for (const char c : port) {
    if (c < '0' || c > '9') return false;
    number = number * 10 + (c - '0');
  }
  return number >= 1 && number <= 65535;
}

bool IsHostName(std::string_view host) {
  return !host.empty() && std::all_of(host.begin(), host.end(), [](char c) {
    return IsAlphanumeric(c) || c == '-' || c == '.' || c == '_';
  });
}

bool IsIpv6(std::string_view host) {
  if (host.size() < 4 || host.front() != '[' || host.back() != ']') return false;
  host = host.substr(1, host.size() - 2);
  return std::all_of(host.begin(), host.end(),
                     [](char c) { return IsAlphanumeric(c) || c == ':' || c == '.' || c == '%'; });
}

bool IsHostAndPort(std::string_view host) {
  const std::size_t bracket = host.rfind(']');
  const std::size_t colon = host.find(':', bracket == host.npos ? 0 : bracket);
  const std::string_view name = host.substr(0, colon);
  if (colon != host.npos && !IsPort(host.substr(colon + 1))) return false;
  return IsHostName(name) || IsIpv6(name);
}

}  // namespace

std::optional<UrlParts> SplitUrl(std::string_view url) {
  const std::size_t colon = url.find("://");
  if (colon == url.npos) return std::nullopt;
  UrlParts parts;
  parts.scheme = Lowered(url.substr(0, colon));
  if (parts.scheme != "http" && parts.scheme != "https") return std::nullopt;
  url.remove_prefix(colon + 3);
  const std::size_t end = std::min(url.find_first_of("/?#"), url.size());
  std::string_view authority = url.substr(0, end);
  const std::size_t at = authority.rfind('@');
  if (at != authority.npos) {
    parts.user = authority.substr(0, at);
    authority.remove_prefix(at + 1);
  }
  parts.host = Lowered(authority);
  const std::string_view rest = url.substr(end);
  const std::size_t path = std::min(rest.find_first_of("?#"), rest.size());
  parts.path = rest.substr(0, path);
  parts.query = rest.substr(path);
  return parts;
}

std::string WrongUrl(std::string_view url) {
  const std::string is = "is " + Quoted(url);
  const auto parts = SplitUrl(url);
  if (!parts) return is + "; give a URL that begins with http:// or https://";
  if (const auto stray = StrayCharacter(url)) {
    return is + "; write " + *stray + " percent-encoded, or in a host's name as punycode";
  }
  if (HasPlaceholder(parts->host) || HasPlaceholder(parts->user)) {
    return is + "; placeholders may stand behind the host only";
  }
  if (!IsHostAndPort(parts->host)) {
    return is + "; give a host after " + parts->scheme + "://, and a port of 1 to 65535 if any";
  }
  return {};
}

std::string WrongHeaderName(std::string_view name) {
  // These say how a message is carried, which is not the writer's business.
  static constexpr std::string_view kTaken[] = {
      "connection", "content-length", "expect",  "keep-alive",        "proxy-authorization",
      "te",         "trailer",        "upgrade", "transfer-encoding", "proxy-connection"};
  constexpr std::string_view kMarks = "!#$%&'*+-.^_`|~";
  const bool isToken = !name.empty() && std::all_of(name.begin(), name.end(), [&](char c) {
    return IsAlphanumeric(c) || kMarks.find(c) != kMarks.npos;
  });
  if (!isToken || name.size() > 100) {
    return "is no header's name; give up to 100 letters, digits and \"-\"";
  }
  for (const std::string_view taken : kTaken) {
    if (SameName(name, taken)) return "is set by the controller itself; leave it out";
  }
  return {};
}

bool SameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return Lower(x) == Lower(y); });
}

std::string ShownUrl(std::string_view url) {
  const auto parts = SplitUrl(url);
  if (!parts) return Printable(url, 200);
  const std::string query = parts->query.empty() ? "" : "?...";
  return Printable(parts->scheme + "://" + parts->host + parts->path, 200) + query;
}

}  // namespace controller
