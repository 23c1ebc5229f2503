#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace controller::cli {

/// One part of a text: a word, or a comma.
struct TextPart {
  /// In lower case (ASCII).
  std::string text;
  std::size_t begin = 0;
  /// In bytes; 0 for what is missing at the end.
  std::size_t length = 0;
};

/// A text of the command line, part by part. Blanks separate words; commas are parts of their own.
class TextParts {
 public:
  /// `what` is the option, or what else errors are to call the text.
  TextParts(std::string what, std::string text);

  bool AtEnd() const { return next_ == parts_.size(); }
  /// The next part; at the end one without text.
  const TextPart& Peek() const;
  TextPart Next();
  /// Takes the next parts where they are these words; whether they were.
  bool Take(const std::vector<std::string_view>& words);
  /// Throws where something is left; `expected` tells what is right: "leave it out: ..."
  void ExpectEnd(const std::string& expected) const;

  /// Throws a `TextError` that marks the part and says `problem` of it: "is no day; give ..."; of
  /// one that is missing `expected` says what should be there: "a day is missing".
  [[noreturn]] void Fail(const TextPart& part, const std::string& problem,
                         const std::string& expected) const;
  /// The same of a part of which only some bytes are wrong, or of several parts.
  [[noreturn]] void FailAt(std::size_t begin, std::size_t length, const std::string& problem) const;

  const std::string& Text() const { return text_; }

 private:
  std::string what_;
  std::string text_;
  std::vector<TextPart> parts_;
  TextPart end_;
  std::size_t next_ = 0;
};

/// The text with A to Z in lower case.
std::string LowerCase(std::string_view text);

/// A whole number written with digits only, at most `most`, which is below 10^17.
std::optional<long> ReadNumber(std::string_view digits, long most);

}  // namespace controller::cli
