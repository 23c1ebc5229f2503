#include "controller/cli/parse/ActionParts.h"

#include "controller/Printable.h"
#include "controller/cli/parse/DurationText.h"
#include "controller/cli/parse/TextError.h"
#include "controller/cli/parse/TextParts.h"

namespace controller::cli {

namespace {

constexpr long kLargestNumber = 4294967295;
constexpr long kLongestCatchUp = 10080;

/// The characters of which RFC 9110 makes the name of a header.
bool IsName(const std::string& text) {
  constexpr std::string_view kAllowed =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789!#$%&'*+-.^_`|~";
  return !text.empty() && text.find_first_not_of(kAllowed) == std::string::npos;
}

std::string WithoutBlanks(const std::string& text) {
  const std::size_t begin = text.find_first_not_of(" \t");
  if (begin == std::string::npos) return {};
  return text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
}

}  // namespace

std::pair<std::string, std::string> ParseHeader(const std::string& option,
                                                const std::string& text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos) {
    throw TextError(option, text, text.size(), 0,
                    "a colon is missing; give a name and a value, X-Key: abc");
  }
  const std::string name = WithoutBlanks(text.substr(0, colon));
  if (!IsName(name)) {
    throw TextError(option, text, 0, colon,
                    Quoted(name) +
                        " is no header's name; give letters, digits and dashes and a "
                        "colon behind them");
  }
  return {name, WithoutBlanks(text.substr(colon + 1))};
}

Json ParseVariable(const std::string& option, const std::string& text) {
  const std::size_t equals = text.find('=');
  const std::string name = text.substr(0, equals);
  const std::size_t dot = name.find('.');
  if (equals == std::string::npos || dot == std::string::npos) {
    throw TextError(option, text, 0, text.size(),
                    "this is no variable and its value; give DEVICE.VARIABLE=VALUE, 1.2001=on");
  }
  const auto device = ReadNumber(std::string_view(name).substr(0, dot), kLargestNumber);
  if (!device) throw TextError(option, text, 0, dot, "the device is no number; give 1.2001=on");
  const auto variable = ReadNumber(std::string_view(name).substr(dot + 1), kLargestNumber);
  if (!variable) {
    throw TextError(option, text, dot + 1, equals - dot - 1,
                    "the variable is no number; give 1.2001=on");
  }
  return {{"device", *device}, {"variable", *variable}, {"value", text.substr(equals + 1)}};
}

Json ParseCatchUp(const std::string& option, const std::string& text) {
  const std::string lower = LowerCase(text);
  if (lower == "ignore" || lower == "always") return {{"policy", lower}};
  const auto seconds = ReadDuration(text, kSecondsPerMinute);
  if (seconds && *seconds % kSecondsPerMinute == 0 && *seconds > 0 &&
      *seconds <= kLongestCatchUp * kSecondsPerMinute) {
    return {{"policy", "within"}, {"minutes", *seconds / kSecondsPerMinute}};
  }
  throw TextError(option, text, 0, text.size(),
                  "this is no way to catch up; give ignore, always, or how late it may be, 10m "
                  "for example, at most 7d");
}

std::string CatchUpText(const Json& catchUp) {
  const std::string policy = TextField(catchUp, "policy", "?");
  if (policy != "within") return Printable(policy);
  return SecondsText(NumberField(catchUp, "minutes") * kSecondsPerMinute);
}

}  // namespace controller::cli
