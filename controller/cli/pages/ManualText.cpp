#include "controller/cli/pages/ManualText.h"

#include <array>
#include <cstdio>

#include "controller/Utf8.h"

namespace controller::cli {

namespace {

constexpr std::size_t kLongestLine = 78;

bool EndsSentence(std::string_view word) {
  return word.size() > 1 && (word.back() == '.' || word.back() == '?' || word.back() == '!');
}

std::string Character(std::string_view text, std::size_t position, const Utf8Char& character) {
  switch (text[position]) {
    case '\\':
      return "\\e";
    case '-':
      return "\\-";
    case '\'':
      return "\\(aq";
    case '^':
      return "\\(ha";
    case '~':
      return "\\(ti";
    case '`':
      return "\\(ga";
    default:
      break;
  }
  if (character.length == 1) return std::string(1, text[position]);
  std::array<char, 16> name{};
  std::snprintf(name.data(), name.size(), "\\[u%04X]", static_cast<unsigned>(character.code));
  return name.data();
}

}  // namespace

std::string RoffText(std::string_view text) {
  std::string roff;
  for (std::size_t position = 0; position < text.size();) {
    const Utf8Char character = DecodeUtf8(text, position);
    roff += Character(text, position, character);
    position += character.length;
  }
  // A dot at the begin of a line would begin a request.
  return roff.starts_with('.') ? "\\&" + roff : roff;
}

std::string RoffLines(std::string_view text) {
  std::string lines;
  std::string line;
  const auto finish = [&] {
    if (!line.empty()) lines += line + '\n';
    line.clear();
  };
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find_first_of(" \n", begin), text.size());
    const std::string_view word = text.substr(begin, end - begin);
    begin = end + 1;
    if (word.empty()) continue;
    const std::string roff = RoffText(word);
    if (!line.empty() && line.size() + 1 + roff.size() > kLongestLine) finish();
    line += (line.empty() ? "" : " ") + roff;
    if (EndsSentence(word)) finish();
  }
  finish();
  return lines;
}

std::string RoffBold(std::string_view text) { return "\\fB" + RoffText(text) + "\\fR"; }

std::string RoffItalic(std::string_view text) { return "\\fI" + RoffText(text) + "\\fR"; }

}  // namespace controller::cli
