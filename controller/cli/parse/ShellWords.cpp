#include "controller/cli/parse/ShellWords.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "controller/Printable.h"
#include "controller/cli/parse/TextError.h"

namespace controller::cli {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

bool IsOperator(const std::string& word) {
  constexpr std::array<std::string_view, 14> kOperators = {
      "|", "||", "&&", "&", ";", ">", ">>", "<", "<<", "2>", "2>>", "2>&1", "&>", ">&2"};
  return std::find(kOperators.begin(), kOperators.end(), word) != kOperators.end();
}

/// Reads one text into words.
class Splitter {
 public:
  Splitter(const std::string& option, const std::string& text) : option_(option), text_(text) {}

  ShellWords Split() {
    while (SkipBlanks()) ReadWord();
    if (split_.words.empty()) {
      throw TextError(option_, text_, 0, text_.size(),
                      "a program is missing; give one and its "
                      "arguments");
    }
    return std::move(split_);
  }

 private:
  bool SkipBlanks() {
    at_ = std::min(text_.find_first_not_of(kBlanks, at_), text_.size());
    return at_ < text_.size();
  }

  void ReadWord() {
    std::string word;
    bool plain = true;
    bool variable = false;
    const bool home = text_[at_] == '~';
    while (at_ < text_.size() && kBlanks.find(text_[at_]) == std::string_view::npos) {
      const char c = text_[at_];
      if (c == '\'' || c == '"' || c == '\\') plain = false;
      if (c == '$' && at_ + 1 < text_.size() && text_[at_ + 1] != ' ') variable = true;
      if (c == '\'') {
        ReadSingle(word);
      } else if (c == '"') {
        variable |= ReadDouble(word);
      } else {
        word += c == '\\' ? Escaped() : text_[at_++];
      }
    }
    Note(word, (plain && IsOperator(word)) || variable || home);
    split_.words.push_back(std::move(word));
  }

  void ReadSingle(std::string& word) {
    const std::size_t end = text_.find('\'', at_ + 1);
    if (end == std::string::npos) FailOpen("' has no end; give the other one");
    word.append(text_, at_ + 1, end - at_ - 1);
    at_ = end + 1;
  }

  /// Whether a shell would have replaced something in it.
  bool ReadDouble(std::string& word) {
    bool variable = false;
    const std::size_t begin = at_++;
    for (; at_ < text_.size() && text_[at_] != '"'; ++at_) {
      const bool escape = text_[at_] == '\\' && at_ + 1 < text_.size() &&
                          std::string_view("\"\\$`").find(text_[at_ + 1]) != std::string_view::npos;
      if (escape) ++at_;
      variable |= !escape && (text_[at_] == '$' || text_[at_] == '`');
      word += text_[at_];
    }
    if (at_ == text_.size()) {
      at_ = begin;
      FailOpen("\" has no end; give the other one");
    }
    ++at_;
    return variable;
  }

  char Escaped() {
    if (at_ + 1 == text_.size()) {
      FailOpen("\\ takes the meaning from a character, and none follows; give \\\\ for itself");
    }
    at_ += 2;
    return text_[at_ - 1];
  }

  void Note(const std::string& word, bool special) {
    if (!special) return;
    const std::string note = Quoted(word) +
                             " is passed as it is, no shell reads it; for one give "
                             "sh -c '...'";
    auto& notes = split_.notes;
    if (std::find(notes.begin(), notes.end(), note) == notes.end()) notes.push_back(note);
  }

  [[noreturn]] void FailOpen(const std::string& problem) const {
    throw TextError(option_, text_, at_, 1, problem);
  }

  const std::string& option_;
  const std::string& text_;
  std::size_t at_ = 0;
  ShellWords split_;
};

}  // namespace

ShellWords SplitShellWords(const std::string& option, const std::string& text) {
  return Splitter(option, text).Split();
}

std::string ShellQuoted(const std::string& word) {
  constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-./:=@%+,{}";
  if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos) return word;
  std::string quoted = "'";
  for (const char c : word) {
    if (c == '\'') {
      quoted += "'\\''";
    } else {
      quoted += c;
    }
  }
  return quoted + '\'';
}

std::string ShellQuoted(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words) line += (line.empty() ? "" : " ") + ShellQuoted(word);
  return line;
}

}  // namespace controller::cli
