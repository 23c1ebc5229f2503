#pragma once

#include <functional>
#include <gtest/gtest.h>
#include <string>

#include "controller/cli/parse/TextError.h"

/// What a parser said when it refused a text.
struct Refusal {
  std::string message;
  /// The part of the text that it marked; "" for what was missing.
  std::string marked;
  /// The column of the first mark.
  std::size_t column = 0;
};

/// Runs a parser that is to throw a `TextError`; a failed test where it does not.
inline Refusal RefusalOf(const std::function<void()>& parse) {
  try {
    parse();
  } catch (const controller::cli::TextError& error) {
    const std::string& picture = error.Picture();
    const std::size_t end = picture.find('\n');
    const std::string line = picture.substr(2, end - 2);
    const std::string marks = picture.substr(end + 3);
    const std::size_t column = marks.find('^');
    EXPECT_EQ(error.Status(), controller::ExitStatus::kBadInput);
    EXPECT_EQ(marks.back(), '\n') << picture;
    EXPECT_EQ(marks.find_first_not_of('~', column + 1), marks.size() - 1) << picture;
    const bool behind = column >= line.size();
    return {error.what(), behind ? "" : line.substr(column, marks.size() - 1 - column), column};
  }
  ADD_FAILURE() << "it was not refused";
  return {};
}
