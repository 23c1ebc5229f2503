// One value of each kind that an ObjectReader reads.

#include <cmath>
#include <limits>

#include "controller/Printable.h"
#include "controller/Utf8.h"
#include "controller/json/ObjectReader.h"
#include "controller/json/ShownJson.h"

namespace controller {

using nlohmann::json;

namespace {

bool IsControl(char32_t code, bool lines) {
  if (lines && (code == '\n' || code == '\r' || code == '\t')) return false;
  return code < 0x20 || (code >= 0x7F && code <= 0x9F);
}

// What is wrong with the characters of a text, or nothing; `count` is how many there are.
std::string WrongCharacters(const std::string& text, bool lines, std::size_t& count) {
  count = 0;
  for (std::size_t position = 0; position < text.size(); ++count) {
    const Utf8Char character = DecodeUtf8(text, position);
    if (!character.valid) return "is " + Quoted(text) + "; give valid UTF-8";
    if (IsControl(character.code, lines)) {
      return "is " + Quoted(text) + "; leave the control characters out";
    }
    // XML, in which the schedule is kept, has no place for these two.
    if (character.code == 0xFFFE || character.code == 0xFFFF) {
      return "is " + Quoted(text) + "; leave out U+FFFE and U+FFFF, which are no characters";
    }
    position += character.length;
  }
  return {};
}

std::string Span(const std::string& least, const std::string& most) {
  return least == most ? least : least + " to " + most;
}

std::string CharactersText(std::size_t least, std::size_t most) {
  if (least == 0) return "a text of at most " + std::to_string(most) + " characters";
  return "a text of " + Span(std::to_string(least), std::to_string(most)) + " characters";
}

// The whole number that a value holds; nothing also where it is beyond `long`.
std::optional<long> WholeOf(const json& value) {
  if (value.is_number_unsigned()) {
    const auto number = value.get<std::uint64_t>();
    if (number > static_cast<std::uint64_t>(std::numeric_limits<long>::max())) return std::nullopt;
    return static_cast<long>(number);
  }
  if (value.is_number_integer()) return value.get<long>();
  if (!value.is_number_float()) return std::nullopt;
  const double number = value.get<double>();
  constexpr double kExact = 9007199254740992.0;  // beyond it not every whole number is a double
  if (std::trunc(number) != number || std::fabs(number) > kExact) return std::nullopt;
  return static_cast<long>(number);
}

}  // namespace

std::optional<std::string> ObjectReader::Text(const char* name, Need need, std::size_t least,
                                              std::size_t most, bool lines) {
  const json* value = Find(name, need, CharactersText(least, most));
  if (value == nullptr) return std::nullopt;
  if (!value->is_string()) {
    Complain(name, "is " + ShownJson(*value) + "; give " + CharactersText(least, most));
    return std::nullopt;
  }
  const auto& text = value->get_ref<const std::string&>();
  std::size_t count = 0;
  const std::string wrong = WrongCharacters(text, lines, count);
  if (!wrong.empty()) {
    Complain(name, wrong);
    return std::nullopt;
  }
  if (count >= least && count <= most) return text;
  const std::string has =
      "has " + std::to_string(count) + (count == 1 ? " character" : " characters");
  Complain(name, (count == 0 ? "is empty" : has) + "; give " + CharactersText(least, most));
  return std::nullopt;
}

std::optional<long> ObjectReader::Whole(const char* name, Need need, long least, long most) {
  const std::string what = "a whole number, " + Span(std::to_string(least), std::to_string(most));
  const json* value = Find(name, need, what);
  if (value == nullptr) return std::nullopt;
  const std::optional<long> number = WholeOf(*value);
  if (number && *number >= least && *number <= most) return number;
  Complain(name, "is " + ShownJson(*value) + "; give " + what);
  return std::nullopt;
}

std::optional<double> ObjectReader::Number(const char* name, Need need, double least, double most) {
  const std::string what = "a number, " + Span(json(least).dump(), json(most).dump());
  const json* value = Find(name, need, what);
  if (value == nullptr) return std::nullopt;
  if (value->is_number()) {
    const double number = value->get<double>();
    if (number >= least && number <= most) return number;
  }
  Complain(name, "is " + ShownJson(*value) + "; give " + what);
  return std::nullopt;
}

std::optional<bool> ObjectReader::Flag(const char* name, Need need) {
  const json* value = Find(name, need, "true or false");
  if (value == nullptr) return std::nullopt;
  if (value->is_boolean()) return value->get<bool>();
  Complain(name, "is " + ShownJson(*value) + "; give true or false");
  return std::nullopt;
}

std::optional<std::size_t> ObjectReader::Word(const char* name, Need need,
                                              const std::vector<std::string>& words) {
  std::string what;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i > 0) what += i + 1 < words.size() ? ", " : " or ";
    what += '"' + words[i] + '"';
  }
  const json* value = Find(name, need, what);
  if (value == nullptr) return std::nullopt;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (value->is_string() && value->get_ref<const std::string&>() == words[i]) return i;
  }
  Complain(name, "is " + ShownJson(*value) + "; give " + what);
  return std::nullopt;
}

}  // namespace controller
