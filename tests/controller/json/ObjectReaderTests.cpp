#include <functional>
#include <gtest/gtest.h>
#include <string>

#include "controller/json/ObjectReader.h"

namespace {

using controller::DayFields;
using controller::FieldErrors;
using controller::ObjectReader;
using Need = controller::ObjectReader::Need;
using nlohmann::json;

// What `read` complains about in an object with the one field "f".
std::string Said(const json& value, const std::function<void(ObjectReader&)>& read) {
  FieldErrors errors;
  const json object = {{"f", value}};
  ObjectReader reader(object, "/top", errors);
  read(reader);
  reader.NoOthers();
  return ErrorText(errors);
}

struct Row {
  const char* why;
  json value;
  const char* said;
};

TEST(ObjectReader, ReadsTexts) {
  const Row rows[] = {
      {"the shortest", "ab", ""},
      {"characters count, not bytes", "\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9", ""},
      {"too short", "a", "/top/f has 1 character; give a text of 2 to 4 characters"},
      {"too long", "abcde", "/top/f has 5 characters; give a text of 2 to 4 characters"},
      {"empty", "", "/top/f is empty; give a text of 2 to 4 characters"},
      {"a number", 7, "/top/f is 7; give a text of 2 to 4 characters"},
      {"a list", {1}, "/top/f is a list; give a text of 2 to 4 characters"},
      {"null", nullptr, "/top/f is null; give a text of 2 to 4 characters"},
      {"a line end", "a\nb", "/top/f is \"a\\nb\"; leave the control characters out"},
      {"C1", "a\xC2\x85", "/top/f is \"a\\x85\"; leave the control characters out"},
      {"no character", "a\xEF\xBF\xBF",
       "/top/f is \"a\xEF\xBF\xBF\"; leave out U+FFFE and U+FFFF, which are no characters"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Said(row.value, [](auto& reader) { reader.Text("f", Need::kDemanded, 2, 4); }),
              row.said)
        << row.why;
  }
  EXPECT_EQ(Said("a\r\n\tb", [](auto& reader) { reader.Text("f", Need::kDemanded, 0, 9, true); }),
            "");
  EXPECT_EQ(Said("a\x1b", [](auto& reader) { reader.Text("f", Need::kDemanded, 0, 9, true); }),
            "/top/f is \"a\\x1b\"; leave the control characters out");
}

TEST(ObjectReader, ReadsWholeNumbers) {
  const Row rows[] = {
      {"the least", -2, ""},
      {"the most", 3, ""},
      {"written with a point", 1.0, ""},
      {"below", -3, "/top/f is -3; give a whole number, -2 to 3"},
      {"above", 4, "/top/f is 4; give a whole number, -2 to 3"},
      {"half", 0.5, "/top/f is 0.5; give a whole number, -2 to 3"},
      {"beyond 64 bits", 1e300, "/top/f is 1e+300; give a whole number, -2 to 3"},
      {"beyond 63 bits", 18446744073709551615u,
       "/top/f is 18446744073709551615; give a whole number, -2 to 3"},
      {"a text", "1", "/top/f is \"1\"; give a whole number, -2 to 3"},
      {"true", true, "/top/f is true; give a whole number, -2 to 3"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Said(row.value, [](auto& reader) { reader.Whole("f", Need::kDemanded, -2, 3); }),
              row.said)
        << row.why;
  }
}

TEST(ObjectReader, ReadsDaysThatThereAre) {
  const Row rows[] = {
      {"a leap day", "2024-02-29", ""},
      {"of a century", "2000-02-29", ""},
      {"the last", "9999-12-31", ""},
      {"the first", "1970-01-01", ""},
      {"no leap year", "2023-02-29", "/top/f is \"2023-02-29\"; give a day that the calendar has"},
      {"no leap century", "2100-02-29",
       "/top/f is \"2100-02-29\"; give a day that the calendar has"},
      {"month 13", "2024-13-01", "/top/f is \"2024-13-01\"; give a day that the calendar has"},
      {"month 0", "2024-00-01", "/top/f is \"2024-00-01\"; give a day that the calendar has"},
      {"day 0", "2024-01-00", "/top/f is \"2024-01-00\"; give a day that the calendar has"},
      {"too early", "1969-12-31", "/top/f is \"1969-12-31\"; give a year from 1970 to 9999"},
      {"another form", "2024-1-1", "/top/f is \"2024-1-1\"; give a date such as \"2026-11-21\""},
      {"something behind", "2024-01-01T",
       "/top/f is \"2024-01-01T\"; give a date such as \"2026-11-21\""},
      {"a number", 20240101, "/top/f is 20240101; give a date such as \"2026-11-21\""},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Said(row.value, [](auto& reader) { reader.Day("f", Need::kDemanded); }), row.said)
        << row.why;
  }
  EXPECT_EQ(controller::ReadDay("2026-11-21"), (DayFields{2026, 11, 21}));
}

