#include "controller/cli/show/Terminal.h"

#include <cstdlib>
#include <iostream>
#include <string>
#include <sys/ioctl.h>
#include <unistd.h>

#include "controller/cli/parse/TextParts.h"

namespace controller::cli {

namespace {

constexpr long kWidest = 100000;

const char* Codes(Style style) {
  switch (style) {
    case Style::kBold:
      return "1";
    case Style::kDim:
      return "2";
    case Style::kGood:
      return "32";
    case Style::kBad:
      return "31";
    case Style::kWarning:
      return "33";
    default:
      return nullptr;
  }
}

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

std::size_t Columns() {
  const auto told = ReadNumber(Environment("COLUMNS"), kWidest);
  if (told && *told > 0) return static_cast<std::size_t>(*told);
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  return 80;
}

bool WantsColors(const std::string& color, bool isTerminal) {
  if (color != "auto") return color == "always";
  return isTerminal && Environment("NO_COLOR").empty() && Environment("TERM") != "dumb";
}

}  // namespace

std::string Terminal::Styled(std::string_view text, Style style) const {
  const char* codes = Codes(style);
  if (!colors || codes == nullptr || text.empty()) return std::string(text);
  return std::string("\x1b[") + codes + 'm' + std::string(text) + "\x1b[0m";
}

Terminal StandardOutput(const std::string& color) {
  const bool isTerminal = isatty(STDOUT_FILENO) == 1;
  return {std::cout, isTerminal ? Columns() : 0, WantsColors(color, isTerminal), isTerminal};
}

}  // namespace controller::cli
