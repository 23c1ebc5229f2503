#include <gtest/gtest.h>
#include <string>

#include "controller/json/StrictJson.h"

namespace {

using controller::JsonFault;
using controller::JsonLimits;
using controller::ParseStrictJson;
using namespace std::string_literals;

std::string FaultOf(const std::string& text, const JsonLimits& limits = {}) {
  const auto parsed = ParseStrictJson(text, limits);
  const auto* fault = std::get_if<JsonFault>(&parsed);
  return fault == nullptr ? "" : fault->text;
}

TEST(StrictJson, TakesWhatIsJson) {
  for (const char* text :
       {"null", "true", "[]", "{}", " {\"a\": [1, -2, 3.5, \"x\", null, {\"b\": {}}]}\n",
        "\"\\u00e9\\ud83d\\ude00 \xC3\xA9\"", "[18446744073709551615, -9223372036854775808]",
        "[0, -0, 0.0, 0e-999, 1e308, 4.9e-324]", "[{\"a\": 1}, {\"a\": 2}]",
        "{\"a\": {\"a\": {\"a\": 1}}}"}) {
    const auto parsed = ParseStrictJson(text);
    ASSERT_TRUE(std::holds_alternative<nlohmann::json>(parsed)) << text << FaultOf(text);
    EXPECT_EQ(std::get<nlohmann::json>(parsed), nlohmann::json::parse(text)) << text;
  }
}

TEST(StrictJson, SaysWhatIsWrongAndWhere) {
  const struct {
    const char* why;
    std::string text;
    const char* place;
    const char* said;
  } rows[] = {
      {"nothing at all", "", "", "the text is empty"},
      {"blanks only", "  ", "line 1, column 3: ", "unexpected end of input"},
      {"cut off", "{\"a\":", "line 1, column 6: ", "unexpected end of input"},
      {"a word", "hello", "line 1, column 1: ", "invalid literal"},
      {"a comma too many", "{\n \"a\": 1,\n}", "line 3, column 1: ", "unexpected '}'"},
      {"a comment", "[1] // one", "line 1, column 5: ", "invalid literal"},
      {"something behind it", "{} {}", "line 1, column 4: ", "expected end of input"},
      {"a zero byte, which would hide what follows", "{}\0{}"s,
       "line 1, column 3: ", "a zero byte is no JSON"},
      {"a key twice", "{\"a\": 1,\n \"a\": 2}",
       "line 2, column 4: ", "the key \"a\" stands twice in one object"},
      {"a key twice, written in two ways", "{\"a\": 1, \"\\u0061\": 2}",
       "line 1, column 17: ", "the key \"a\" stands twice"},
      {"a key twice, deep inside", "[{\"x\": {\"b\": 1, \"b\": 1}}]",
       "line 1, column 19: ", "the key \"b\" stands twice"},
      {"too large", "[1e999]", "line 1, column 6: ", "number overflow parsing '1e999'"},
      {"too small", "[1e-999]", "line 1, column 7: ", "the number 1e-999 is too small to be kept"},
      {"too small, and the text ends", "-0.5e-999", "line 1, column 9: ", "too small to be kept"},
      {"no number of JSON", "[NaN]", "line 1, column 2: ", "invalid literal"},
      {"a zero before", "[01]", "line 1, column 3: ", "unexpected number literal"},
      {"no UTF-8", "[\"\xC3(\"]", "line 1, column 4: ", "ill-formed UTF-8 byte"},
      {"an overlong form", "[\"\xC0\xAF\"]", "line 1, column 3: ", "ill-formed UTF-8 byte"},
      {"a surrogate as bytes", "[\"\xED\xA0\x80\"]", "line 1, column 4: ", "ill-formed UTF-8 byte"},
      {"half a pair", "[\"\\ud83d\"]", "line 1, column 9: ", "surrogate"},
      {"a line end in a text", "[\"a\nb\"]", "line 1, column 4: ", "control character"},
      {"behind letters of two bytes", "[\"\xC3\xA9\xC3\xA9\" x]",
       "line 1, column 7: ", "invalid literal"},
  };
  for (const auto& row : rows) {
    const std::string fault = FaultOf(row.text);
    EXPECT_EQ(fault.substr(0, std::string(row.place).size()), row.place)
        << row.why << ": " << fault;
    EXPECT_NE(fault.find(row.said), std::string::npos) << row.why << ": " << fault;
    EXPECT_EQ(fault.find("json.exception"), std::string::npos) << fault;
  }
}

TEST(StrictJson, KeepsItsLimits) {
  const std::string three = "[[{\"a\": 1}]]";
  EXPECT_EQ(FaultOf(three, {.bytes = three.size(), .depth = 3}), "");
  EXPECT_EQ(FaultOf(three, {.bytes = three.size(), .depth = 2}),
            "line 1, column 3: more than 2 objects and lists stand in each other");
  EXPECT_EQ(FaultOf(three, {.bytes = three.size() - 1, .depth = 3}),
            "the text has 12 bytes; at most 11 are taken");
  EXPECT_NE(FaultOf(std::string(500'000, '[')).find("more than 16"), std::string::npos);
}

TEST(StrictJson, SaysNothingThatATerminalWouldObey) {
  const std::string fault = FaultOf("{\"\\u001b[2J\": 1, \"\\u001b[2J\": 2}");
  EXPECT_NE(fault.find("\\x1b[2J"), std::string::npos) << fault;
  EXPECT_EQ(fault.find('\x1b'), std::string::npos);
  EXPECT_EQ(FaultOf("[\"\xFF\x1B\"]").find('\xFF'), std::string::npos);
}

}  // namespace
