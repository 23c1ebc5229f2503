#include "controller/http/UrlText.h"

#include "controller/Utf8.h"

namespace controller {

namespace {

int HexDigit(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  return -1;
}

bool IsCleanUtf8(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const Utf8Char next = DecodeUtf8(text, at);
    if (!next.valid || next.code < 0x20 || (next.code >= 0x7F && next.code < 0xA0)) return false;
    at += next.length;
  }
  return true;
}

std::optional<std::pair<std::string, std::string>> ParseField(std::string_view field) {
  const std::size_t equals = field.find('=');
  auto name = PercentDecoded(field.substr(0, equals), /*plusIsSpace=*/true);
  if (!name) return std::nullopt;
  if (equals == std::string_view::npos) return std::pair(*std::move(name), std::string());
  auto value = PercentDecoded(field.substr(equals + 1), /*plusIsSpace=*/true);
  if (!value) return std::nullopt;
  return std::pair(*std::move(name), *std::move(value));
}

}  // namespace

std::optional<std::string> PercentDecoded(std::string_view text, bool plusIsSpace) {
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '+' && plusIsSpace) {
      decoded += ' ';
    } else if (text[at] != '%') {
      decoded += text[at];
    } else {
      if (at + 2 >= text.size()) return std::nullopt;
      const int high = HexDigit(text[at + 1]);
      const int low = HexDigit(text[at + 2]);
      if (high < 0 || low < 0) return std::nullopt;
      decoded += static_cast<char>(high * 16 + low);
      at += 2;
    }
  }
  if (!IsCleanUtf8(decoded)) return std::nullopt;
  return decoded;
}

std::optional<std::vector<std::string>> PathSegments(std::string_view path) {
  if (!path.starts_with('/')) return std::nullopt;
  std::vector<std::string> segments;
  for (std::size_t begin = 1;;) {
    const std::size_t end = path.find('/', begin);
    auto segment = PercentDecoded(path.substr(begin, end - begin));
    if (!segment) return std::nullopt;
    segments.push_back(*std::move(segment));
    if (end == std::string_view::npos) return segments;
    begin = end + 1;
  }
}

std::optional<QueryFields> ParseQuery(std::string_view query) {
  QueryFields fields;
  while (!query.empty()) {
    const std::size_t end = query.find('&');
    const std::string_view field = query.substr(0, end);
    query = end == std::string_view::npos ? std::string_view() : query.substr(end + 1);
    if (field.empty()) continue;
    auto parsed = ParseField(field);
    if (!parsed) return std::nullopt;
    fields.push_back(*std::move(parsed));
  }
  return fields;
}

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  for (char& letter : lower) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return lower;
}

std::string_view WithoutBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

}  // namespace controller
