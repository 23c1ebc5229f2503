#include "controller/json/StrictJson.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

#include "controller/Printable.h"

namespace controller {

namespace {

using nlohmann::json;

// Reads the bytes of a text and tells how far the reading is.
class CountingIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  CountingIterator(const char* at, std::size_t* read) : at_(at), read_(read) {}
  reference operator*() const { return *at_; }
  CountingIterator& operator++() {
    ++at_;
    ++*read_;
    return *this;
  }
  CountingIterator operator++(int) {
    const CountingIterator before = *this;
    ++*this;
    return before;
  }
  bool operator==(const CountingIterator& other) const { return at_ == other.at_; }

 private:
  const char* at_;
  std::size_t* read_;
};

// "line 2, column 7: ": where the byte before `position` stands, columns counted in characters.
std::string Where(std::string_view text, std::size_t position) {
  const std::string_view before = text.substr(0, position == 0 ? 0 : position - 1);
  std::size_t line = 1;
  std::size_t column = 1;
  for (const char byte : before) {
    if (byte == '\n') {
      ++line;
      column = 1;
    } else if ((static_cast<unsigned char>(byte) & 0xC0u) != 0x80) {
      ++column;
    }
  }
  return "line " + std::to_string(line) + ", column " + std::to_string(column) + ": ";
}

// The parser's own words, without its name and without the place, which `Where` tells.
std::string Reason(const std::string& what) {
  std::string_view reason = what;
  const std::size_t name = reason.find("] ");
  if (name != reason.npos) reason.remove_prefix(name + 2);
  const std::size_t place = reason.find(": ");
  if (reason.substr(0, 5) == "parse" && place != reason.npos) reason.remove_prefix(place + 2);
  return Printable(reason, 300);
}

// Whether a number that reads as 0 is written with another digit than 0 before its exponent.
bool IsLostInZero(double value, const std::string& digits) {
  if (value != 0) return false;
  const std::size_t end = std::min(digits.find_first_of("eE"), digits.size());
  return std::string_view(digits).substr(0, end).find_first_of("123456789") != std::string::npos;
}

// Builds the document, and refuses what the parser would let pass.
class Builder final : public nlohmann::json_sax<json> {
 public:
  Builder(std::string_view text, std::size_t depth, const std::size_t& read)
      : text_(text), mostDepth_(depth), read_(read) {}

  json TakeDocument() { return std::move(document_); }
  const std::optional<JsonFault>& Fault() const { return fault_; }

  bool null() override { return Add(nullptr) != nullptr; }
  bool boolean(bool value) override { return Add(value) != nullptr; }
  bool number_integer(number_integer_t value) override { return Add(value) != nullptr; }
  bool number_unsigned(number_unsigned_t value) override { return Add(value) != nullptr; }
  bool string(string_t& value) override { return Add(std::move(value)) != nullptr; }
  bool binary(binary_t&) override { return Refuse("binary data is no JSON"); }
  bool number_float(number_float_t value, const string_t& digits) override {
    if (IsLostInZero(value, digits)) {
      // The parser has read on by one byte, to see that the number ends.
      const bool readOn = read_ > 0 && (text_[read_ - 1] < '0' || text_[read_ - 1] > '9');
      return Refuse("the number " + Printable(digits, 60) + " is too small to be kept",
                    readOn ? read_ - 1 : read_);
    }
    return Add(value) != nullptr;
  }

  bool start_object(std::size_t) override { return Open(json::object()); }
  bool start_array(std::size_t) override { return Open(json::array()); }
  bool end_object() override { return Close(); }
  bool end_array() override { return Close(); }

  bool key(string_t& name) override {
    if (open_.back()->contains(name)) {
      return Refuse("the key " + Quoted(name) + " stands twice in one object");
    }
    member_ = &(*open_.back())[name];
    return true;
  }

  bool parse_error(std::size_t position, const std::string&,
                   const nlohmann::detail::exception& error) override {
    fault_ = JsonFault{Where(text_, position) + Reason(error.what())};
    return false;
  }

 private:
  bool Refuse(const std::string& why) { return Refuse(why, read_); }
  bool Refuse(const std::string& why, std::size_t position) {
    fault_ = JsonFault{Where(text_, position) + why};
    return false;
  }

  // Where the value has come to stand.
  json* Add(json value) {
    if (open_.empty()) {
      document_ = std::move(value);
      return &document_;
    }
    if (open_.back()->is_array()) {
      open_.back()->push_back(std::move(value));
      return &open_.back()->back();
    }
    *member_ = std::move(value);
    return member_;
  }

  bool Open(json container) {
    if (open_.size() == mostDepth_) {
      return Refuse("more than " + std::to_string(mostDepth_) +
                    " objects and lists stand in each other");
    }
    open_.push_back(Add(std::move(container)));
    return true;
  }

  bool Close() {
    open_.pop_back();
    return true;
  }

  std::string_view text_;
  std::size_t mostDepth_;
  const std::size_t& read_;
  json document_;
  // Those that are not closed yet, the innermost last. They stay where they are: only the innermost
  // grows.
  std::vector<json*> open_;
  // The value of the key that was read last.
  json* member_ = nullptr;
  std::optional<JsonFault> fault_;
};

std::optional<JsonFault> CheckBytes(std::string_view text, const JsonLimits& limits) {
  if (text.size() > limits.bytes) {
    return JsonFault{"the text has " + std::to_string(text.size()) + " bytes; at most " +
                     std::to_string(limits.bytes) + " are taken"};
  }
  if (text.empty()) return JsonFault{"the text is empty; give a JSON document"};
  // The parser takes a zero byte for the end of the text, and would not see what follows.
  const std::size_t zero = text.find('\0');
  if (zero == text.npos) return std::nullopt;
  return JsonFault{Where(text, zero + 1) + "a zero byte is no JSON"};
}

}  // namespace

std::variant<json, JsonFault> ParseStrictJson(std::string_view text, const JsonLimits& limits) {
  if (auto fault = CheckBytes(text, limits)) return std::move(*fault);
  std::size_t read = 0;
  Builder builder(text, limits.depth, read);
  const bool whole = json::sax_parse(CountingIterator(text.data(), &read),
                                     CountingIterator(text.data() + text.size(), &read), &builder);
  if (builder.Fault()) return *builder.Fault();
  if (!whole) return JsonFault{"the text is no JSON document"};
  return builder.TakeDocument();
}

}  // namespace controller
