#include "controller/PlainXml.h"

#include <algorithm>
#include <array>
#include <vector>

#include "controller/Utf8.h"

namespace controller {

namespace {

/// More than any state has; what is larger is left to a parser and its limits.
constexpr std::size_t kMostBytes = std::size_t{64} * 1024 * 1024;
constexpr std::size_t kMostDepth = 32;

constexpr bool IsNameStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

constexpr bool IsNamePart(char c) {
  return IsNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

/// The bytes that stand for themselves in a text.
constexpr std::array<bool, 256> kPlainByte = [] {
  std::array<bool, 256> table{};
  for (std::size_t byte = 0x20; byte < 0x80; ++byte) table[byte] = true;
  for (const char other : {'\t', '\n'}) table[static_cast<unsigned char>(other)] = true;
  for (const char marked : {'&', '<', '>'}) table[static_cast<unsigned char>(marked)] = false;
  return table;
}();

class Scanner {
 public:
  explicit Scanner(std::string_view text) : rest_(text) {}

  bool Run() {
    do {
      if (!TakeTag() || !TakeText()) return false;
    } while (!open_.empty());
    return rest_.empty();
  }

 private:
  bool Take(std::string_view expected) {
    if (!rest_.starts_with(expected)) return false;
    rest_.remove_prefix(expected.size());
    return true;
  }

  std::string_view TakeName() {
    if (rest_.empty() || !IsNameStart(rest_.front())) return {};
    const auto end = std::find_if_not(rest_.begin(), rest_.end(), IsNamePart);
    const std::string_view name = rest_.substr(0, static_cast<std::size_t>(end - rest_.begin()));
    rest_.remove_prefix(name.size());
    return name;
  }

  bool TakeTag() {
    if (!Take("<")) return false;
    if (Take("/")) {
      if (open_.empty() || !Take(open_.back()) || !Take(">")) return false;
      open_.pop_back();
      return true;
    }
    const std::string_view name = TakeName();
    if (name.empty() || open_.size() == kMostDepth) return false;
    if (Take("/>")) return true;
    open_.push_back(name);
    return Take(">");
  }

  /// Up to the next tag. Behind the root there may be none.
  bool TakeText() {
    while (!rest_.empty() && rest_.front() != '<') {
      if (open_.empty()) return false;
      if (kPlainByte[static_cast<unsigned char>(rest_.front())]) {
        rest_.remove_prefix(1);
      } else if (!TakeReference() && !TakeBeyondAscii()) {
        return false;
      }
    }
    return true;
  }

  bool TakeReference() { return Take("&amp;") || Take("&lt;") || Take("&gt;") || Take("&#13;"); }

  bool TakeBeyondAscii() {
    const Utf8Char character = DecodeUtf8(rest_, 0);
    const bool plain = character.valid && character.code >= 0x80 && character.code != 0xFFFE &&
                       character.code != 0xFFFF;
    if (plain) rest_.remove_prefix(character.length);
    return plain;
  }

  std::string_view rest_;
  std::vector<std::string_view> open_;
};

}  // namespace

bool IsPlainXml(std::string_view text) { return text.size() <= kMostBytes && Scanner(text).Run(); }

}  // namespace controller
