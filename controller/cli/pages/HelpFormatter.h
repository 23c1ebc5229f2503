#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace controller::cli {

/// Writes the help as wide as the terminal is, at most 100 columns, with descriptions below each
/// other. Must be given to the program before its commands are added.
class HelpFormatter : public CLI::Formatter {
 public:
  explicit HelpFormatter(std::size_t width) : width_(width) { column_width(kColumn); }

  std::string make_help(const CLI::App* app, std::string name,
                        CLI::AppFormatMode mode) const override;

  /// An argument's name says all that a type would.
  std::string make_option_opts(const CLI::Option* option) const override;

 private:
  static constexpr std::size_t kColumn = 26;
  std::size_t width_;
};

/// Lines longer than `width` broken at blanks. What follows stands as far to the right as the
/// second column of the line (after two blanks or more), or as its begin.
std::string Wrapped(const std::string& text, std::size_t width);

/// The width for `HelpFormatter`.
std::size_t HelpWidth();

}  // namespace controller::cli
