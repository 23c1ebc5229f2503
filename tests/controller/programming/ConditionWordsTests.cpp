// Conditions in words, and what is the case.

#include <gtest/gtest.h>
#include <string>

#include "controller/programming/ProgrammingJson.h"
#include "tests/controller/programming/ConditionAgent.h"

namespace {

// A Friday.
constexpr const char* kNow = "2024-03-01T07:05:09";

TEST(ConditionWords, SayTheConditionAndWhatIsTheCase) {
  BerlinTime time;
  const std::time_t now = time.Set(kNow);
  const struct {
    const char* json;
    const char* text;
    const char* because;
  } rows[] = {
      {R"({"kind":"time","is":"between","from":"22:00","to":"02:00"})",
       "the time is between 22:00 and 02:00", "it is 07:05"},
      {R"({"kind":"time","is":"between","from":"07:05","to":"08:00"})",
       "the time is between 07:05 and 08:00", "it is 07:05:09"},
      {R"({"kind":"time","is":"eq","time":"07:05"})", "the time is 07:05", "it is 07:05"},
      {R"({"kind":"time","is":"ne","time":"07:05"})", "the time is not 07:05", "it is 07:05"},
      {R"({"kind":"time","is":"gt","time":"07:05"})", "the time is after 07:05", "it is 07:05:09"},
      {R"({"kind":"time","is":"ge","time":"07:06"})", "the time is 07:06 or later", "it is 07:05"},
      {R"({"kind":"time","is":"lt","time":"07:05"})", "the time is before 07:05", "it is 07:05:09"},
      {R"({"kind":"time","is":"le","time":"12:00"})", "the time is 12:00 or earlier",
       "it is 07:05"},
      {R"({"kind":"time","is":"day"})", "it is day", "it is 07:05"},
      {R"({"kind":"time","is":"night"})", "it is night", "it is 07:05"},
      {R"({"kind":"time","is":"within","minutes":30,"side":"before","of":"sunset"})",
       "it is at most 30 minutes before sunset", "it is 07:05"},
      {R"({"kind":"time","is":"within","minutes":1,"side":"after","of":"sunrise"})",
       "it is at most 1 minute after sunrise", "it is 07:05"},
      {R"({"kind":"time","is":"within","minutes":0,"side":"after","of":"sunrise"})",
       "it is the moment of sunrise", "it is 07:05"},
      {R"({"kind":"weekday","is":"between","from":"mon","to":"fri"})",
       "today is between Monday and Friday", "today is Friday"},
      {R"({"kind":"weekday","is":"eq","days":["sat","sun"]})", "today is Saturday or Sunday",
       "today is Friday"},
      {R"({"kind":"weekday","is":"ne","days":["mon","tue","wed"]})",
       "today is neither Monday, Tuesday nor Wednesday", "today is Friday"},
      {R"({"kind":"weekday","is":"ne","days":["mon"]})", "today is not Monday", "today is Friday"},
      {R"({"kind":"weekday","is":"gt","days":["wed","mon"]})", "today is after Monday in the week",
       "today is Friday"},
      {R"({"kind":"weekday","is":"le","days":["wed","mon"]})",
       "today is Wednesday or earlier in the week", "today is Friday"},
      {R"({"kind":"day","is":"between","from":1,"to":7})",
       "the day of the month is between 1 and 7", "it is day 1 of the month"},
      {R"({"kind":"day","is":"eq","days":[1,15,31]})", "the day of the month is 1, 15 or 31",
       "it is day 1 of the month"},
      {R"({"kind":"day","is":"lt","days":[2,5]})", "the day of the month is before 5",
       "it is day 1 of the month"},
      {R"({"kind":"date","is":"between","from":"2024-01-01","to":"2024-12-31"})",
       "the date is between 2024-01-01 and 2024-12-31", "today is 2024-03-01"},
      {R"({"kind":"date","is":"ge","date":"2024-01-01"})", "the date is 2024-01-01 or later",
       "today is 2024-03-01"},
      {R"({"kind":"month","is":"between","from":11,"to":2})",
       "the month is between November and February", "it is March"},
      {R"({"kind":"month","is":"eq","months":[6,7]})", "the month is June or July", "it is March"},
      {R"({"kind":"year","is":"between","from":2024,"to":2026})",
       "the year is between 2024 and 2026", "it is 2024"},
      {R"({"kind":"year","is":"gt","year":2023})", "the year is after 2023", "it is 2024"},
      {R"({"kind":"leap"})", "it is a leap year", "it is 2024"},
  };
  for (const auto& row : rows) {
    const controller::Condition condition = ConditionFrom(row.json);
    EXPECT_EQ(ConditionText(condition), row.text) << row.json;
    EXPECT_EQ(ConditionBecause(condition, now), row.because) << row.json;
  }
}

TEST(ConditionWords, GetAlongWithoutTheWritersText) {
  const controller::Condition condition{"IF_LEAP", "<condition/>", "no JSON"};
  EXPECT_EQ(ConditionText(condition), "the condition IF_LEAP holds");
  EXPECT_EQ(ConditionBecause(condition, 0), "");
}

}  // namespace
