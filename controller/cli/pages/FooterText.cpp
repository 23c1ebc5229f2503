#include "controller/cli/pages/FooterText.h"

#include <string_view>

namespace controller::cli {

namespace {

constexpr std::string_view kStatuses = "Exit status: ";
constexpr std::string_view kIndent = "  ";

bool IsNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

/// "0 done, 1 it could not be done, or not all of it." A comma before a number begins the next.
void ReadStatuses(std::string_view text, Footer& footer) {
  while (!text.empty()) {
    std::size_t end = text.size();
    for (std::size_t comma = text.find(", "); comma != std::string_view::npos;
         comma = text.find(", ", comma + 1)) {
      const std::string_view behind = text.substr(comma + 2);
      if (!IsNumber(behind.substr(0, behind.find(' ')))) continue;
      end = comma;
      break;
    }
    const std::string_view one = text.substr(0, end);
    const std::size_t blank = one.find(' ');
    std::string meaning(one.substr(blank + 1));
    if (!meaning.ends_with('.')) meaning += '.';
    footer.statuses.emplace_back(one.substr(0, blank), meaning);
    text = end == text.size() ? "" : text.substr(end + 2);
  }
}

}  // namespace

Footer ReadFooter(const std::string& text) {
  Footer footer;
  bool newParagraph = true;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    const std::string line = text.substr(begin, end - begin);
    begin = end + 1;
    if (line.empty()) {
      newParagraph = true;
    } else if (line.starts_with(kStatuses)) {
      ReadStatuses(std::string_view(line).substr(kStatuses.size()), footer);
    } else if (line.ends_with(':') && newParagraph) {
      footer.sections.push_back({line.substr(0, line.size() - 1), {}});
    } else if (line.starts_with(kIndent) && !footer.sections.empty()) {
      footer.sections.back().lines.push_back(line.substr(kIndent.size()));
    } else if (newParagraph || footer.paragraphs.empty()) {
      footer.paragraphs.push_back(line);
      newParagraph = false;
    } else {
      footer.paragraphs.back() += ' ' + line;
    }
  }
  return footer;
}

}  // namespace controller::cli
