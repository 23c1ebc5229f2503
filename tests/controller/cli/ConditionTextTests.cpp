// --if and `test`: conditions.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Refusal.h"
#include "controller/cli/parse/ConditionText.h"

namespace {

using controller::cli::ConditionWords;
using controller::cli::ParseCondition;
using nlohmann::json;
using testing::HasSubstr;

TEST(Condition, IsReadInTheApisForm) {
  const struct {
    const char* text;
    const char* condition;
  } rows[] = {
      {"time between 22:00 and 02:00",
       R"({"kind":"time","is":"between","from":"22:00","to":"02:00"})"},
      {"time is between 10pm and 2 am",
       R"({"kind":"time","is":"between","from":"22:00","to":"02:00"})"},
      {"time between midnight to noon",
       R"({"kind":"time","is":"between","from":"00:00","to":"12:00"})"},
      {"time is night", R"({"kind":"time","is":"night"})"},
      {"time is day", R"({"kind":"time","is":"day"})"},
      {"time after 22:00", R"({"kind":"time","is":"gt","time":"22:00"})"},
      {"time is before 7:30 pm", R"({"kind":"time","is":"lt","time":"19:30"})"},
      {"time >= 22:00", R"({"kind":"time","is":"ge","time":"22:00"})"},
      {"within 30 minutes before sunset",
       R"({"kind":"time","is":"within","minutes":30,"side":"before","of":"sunset"})"},
      {"time within 1h30 after sunrise",
       R"({"kind":"time","is":"within","minutes":90,"side":"after","of":"sunrise"})"},
      {"within 0 after sunrise",
       R"({"kind":"time","is":"within","minutes":0,"side":"after","of":"sunrise"})"},
      {"weekday in sat,sun", R"({"kind":"weekday","is":"eq","days":["sun","sat"]})"},
      {"weekday is Monday", R"({"kind":"weekday","is":"eq","days":["mon"]})"},
      {"weekday not in weekend", R"({"kind":"weekday","is":"ne","days":["sun","sat"]})"},
      {"weekday between mon and fri",
       R"({"kind":"weekday","is":"between","from":"mon","to":"fri"})"},
      {"day is 1", R"({"kind":"day","is":"eq","days":[1]})"},
      {"day in 1, 15 and 31", R"({"kind":"day","is":"eq","days":[1,15,31]})"},
      {"day between 1 and 7", R"({"kind":"day","is":"between","from":1,"to":7})"},
      {"date after 2026-12-24", R"({"kind":"date","is":"gt","date":"2026-12-24"})"},
      {"date between 2026-12-24 and 2027-01-06",
       R"({"kind":"date","is":"between","from":"2026-12-24","to":"2027-01-06"})"},
      {"month between 11 and 2", R"({"kind":"month","is":"between","from":11,"to":2})"},
      {"month in dec,Jan 2", R"({"kind":"month","is":"eq","months":[12,1,2]})"},
      {"year eq 2027", R"({"kind":"year","is":"eq","year":2027})"},
      {"year is not 2027", R"({"kind":"year","is":"ne","year":2027})"},
      {"leap", R"({"kind":"leap"})"},
      {"leap year", R"({"kind":"leap"})"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(json(ParseCondition("--if", row.text)), json::parse(row.condition)) << row.text;
  }
}

TEST(Condition, SaysWhatIsWrongAndWhere) {
  const struct {
    const char* text;
    const char* message;
    const char* marked;
  } rows[] = {
      {"", "a condition is missing; give time, weekday", ""},
      {"moon is full", "\"moon\" is no kind of condition; give time, weekday", "moon"},
      {"time", "a comparison is missing; give between, is", ""},
      {"time about 7", "\"about\" is no comparison", "about"},
      {"time after", "a time of day is missing", ""},
      {"time after 7", "\"7\" is no time of day; give 07:30, 7:30pm or noon", "7"},
      {"time after 00:00", "\"00:00\" cannot be compared with; give 00:01 to 23:59", "00:00"},
      {"time between 22:00", "\"and\" and the other end are missing", ""},
      {"time between 22:00 or 2:00", "\"or\" does not belong here", "or"},
      {"time between 22:00 and", "a time of day is missing", ""},
      // The mark stands where the number should.
      {"within before sunset", "a number of minutes is wanted here", "b"},
      {"within 25h before sunset", "at most 24h", "25h"},
      {"within 30 minutes", "a word is missing; give before or after", ""},
      {"within 30 before noon", "\"noon\" does not belong here; give sunrise or sunset", "noon"},
      {"weekday is someday", "\"someday\" is no day of the week", "someday"},
      {"weekday between fri and mon", "a week begins on sun; give \"weekday in\"", "fri and mon"},
      {"day is 32", "\"32\" is no day; give 1 to 31", "32"},
      {"day is 0", "\"0\" is no day", "0"},
      {"day between 7 and 1", "give the earlier one first", "7 and 1"},
      {"date after tomorrow", "\"tomorrow\" is no date; give one like 2026-12-24", "tomorrow"},
      {"date after 2026-02-30", "\"2026-02-30\" is no date", "2026-02-30"},
      {"month is 13", "\"13\" is no month; give 1 to 12 or jan to dec", "13"},
      {"month is 0", "\"0\" is no month", "0"},
      {"year is 27", "\"27\" is no year; give 1970 to 9999", "27"},
      {"year is 2027,2028", "\",\" is too much here", ","},
      {"leap now", "\"now\" is too much here", "now"},
      {"time is night and leap", "\"and\" is too much here; leave it out: an action", "and"},
  };
  for (const auto& row : rows) {
    const Refusal refusal = RefusalOf([&] { ParseCondition("--if", row.text); });
    EXPECT_THAT(refusal.message, HasSubstr(row.message)) << row.text;
    EXPECT_EQ(refusal.marked, row.marked) << row.text;
  }
}

TEST(Condition, ReadsAsItIsShown) {
  for (const char* text : {"time between 22:00 and 02:00",
                           "time is night",
                           "time is 07:30",
                           "time is not 07:30",
                           "time after 22:00",
                           "time from 22:00",
                           "time before 22:00",
                           "time until 22:00",
                           "within 30 minutes before sunset",
                           "within 1h30 after sunrise",
                           "within 2h after sunrise",
                           "weekday in sun,sat",
                           "weekday is mon",
                           "weekday not in sun,sat",
                           "weekday between mon and fri",
                           "day in 1,15",
                           "date after 2026-12-24",
                           "date between 2026-12-24 and 2027-01-06",
                           "month between 11 and 2",
                           "month is 12",
                           "year is 2027",
                           "leap"}) {
    EXPECT_EQ(ConditionWords(ParseCondition("--if", text)), text);
  }
}

}  // namespace
