#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "controller/Failure.h"

namespace controller::cli {

/// What is wrong with one part of a text that was given on the command line. The message quotes the
/// text: `--every "2 weeks on mom": "mom" is no day of the week; give sun, mon, ...`.
class TextError : public Failure {
 public:
  /// `what` is the option, or what else the text is for. The part begins at byte `begin`; one of
  /// length 0 stands for what is missing there. `problem` is the message's end.
  TextError(const std::string& what, std::string_view text, std::size_t begin, std::size_t length,
            const std::string& problem);

  /// The text once more with the part marked below it, two lines; for a terminal.
  const std::string& Picture() const { return picture_; }

 private:
  std::string picture_;
};

}  // namespace controller::cli
