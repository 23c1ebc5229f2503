// Conditions read from JSON and written back, and what is refused.

#include <gtest/gtest.h>
#include <string>

#include "controller/programming/ProgrammingJson.h"
#include "tests/controller/programming/ConditionAgent.h"

namespace {

using controller::Condition;
using controller::FieldErrors;

TEST(Conditions, AreWrittenAsTheSchedulerReadsThem) {
  const struct {
    const char* json;
    const char* name;
    const char* xml;  // of what is in the root
  } rows[] = {
      {R"({"kind":"time","is":"between","from":"22:00","to":"02:00"})", "IF_TIME",
       "<comparator>BT</comparator><offset_from>1320</offset_from><offset_to>120</offset_to>"},
      {R"({"kind":"time","is":"ge","time":"07:05"})", "IF_TIME",
       "<comparator>GE</comparator><comp_time>425</comp_time>"},
      {R"({"kind":"time","is":"day"})", "IF_TIME", "<comparator></comparator><type>Day</type>"},
      {R"({"kind":"time","is":"night"})", "IF_TIME", "<comparator></comparator><type>Night</type>"},
      {R"({"kind":"time","is":"within","minutes":30,"side":"before","of":"sunrise"})", "IF_TIME",
       "<comparator></comparator><type>Within</type><offset_type>1</offset_type>"
       "<offset>Before</offset><offset_minutes>30</offset_minutes>"},
      {R"({"kind":"time","is":"within","minutes":0,"side":"after","of":"sunset"})", "IF_TIME",
       "<comparator></comparator><type>Within</type><offset_type>2</offset_type>"
       "<offset>After</offset><offset_minutes>0</offset_minutes>"},
      {R"({"kind":"weekday","is":"between","from":"sun","to":"sat"})", "IF_TODAY",
       "<comparator>BT</comparator><day_between><day_name>Day</day_name>"
       "<dayname_from>1</dayname_from><dayname_to>7</dayname_to></day_between>"},
      {R"({"kind":"weekday","is":"eq","days":["sat","sun"]})", "IF_TODAY",
       "<comparator>EQ</comparator><day_current><day_name>Day</day_name>"
       "<day_names><entry>7</entry><entry>1</entry></day_names></day_current>"},
      {R"({"kind":"day","is":"between","from":1,"to":7})", "IF_TODAY",
       "<comparator>BT</comparator><day_between><day_name>DayNum</day_name>"
       "<day_from>1</day_from><day_to>7</day_to></day_between>"},
      {R"({"kind":"day","is":"ne","days":[31]})", "IF_TODAY",
       "<comparator>NE</comparator><day_current><day_name>DayNum</day_name>"
       "<cur_days><entry>31</entry></cur_days></day_current>"},
      {R"({"kind":"date","is":"between","from":"2024-02-29","to":"2024-03-01"})", "IF_DATE",
       "<comparator>BT</comparator><date_between><date_from_dd>29</date_from_dd>"
       "<date_from_mm>2</date_from_mm><date_from_yy>2024</date_from_yy><date_to_dd>1</date_to_dd>"
       "<date_to_mm>3</date_to_mm><date_to_yy>2024</date_to_yy></date_between>"},
      {R"({"kind":"date","is":"lt","date":"2024-12-31"})", "IF_DATE",
       "<comparator>LT</comparator><date_current><date_curr_dd>31</date_curr_dd>"
       "<date_curr_mm>12</date_curr_mm><date_curr_yy>2024</date_curr_yy></date_current>"},
      {R"({"kind":"month","is":"between","from":11,"to":2})", "IF_MONTH",
       "<comparator>BT</comparator><month_between><month_from>11</month_from>"
       "<month_to>2</month_to></month_between>"},
      {R"({"kind":"month","is":"gt","months":[3]})", "IF_MONTH",
       "<comparator>GT</comparator><month_current><month_names><entry>3</entry></month_names>"
       "</month_current>"},
      {R"({"kind":"year","is":"between","from":2024,"to":2026})", "IF_YEAR",
       "<comparator>BT</comparator><year_between><year_from>2024</year_from>"
       "<year_to>2026</year_to></year_between>"},
      {R"({"kind":"year","is":"le","year":2024})", "IF_YEAR",
       "<comparator>LE</comparator><year_current><year_curr>2024</year_curr></year_current>"},
      {R"({"kind":"leap"})", "IF_LEAP", ""},
  };
  for (const auto& row : rows) {
    const Condition condition = ConditionFrom(row.json);
    EXPECT_EQ(condition.name, row.name) << row.json;
    EXPECT_EQ(condition.xml, "<condition>" + std::string(row.xml) + "</condition>") << row.json;
    EXPECT_EQ(condition.json, row.json) << "comes back as it was written";
  }
}

TEST(Conditions, ThatCannotBeAreRefused) {
  const struct {
    const char* json;
    const char* said;
  } rows[] = {
      {R"([])", "/if is an empty list; give an object"},
      {R"({})",
       R"(/if/kind is missing; give "time", "weekday", "day", "date", "month", "year" or "leap")"},
      {R"({"kind":"hour"})",
       R"(/if/kind is "hour"; give "time", "weekday", "day", "date", "month", "year" or "leap")"},
      {R"({"kind":"month"})",
       R"(/if/is is missing; give "between", "eq", "ne", "gt", "ge", "lt" or "le")"},
      {R"({"kind":"month","is":"day"})",
       R"(/if/is is "day"; give "between", "eq", "ne", "gt", "ge", "lt" or "le")"},
      {R"({"kind":"leap","is":"eq"})", "/if/is is not known here; there are kind"},
      {R"({"kind":"time","is":"eq","time":"00:00"})",
       R"(/if/time is "00:00"; give 00:01 to 23:59)"},
      {R"({"kind":"time","is":"eq","time":"24:00"})",
       R"(/if/time is "24:00"; give a time "HH:MM", 00:00 to 23:59)"},
      {R"({"kind":"time","is":"day","time":"07:00"})",
       "/if/time is not known here; there are is, kind"},
      {R"({"kind":"time","is":"between","from":"07:00"})",
       R"(/if/to is missing; give a time "HH:MM", 00:00 to 23:59)"},
      {R"({"kind":"time","is":"within","minutes":1441,"side":"before","of":"sunset"})",
       "/if/minutes is 1441; give a whole number, 0 to 1440"},
      {R"({"kind":"time","is":"within","minutes":30,"side":"Before","of":"sunset"})",
       R"(/if/side is "Before"; give "before" or "after")"},
      {R"({"kind":"time","is":"within","minutes":30,"side":"before","of":"moon"})",
       R"(/if/of is "moon"; give "sunrise" or "sunset")"},
      {R"({"kind":"weekday","is":"between","from":"fri","to":"mon"})",
       R"(/if/to leads over the week's end, which is Saturday; give a list: "is": "eq", "days")"},
      {R"({"kind":"weekday","is":"eq","days":[]})",
       R"(/if/days is an empty list; give a list, each entry "sun" to "sat")"},
      {R"({"kind":"weekday","is":"eq"})",
       R"(/if/days is missing; give a list, each entry "sun" to "sat")"},
      {R"({"kind":"weekday","is":"eq","days":"mon"})",
       R"(/if/days is "mon"; give a list, each entry "sun" to "sat")"},
      {R"({"kind":"weekday","is":"eq","days":["mon","Tue"]})",
       R"(/if/days/1 is "Tue"; give "sun" to "sat")"},
      {R"({"kind":"weekday","is":"eq","days":["mon","mon"]})",
       R"(/if/days/1 is "mon" again; give each once)"},
      {R"({"kind":"day","is":"eq","days":[0]})", "/if/days/0 is 0; give a whole number, 1 to 31"},
      {R"({"kind":"day","is":"eq","days":[32]})", "/if/days/0 is 32; give a whole number, 1 to 31"},
      {R"({"kind":"day","is":"eq","days":["1"]})",
       R"(/if/days/0 is "1"; give a whole number, 1 to 31)"},
      {R"({"kind":"day","is":"between","from":28,"to":3})",
       R"(/if/to leads over the month's end; give a list: "is": "eq", "days")"},
      {R"({"kind":"month","is":"eq","months":[13]})",
       "/if/months/0 is 13; give a whole number, 1 to 12"},
      {R"({"kind":"month","is":"between","from":0,"to":12})",
       "/if/from is 0; give a whole number, 1 to 12"},
      {R"({"kind":"date","is":"eq","date":"2023-02-29"})",
       R"(/if/date is "2023-02-29"; give a day that the calendar has)"},
      {R"({"kind":"date","is":"between","from":"2024-02-02","to":"2024-02-01"})",
       R"(/if/to is "2024-02-01"; give a date not before "from", 2024-02-02)"},
      {R"({"kind":"year","is":"between","from":2025,"to":2024})",
       R"(/if/to is 2024; give a year not before "from", 2025)"},
      {R"({"kind":"year","is":"eq","year":0})", "/if/year is 0; give a whole number, 1970 to 9999"},
  };
  for (const auto& row : rows) {
    FieldErrors errors;
    const Condition read = ReadCondition(nlohmann::json::parse(row.json), "/if", errors);
    EXPECT_EQ(ErrorText(errors), row.said) << row.json;
    EXPECT_EQ(read.name, "") << row.json;
  }
}

}  // namespace
