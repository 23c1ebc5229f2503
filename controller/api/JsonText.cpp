#include "controller/api/JsonText.h"

#include <array>
#include <cstdio>

#include "controller/Utf8.h"

namespace controller {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

void AppendEscape(std::string& out, unsigned char code) {
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), "\\u%04x", code);
  out += text.data();
}

/// Two digits for each of the fields of a date and a time.
void AppendTwo(std::string& out, int number) {
  out += static_cast<char>('0' + number / 10 % 10);
  out += static_cast<char>('0' + number % 10);
}

void AppendMoment(std::string& out, const std::tm& fields) {
  const int year = fields.tm_year + 1900;
  AppendTwo(out, year / 100);
  AppendTwo(out, year % 100);
  out += '-';
  AppendTwo(out, fields.tm_mon + 1);
  out += '-';
  AppendTwo(out, fields.tm_mday);
  out += 'T';
  AppendTwo(out, fields.tm_hour);
  out += ':';
  AppendTwo(out, fields.tm_min);
  out += ':';
  AppendTwo(out, fields.tm_sec);
  // RFC 3339 knows no seconds in an offset; zones had some until 1972.
  const long minutes = fields.tm_gmtoff / 60;
  out += minutes < 0 ? '-' : '+';
  const int size = static_cast<int>(minutes < 0 ? -minutes : minutes);
  AppendTwo(out, size / 60);
  out += ':';
  AppendTwo(out, size % 60);
}

std::optional<std::tm> LocalFields(std::optional<std::time_t> moment) {
  std::tm fields{};
  if (!moment || localtime_r(&*moment, &fields) == nullptr) return std::nullopt;
  // Four digits are all that RFC 3339 has for a year.
  if (fields.tm_year < -1900 || fields.tm_year > 8099) return std::nullopt;
  return fields;
}

}  // namespace

void AppendJsonString(std::string& out, std::string_view text) {
  out += '"';
  for (std::size_t at = 0; at < text.size();) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if (byte == '"' || byte == '\\') {
      out += '\\';
      out += text[at++];
    } else if (byte < 0x20 || byte == 0x7F) {
      AppendEscape(out, byte);
      ++at;
    } else if (byte < 0x80) {
      out += text[at++];
    } else {
      const Utf8Char character = DecodeUtf8(text, at);
      out += character.valid ? text.substr(at, character.length) : kReplacement;
      at += character.length;
    }
  }
  out += '"';
}

void AppendJsonMoment(std::string& out, std::optional<std::time_t> moment) {
  const auto fields = LocalFields(moment);
  if (!fields) {
    out += "null";
    return;
  }
  out += '"';
  AppendMoment(out, *fields);
  out += '"';
}

nlohmann::ordered_json MomentJson(std::optional<std::time_t> moment) {
  const auto fields = LocalFields(moment);
  if (!fields) return nullptr;
  std::string text;
  AppendMoment(text, *fields);
  return text;
}

std::string ValidUtf8(std::string_view text) {
  std::string valid;
  valid.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const Utf8Char character = DecodeUtf8(text, at);
    valid += character.valid ? text.substr(at, character.length) : kReplacement;
    at += character.length;
  }
  return valid;
}

std::string JsonDump(const nlohmann::ordered_json& document) {
  return document.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

}  // namespace controller
