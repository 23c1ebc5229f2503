// --at and times of day.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Refusal.h"
#include "controller/cli/parse/TimeText.h"

namespace {

using controller::cli::AtText;
using controller::cli::ParseAt;
using controller::cli::ReadTimeOfDay;
using nlohmann::json;
using testing::HasSubstr;

TEST(TimeOfDay, IsReadWithTwentyFourHoursOrTwice) {
  const struct {
    const char* text;
    int minutes;  // -1: none
  } rows[] = {
      {"07:30", 450},   {"7:30", 450},  {"00:00", 0},    {"23:59", 1439},   {"24:00", -1},
      {"7:60", -1},     {"7:3", -1},    {"7:300", -1},   {"7", -1},         {"730", -1},
      {"7am", 420},     {"7pm", 1140},  {"12am", 0},     {"12pm", 720},     {"12:30am", 30},
      {"12:30pm", 750}, {"0am", -1},    {"13pm", -1},    {"7:30 PM", 1170}, {"noon", 720},
      {"Midnight", 0},  {"", -1},       {":30", -1},     {"am", -1},        {"-1:30", -1},
      {"1e:30", -1},    {"007:30", -1}, {"7:30:00", -1},
  };
  for (const auto& row : rows)
    EXPECT_EQ(ReadTimeOfDay(row.text).value_or(-1), row.minutes) << row.text;
}

TEST(At, IsAClockTimeOrTheSunsOrAwayFromThem) {
  const struct {
    const char* text;
    const char* base;
    long minutes;
  } rows[] = {
      {"07:30", "clock", 450},
      {"7:30pm", "clock", 1170},
      {"noon", "clock", 720},
      {"midnight", "clock", 0},
      {"sunrise", "sunrise", 0},
      {"Sunset", "sunset", 0},
      {"sunset+15", "sunset", 15},
      {"sunset-1h30", "sunset", -90},
      {"sunset - 1h 30m", "sunset", -90},
      {"sunrise+1:30", "sunrise", 90},
      {"sunrise -2h", "sunrise", -120},
      {"sunset-24h", "sunset", -1440},
      {"midnight-24h", "clock", -1440},
      {"midnight+48h", "clock", 2880},
      {"noon+90 minutes", "clock", 810},
      {" 07:30 ", "clock", 450},
  };
  for (const auto& row : rows) {
    const json expected = {{"base", row.base}, {"minutes", row.minutes}};
    EXPECT_EQ(json(ParseAt("--at", row.text)), expected) << row.text;
  }
}

TEST(At, SaysWhatIsWrongAndWhere) {
  const struct {
    const char* text;
    const char* message;
    const char* marked;
  } rows[] = {
      {"", "a time is missing; give a time of day", ""},
      {"7", "\"7\" is no time; give a time of day (07:30", "7"},
      {"sundown", "\"sundown\" is no time", "sundown"},
      {"sunset+", "a length of time is missing; give 15 or 1h30", ""},
      {"sunset-soon", "\"soon\" is no number of minutes", "soon"},
      {"sunset-90s", "\"90s\" is no number of minutes", "90s"},
      {"sunset-25h", "\"25h\" leads too far; give at most 24h", "25h"},
      {"midnight+49h", "48h after midnight", "49h"},
      {"midnight-1441", "24h before", "1441"},
      {"07:30+15", "nothing is added to a time of day", "+15"},
      {"25:00", "\"25:00\" is no time", "25:00"},
  };
  for (const auto& row : rows) {
    const Refusal refusal = RefusalOf([&] { ParseAt("--at", row.text); });
    EXPECT_THAT(refusal.message, HasSubstr(std::string("--at \"") + row.text + "\": "));
    EXPECT_THAT(refusal.message, HasSubstr(row.message)) << row.text;
    EXPECT_EQ(refusal.marked, row.marked) << row.text;
  }
}

TEST(At, ReadsAsItIsShown) {
  const struct {
    const char* base;
    long minutes;
    const char* text;
  } rows[] = {
      {"clock", 0, "00:00"},           {"clock", 1439, "23:59"},
      {"clock", 1440, "midnight+24h"}, {"clock", -30, "midnight-30"},
      {"sunset", 0, "sunset"},         {"sunset", -30, "sunset-30"},
      {"sunrise", 90, "sunrise+1h30"}, {"clock", 1501, "midnight+25h1"},
  };
  for (const auto& row : rows) {
    const json time = {{"base", row.base}, {"minutes", row.minutes}};
    EXPECT_EQ(AtText(time), row.text);
    EXPECT_EQ(json(ParseAt("--at", row.text)), time) << row.text;
  }
}

}  // namespace
