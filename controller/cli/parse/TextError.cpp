#include "controller/cli/parse/TextError.h"

#include <algorithm>

#include "controller/Printable.h"
#include "controller/cli/show/DisplayWidth.h"

namespace controller::cli {

namespace {

constexpr std::size_t kRoomBefore = 60;
constexpr std::size_t kRoomForText = 40;

/// What stands before the marked part; of a long text its end.
std::string TextBefore(std::string_view text) {
  std::string before = Printable(text);
  if (before.size() <= kRoomBefore) return before;
  std::size_t begin = before.size() - kRoomForText;
  while (begin < before.size() && (before[begin] & 0xC0) == 0x80) ++begin;
  return "..." + before.substr(begin);
}

std::string MakePicture(std::string_view text, std::size_t begin, std::size_t length) {
  const std::string before = TextBefore(text.substr(0, begin));
  const std::string part = Printable(text.substr(begin, length), 2 * kRoomForText);
  const std::string after = CutToWidth(Printable(text.substr(begin + length)), kRoomForText);
  const std::size_t marks = std::max<std::size_t>(DisplayWidth(part), 1);
  return "  " + before + part + after + "\n  " + std::string(DisplayWidth(before), ' ') + '^' +
         std::string(marks - 1, '~') + '\n';
}

}  // namespace

TextError::TextError(const std::string& what, std::string_view text, std::size_t begin,
                     std::size_t length, const std::string& problem)
    : Failure(what + ' ' + Quoted(text) + ": " + problem, ExitStatus::kBadInput),
      picture_(MakePicture(text, begin, length)) {}

}  // namespace controller::cli
