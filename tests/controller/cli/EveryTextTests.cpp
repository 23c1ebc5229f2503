// --every: how an event repeats.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Refusal.h"
#include "controller/cli/parse/EveryText.h"

namespace {

using controller::cli::EveryText;
using controller::cli::ParseEvery;
using nlohmann::json;
using testing::HasSubstr;

TEST(Every, IsReadInTheApisForm) {
  const struct {
    const char* text;
    const char* repeat;
  } rows[] = {
      {"day", R"({"unit":"day","every":1})"},
      {"every day", R"({"unit":"day","every":1})"},
      {"daily", R"({"unit":"day","every":1})"},
      {"3 days", R"({"unit":"day","every":3})"},
      {"other day", R"({"unit":"day","every":2})"},
      {"1000000 days", R"({"unit":"day","every":1000000})"},
      {"week on mon", R"({"unit":"week","every":1,"on":["mon"]})"},
      {"2 weeks on mon,fri", R"({"unit":"week","every":2,"on":["mon","fri"]})"},
      {"2 weeks on Friday and Monday", R"({"unit":"week","every":2,"on":["mon","fri"]})"},
      {"2 weeks on fri, mon, fri", R"({"unit":"week","every":2,"on":["mon","fri"]})"},
      {"week on fri-mon", R"({"unit":"week","every":1,"on":["sun","mon","fri","sat"]})"},
      {"2 weeks on weekdays", R"({"unit":"week","every":2,"on":["mon","tue","wed","thu","fri"]})"},
      {"weekday", R"({"unit":"week","every":1,"on":["mon","tue","wed","thu","fri"]})"},
      {"weekdays", R"({"unit":"week","every":1,"on":["mon","tue","wed","thu","fri"]})"},
      {"weekend", R"({"unit":"week","every":1,"on":["sun","sat"]})"},
      {"mon, thursday", R"({"unit":"week","every":1,"on":["mon","thu"]})"},
      {"mon-wed", R"({"unit":"week","every":1,"on":["mon","tue","wed"]})"},
      {"month", R"({"unit":"month","every":1})"},
      {"6 months", R"({"unit":"month","every":6})"},
      {"month on the 2nd tue", R"({"unit":"month","every":1,"nth":{"week":2,"weekday":"tue"}})"},
      {"month on first sunday", R"({"unit":"month","every":1,"nth":{"week":1,"weekday":"sun"}})"},
      {"2 months on the last fri",
       R"({"unit":"month","every":2,"nth":{"week":"last","weekday":"fri"}})"},
      {"year", R"({"unit":"year","every":1})"},
      {"YEAR ON THE LAST SUN",
       R"({"unit":"year","every":1,"nth":{"week":"last","weekday":"sun"}})"},
      {"once", "null"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(json(ParseEvery("--every", row.text)), json::parse(row.repeat)) << row.text;
  }
}

TEST(Every, SaysWhatIsWrongAndWhere) {
  const struct {
    const char* text;
    const char* message;
    const char* marked;
  } rows[] = {
      {"", "a unit is missing; give day, week on mon", ""},
      {"3", "a unit is missing", ""},
      {"fortnight", "\"fortnight\" is no unit; give day, week on mon", "fortnight"},
      {"0 days", "\"0\" is no number of units; give 1 to 1000000", "0"},
      {"1000001 days", "\"1000001\" is no number of units", "1000001"},
      {"2.5 days", "\"2.5\" is no number of units", "2.5"},
      {"99999999999999999999999 days", "is no number of units", "99999999999999999999999"},
      {"week", "the days of the week are missing; give week on mon,fri", "week"},
      {"2 weeks on", "a day of the week is missing", ""},
      {"2 weeks on mom", "\"mom\" is no day of the week; give sun, mon, tue", "mom"},
      {"2 weeks on mon,", "a day of the week is missing", ""},
      {"2 weeks on mon,,fri", "\",\" is no day of the week", ","},
      {"2 weeks in mon", "the days of the week are missing", "weeks"},
      {"2 weekdays", "\"weekdays\" cannot be counted; give 2 weeks on mon,fri", "weekdays"},
      {"day on mon", "give week on mon,fri or the like", "day"},
      {"month on", "which day is missing; give the 2nd tue", ""},
      {"month on the 5th tue", "\"5th\" is no week of the month; give 1st, 2nd, 3rd, 4th or last",
       "5th"},
      {"month on the 15th", "\"15th\" is no week of the month", "15th"},
      {"month on the 2nd", "a day of the week is missing", ""},
      {"month on the 2nd tue wed",
       "\"wed\" is too much here; leave it out: it ends with the weekday", "wed"},
      {"3 days please", "\"please\" is too much here", "please"},
      {"once more", "\"more\" is too much here; leave it out: once stands alone", "more"},
  };
  for (const auto& row : rows) {
    const Refusal refusal = RefusalOf([&] { ParseEvery("--every", row.text); });
    EXPECT_THAT(refusal.message, HasSubstr(row.message)) << row.text;
    EXPECT_EQ(refusal.marked, row.marked) << row.text;
  }
}

TEST(Every, MarksThePartAlsoBehindWideCharacters) {
  const Refusal refusal = RefusalOf([] { ParseEvery("--every", "week on mon,金曜"); });
  EXPECT_EQ(refusal.column, 12U);
  // Four columns for two wide characters.
  EXPECT_THAT(refusal.message, HasSubstr("\"金曜\" is no day of the week"));
}

TEST(Every, ShowsNothingThatATerminalWouldObey) {
  const Refusal refusal = RefusalOf([] { ParseEvery("--every", "week on \x1b[2Jmon"); });
  EXPECT_EQ(refusal.message.find('\x1b'), std::string::npos);
  EXPECT_EQ(refusal.marked, "\\x1b[2Jmon");
}

TEST(Every, ReadsAsItIsShown) {
  for (const char* text :
       {"day", "3 days", "week on mon", "2 weeks on mon,fri", "weekday", "weekend",
        "2 weeks on weekdays", "2 weeks on weekend", "month", "2 months", "month on the 2nd tue",
        "2 months on the last fri", "year", "year on the last sun", "once"}) {
    EXPECT_EQ(EveryText(ParseEvery("--every", text)), text);
  }
}

}  // namespace