TEST(ObjectReader, ReadsTimesWordsFlagsAndNumbers) {
  const auto time = [](ObjectReader& reader) { reader.TimeOfDay("f", Need::kDemanded); };
  EXPECT_EQ(Said("00:00", time), "");
  EXPECT_EQ(Said("23:59", time), "");
  for (const char* wrong : {"24:00", "12:60", "1:00", "12.00", "12:00:00", "-1:00", ""}) {
    EXPECT_EQ(Said(wrong, time),
              "/top/f is \"" + std::string(wrong) + "\"; give a time \"HH:MM\", 00:00 to 23:59");
  }
  const auto word = [](ObjectReader& reader) {
    reader.Word("f", Need::kDemanded, {"clock", "sunrise", "sunset"});
  };
  EXPECT_EQ(Said("sunset", word), "");
  EXPECT_EQ(Said("Sunset", word),
            "/top/f is \"Sunset\"; give \"clock\", \"sunrise\" or \"sunset\"");
  const auto flag = [](ObjectReader& reader) { reader.Flag("f", Need::kDemanded); };
  EXPECT_EQ(Said(true, flag), "");
  EXPECT_EQ(Said(1, flag), "/top/f is 1; give true or false");
  const auto number = [](ObjectReader& reader) { reader.Number("f", Need::kDemanded, -90, 90); };
  EXPECT_EQ(Said(52.5, number), "");
  EXPECT_EQ(Said(90, number), "");
  EXPECT_EQ(Said(90.5, number), "/top/f is 90.5; give a number, -90.0 to 90.0");
}

TEST(ObjectReader, GivesWhatItRead) {
  FieldErrors errors;
  const json object = {{"text", "x"},   {"whole", 3.0},        {"number", 2},    {"flag", false},
                       {"word", "b"},   {"day", "2024-02-29"}, {"time", "7:30"}, {"null", nullptr},
                       {"at", "07:30"}, {"any", {1, 2}}};
  ObjectReader reader(object, "", errors);
  EXPECT_EQ(reader.Text("text", Need::kDemanded, 0, 9), "x");
  EXPECT_EQ(reader.Whole("whole", Need::kDemanded, 0, 9), 3);
  EXPECT_EQ(reader.Number("number", Need::kDemanded, 0, 9), 2.0);
  EXPECT_EQ(reader.Flag("flag"), false);
  EXPECT_EQ(reader.Word("word", Need::kDemanded, {"a", "b"}), 1u);
  EXPECT_EQ(reader.Day("day", Need::kDemanded), (DayFields{2024, 2, 29}));
  EXPECT_EQ(reader.TimeOfDay("at", Need::kDemanded), 7 * 60 + 30);
  EXPECT_EQ(reader.TimeOfDay("time", Need::kDemanded), std::nullopt);
  EXPECT_EQ(*reader.Value("any"), json({1, 2}));
  EXPECT_TRUE(reader.Has("null"));
  EXPECT_TRUE(reader.IsNull("null"));
  EXPECT_FALSE(reader.Has("nothing"));
  EXPECT_EQ(reader.Text("nothing", Need::kOptional, 0, 9), std::nullopt);
  reader.NoOthers();
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_EQ(errors[0].pointer, "/time");
}

TEST(ObjectReader, NamesWhatIsMissingAndWhatNobodyAskedFor) {
  FieldErrors errors;
  const json object = {{"a/b~c", 1}, {"known", 1}};
  ObjectReader reader(object, "/x", errors);
  reader.Whole("known", Need::kDemanded, 0, 9);
  reader.Flag("wanted", Need::kDemanded);
  reader.NoOthers();
  ASSERT_EQ(errors.size(), 2u);
  EXPECT_EQ(errors[0].pointer, "/x/wanted");
  EXPECT_EQ(errors[0].detail, "is missing; give true or false");
  EXPECT_EQ(errors[1].pointer, "/x/a~1b~0c");
  EXPECT_EQ(errors[1].detail, "is not known here; there are known, wanted");
  EXPECT_EQ(ErrorText(errors), "/x/wanted is missing; give true or false (and 1 more)");
}

TEST(ObjectReader, ComplainsOnceAboutWhatIsNoObject) {
  FieldErrors errors;
  const json list = json::array();
  ObjectReader reader(list, "", errors);
  EXPECT_EQ(reader.Text("a", Need::kDemanded, 1, 9), std::nullopt);
  EXPECT_FALSE(reader.Has("a"));
  EXPECT_FALSE(reader.IsNull("a"));
  reader.NoOthers();
  EXPECT_EQ(ErrorText(errors), "the document is an empty list; give an object");
}

TEST(Calendar, KnowsTheDaysOfItsMonths) {
  EXPECT_EQ(controller::DaysOfMonth(2024, 2), 29);
  EXPECT_EQ(controller::DaysOfMonth(2023, 2), 28);
  EXPECT_EQ(controller::DaysOfMonth(2023, 12), 31);
  EXPECT_EQ(controller::DaysOfMonth(2023, 0), 0);
  EXPECT_EQ(controller::DaysOfMonth(2023, 13), 0);
}

}  // namespace
