#pragma once

#include <string>
#include <string_view>

namespace controller {

/// How a text answers when it is read as a decimal number.
enum class NumberForm {
  /// Nothing but a number, blanks round it allowed.
  kNumber,
  /// A number with something behind it: the number counts.
  kNumberAndMore,
  /// No number at all: counts as 0.
  kNoNumber,
  /// No characters but blanks: counts as 0.
  kEmpty,
  /// A number beyond 64 bits.
  kTooLarge,
};

NumberForm FormOf(std::string_view text);

/// The text without blanks before and behind it.
std::string_view Trimmed(std::string_view text);

}  // namespace controller
