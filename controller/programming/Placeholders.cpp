#include "controller/programming/Placeholders.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "controller/LocalTimeText.h"
#include "controller/Log.h"
#include "controller/NumberText.h"

namespace controller {

namespace {

constexpr std::string_view kNames[] = {"event", "description", "planned", "actual", "trigger"};

bool IsNameCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// The next thing in a text: a placeholder with its name, or some text that stands for itself.
struct Piece {
  std::string_view literal;
  std::string_view name;
  std::size_t length = 0;
};

Piece PieceAt(std::string_view text) {
  if (text[0] != '{') {
    const std::size_t length = std::min(text.find('{'), text.size());
    return {text.substr(0, length), {}, length};
  }
  if (text.size() > 1 && text[1] == '{') return {text.substr(0, 1), {}, 2};
  std::size_t end = 1;
  while (end < text.size() && IsNameCharacter(text[end])) ++end;
  const bool isName = end > 1 && std::isdigit(static_cast<unsigned char>(text[1])) == 0;
  if (!isName || end == text.size() || text[end] != '}') return {text.substr(0, 1), {}, 1};
  return {{}, text.substr(1, end - 1), end + 1};
}

std::string PercentEncoded(std::string_view value) {
  std::string out;
  for (const char c : value) {
    if (IsNameCharacter(c) || c == '-' || c == '.' || c == '~') {
      out += c;
      continue;
    }
    std::array<char, 8> code{};
    std::snprintf(code.data(), code.size(), "%%%02X", static_cast<unsigned char>(c));
    out += code.data();
  }
  return out;
}

std::string JsonEscaped(const std::string& value) {
  const std::string quoted =
      nlohmann::json(value).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  return quoted.substr(1, quoted.size() - 2);
}

std::string XmlEscaped(std::string_view value) {
  std::string out;
  for (const char c : value) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\'':
        out += "&apos;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

std::string OnOneLine(std::string value) {
  for (char& c : value) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = ' ';
  }
  return value;
}

std::string Escaped(const std::string& value, Escaping escaping) {
  switch (escaping) {
    case Escaping::kPercent:
      return PercentEncoded(value);
    case Escaping::kJson:
      return JsonEscaped(value);
    case Escaping::kXml:
      return XmlEscaped(value);
    case Escaping::kHeader:
      return OnOneLine(value);
    case Escaping::kNone:
      break;
  }
  return value;
}

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

}  // namespace

std::optional<std::string> UnknownPlaceholder(std::string_view text) {
  while (!text.empty()) {
    const Piece piece = PieceAt(text);
    const bool isKnown =
        std::find(std::begin(kNames), std::end(kNames), piece.name) != std::end(kNames);
    if (!piece.name.empty() && !isKnown) return std::string(text.substr(0, piece.length));
    text.remove_prefix(piece.length);
  }
  return std::nullopt;
}

bool HasPlaceholder(std::string_view text) {
  while (!text.empty()) {
    const Piece piece = PieceAt(text);
    if (!piece.name.empty()) return true;
    text.remove_prefix(piece.length);
  }
  return false;
}

std::string Replaced(std::string_view text, const std::map<std::string, std::string>& values,
                     Escaping escaping) {
  std::string out;
  while (!text.empty()) {
    const Piece piece = PieceAt(text);
    out += piece.literal;
    const auto value = values.find(std::string(piece.name));
    if (value != values.end()) out += Escaped(value->second, escaping);
    text.remove_prefix(piece.length);
  }
  return out;
}

std::map<std::string, std::string> PlaceholderValues(const FiringFacts& facts, Trigger trigger) {
  return {{"event", std::to_string(facts.eventId)},
          {"description", facts.description},
          {"planned", MomentText(facts.planned)},
          {"actual", MomentText(facts.actual)},
          {"trigger", TriggerName(trigger)}};
}

Escaping EscapingOfBody(std::string_view contentType) {
  std::string type(Trimmed(contentType.substr(0, contentType.find(';'))));
  for (char& c : type) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  if (type.empty() || EndsWith(type, "/json") || EndsWith(type, "+json")) return Escaping::kJson;
  if (type == "application/x-www-form-urlencoded") return Escaping::kPercent;
  if (EndsWith(type, "/xml") || EndsWith(type, "+xml")) return Escaping::kXml;
  return Escaping::kNone;
}

}  // namespace controller
