#pragma once

#include <string>
#include <vector>

namespace controller::cli {

/// A command line, in the words that a shell would make of it.
struct ShellWords {
  std::vector<std::string> words;
  /// What a shell would have acted on and what is now passed as it is, in words for the user: `">"
  /// is passed as it is`. Without repetitions.
  std::vector<std::string> notes;
};

/// Splits at blanks. Text in '...' stands as it is; in "..." a backslash before " \ $ or ` takes
/// their meaning from them; elsewhere a backslash does so for any character. Nothing else that a
/// shell knows has a meaning: no variables, patterns, pipes or comments. Throws a `TextError` where
/// there is no word, or a quote or backslash has no end.
ShellWords SplitShellWords(const std::string& option, const std::string& text);

/// One word as `SplitShellWords`, and a shell, reads it as that word again.
std::string ShellQuoted(const std::string& word);
std::string ShellQuoted(const std::vector<std::string>& words);

}  // namespace controller::cli
