#include "controller/cli/parse/TextParts.h"

#include <algorithm>
#include <utility>

#include "controller/Printable.h"
#include "controller/cli/parse/TextError.h"

namespace controller::cli {

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

/// Where the part that begins at `begin` ends.
std::size_t EndOfPart(std::string_view text, std::size_t begin) {
  if (text[begin] == ',') return begin + 1;
  std::size_t end = begin;
  while (end < text.size() && !IsBlank(text[end]) && text[end] != ',') ++end;
  return end;
}

std::vector<TextPart> Split(std::string_view text) {
  std::vector<TextPart> parts;
  for (std::size_t begin = 0; begin < text.size();) {
    if (IsBlank(text[begin])) {
      ++begin;
      continue;
    }
    const std::size_t end = EndOfPart(text, begin);
    parts.push_back({LowerCase(text.substr(begin, end - begin)), begin, end - begin});
    begin = end;
  }
  return parts;
}

}  // namespace

TextParts::TextParts(std::string what, std::string text)
    : what_(std::move(what)), text_(std::move(text)), parts_(Split(text_)) {
  end_.begin = parts_.empty() ? 0 : parts_.back().begin + parts_.back().length;
}

const TextPart& TextParts::Peek() const { return AtEnd() ? end_ : parts_[next_]; }

TextPart TextParts::Next() {
  const TextPart part = Peek();
  if (!AtEnd()) ++next_;
  return part;
}

bool TextParts::Take(const std::vector<std::string_view>& words) {
  if (parts_.size() - next_ < words.size()) return false;
  std::size_t position = next_;
  for (const std::string_view word : words) {
    if (parts_[position++].text != word) return false;
  }
  next_ = position;
  return true;
}

void TextParts::ExpectEnd(const std::string& expected) const {
  if (AtEnd()) return;
  const TextPart& part = Peek();
  FailAt(part.begin, part.length,
         Quoted(text_.substr(part.begin, part.length)) + " is too much here; " + expected);
}

void TextParts::Fail(const TextPart& part, const std::string& problem,
                     const std::string& expected) const {
  if (part.length == 0) FailAt(part.begin, 0, expected);
  FailAt(part.begin, part.length, Quoted(text_.substr(part.begin, part.length)) + ' ' + problem);
}

void TextParts::FailAt(std::size_t begin, std::size_t length, const std::string& problem) const {
  throw TextError(what_, text_, begin, length, problem);
}

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

std::optional<long> ReadNumber(std::string_view digits, long most) {
  if (digits.empty()) return std::nullopt;
  long number = 0;
  for (const char c : digits) {
    if (c < '0' || c > '9') return std::nullopt;
    number = number * 10 + (c - '0');
    if (number > most) return std::nullopt;
  }
  return number;
}

}  // namespace controller::cli
