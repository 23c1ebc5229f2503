#include "controller/cli/pages/HelpFormatter.h"

#include <algorithm>

#include "controller/cli/show/Terminal.h"

namespace controller::cli {

namespace {

constexpr std::size_t kWidest = 100;
constexpr std::size_t kNarrowest = 40;

/// Where the second column of a line begins, or its text where it has but one.
std::size_t HangOf(const std::string& line) {
  const std::size_t begin = std::min(line.find_first_not_of(' '), line.size());
  const std::size_t gap = begin == 0 ? std::string::npos : line.find("  ", begin);
  if (gap == std::string::npos) return begin;
  return line.find_first_not_of(' ', gap);
}

void Wrap(std::string line, std::size_t width, std::string& out) {
  const std::size_t hang = std::min(HangOf(line), width / 2);
  while (line.size() > width) {
    const std::size_t end = line.rfind(' ', width);
    if (end == std::string::npos || line.find_first_not_of(' ') > end || end <= hang) break;
    out += line.substr(0, end) + '\n';
    line = std::string(hang, ' ') + line.substr(line.find_first_not_of(' ', end));
  }
  out += line + '\n';
}

}  // namespace

std::string HelpFormatter::make_help(const CLI::App* app, std::string name,
                                     CLI::AppFormatMode mode) const {
  return Wrapped(Formatter::make_help(app, std::move(name), mode), width_);
}

std::string HelpFormatter::make_option_opts(const CLI::Option* option) const {
  if (!option->get_positional()) return Formatter::make_option_opts(option);
  return std::string(option->get_items_expected_max() > 1 ? " ..." : "") +
         (option->get_required() ? " REQUIRED" : "");
}

std::string Wrapped(const std::string& text, std::size_t width) {
  std::string out;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    Wrap(text.substr(begin, end - begin), width, out);
    begin = end + 1;
  }
  return out;
}

std::size_t HelpWidth() {
  const std::size_t width = StandardOutput("never").width;
  return width == 0 ? kWidest : std::clamp(width, kNarrowest, kWidest);
}

}  // namespace controller::cli
