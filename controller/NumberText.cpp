#include "controller/NumberText.h"

#include <algorithm>

namespace controller {

namespace {

constexpr std::string_view kBlanks = " \t\n\v\f\r";
constexpr std::size_t kMostDigits = 18;  // always fits 64 bits, with or without a sign

}  // namespace

std::string_view Trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

NumberForm FormOf(std::string_view text) {
  std::string_view rest = Trimmed(text);
  if (rest.empty()) return NumberForm::kEmpty;
  if (rest[0] == '-' || rest[0] == '+') rest.remove_prefix(1);
  const auto digits = std::min(rest.find_first_not_of("0123456789"), rest.size());
  if (digits == 0) return NumberForm::kNoNumber;
  const auto zeros = std::min(rest.find_first_not_of('0'), digits);
  if (digits - zeros > kMostDigits) return NumberForm::kTooLarge;
  return digits == rest.size() ? NumberForm::kNumber : NumberForm::kNumberAndMore;
}

}  // namespace controller
