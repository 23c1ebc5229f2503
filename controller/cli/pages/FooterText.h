#pragma once

#include <string>
#include <utility>
#include <vector>

namespace controller::cli {

/// Lines that stand as they are below a title: "Examples:" and lines with two blanks before.
struct FooterSection {
  std::string title;
  std::vector<std::string> lines;
};

/// The end of a command's help, in its parts.
struct Footer {
  std::vector<std::string> paragraphs;
  std::vector<FooterSection> sections;
  /// From "Exit status: 0 done, 1 it could not be done.": "0" and "done", and so on.
  std::vector<std::pair<std::string, std::string>> statuses;
};

Footer ReadFooter(const std::string& text);

}  // namespace controller::cli
