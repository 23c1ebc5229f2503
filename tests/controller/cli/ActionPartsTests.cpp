// What an action is made of: command lines, headers, variables, lengths of time.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Refusal.h"
#include "controller/cli/parse/ActionParts.h"
#include "controller/cli/parse/DayText.h"
#include "controller/cli/parse/DurationText.h"
#include "controller/cli/parse/ShellWords.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using namespace controller::cli;

TEST(ShellWords, AreWhatAShellWouldPassOn) {
  using Words = std::vector<std::string>;
  const struct {
    const char* text;
    Words words;
  } rows[] = {
      {"curl http://hub/light", {"curl", "http://hub/light"}},
      {"  a \t b\nc ", {"a", "b", "c"}},
      {"say 'it is  dark'", {"say", "it is  dark"}},
      {R"(say "it's \"dark\"")", {"say", "it's \"dark\""}},
      {R"(say "a\b\\c\$d")", {"say", "a\\b\\c$d"}},
      {R"(say a\ b \'c\')", {"say", "a b", "'c'"}},
      {R"(say 'a\b' '')", {"say", "a\\b", ""}},
      {R"(say x'y'"z")", {"say", "xyz"}},
      {"say {description} a#b", {"say", "{description}", "a#b"}},
      {"curl http://hub/?a=1&b=2", {"curl", "http://hub/?a=1&b=2"}},
  };
  for (const auto& row : rows) {
    const ShellWords split = SplitShellWords("--run", row.text);
    EXPECT_EQ(split.words, row.words) << row.text;
    EXPECT_THAT(split.notes, IsEmpty()) << row.text;
    EXPECT_EQ(SplitShellWords("--run", ShellQuoted(row.words)).words, row.words) << row.text;
  }
}

TEST(ShellWords, TellWhatNoShellWillRead) {
  const struct {
    const char* text;
    const char* note;
  } rows[] = {
      {"date > /tmp/x", "\">\" is passed as it is, no shell reads it; for one give sh -c '...'"},
      {"date | wc", "\"|\" is passed"},
      {"a && b", "\"&&\" is passed"},
      {"echo $HOME", "\"$HOME\" is passed"},
      {"echo \"$HOME\"", "\"$HOME\" is passed"},
      {"~/bin/light on", "\"~/bin/light\" is passed"},
  };
  for (const auto& row : rows) {
    EXPECT_THAT(SplitShellWords("--run", row.text).notes, ElementsAre(HasSubstr(row.note)));
  }
  for (const char* text : {"echo '$HOME'", "echo '>'", "echo \"\\$x\"", "sh -c 'a > b | c'"}) {
    EXPECT_THAT(SplitShellWords("--run", text).notes, IsEmpty()) << text;
  }
}

TEST(ShellWords, NeedAnEndToEveryQuote) {
  const struct {
    const char* text;
    const char* message;
    std::size_t column;
  } rows[] = {
      {"", "a program is missing", 0}, {"   ", "a program is missing", 0},
      {"say 'it", "' has no end", 4},  {"say \"it", "\" has no end", 4},
      {"say it\\", "none follows", 6}, {"say \"a\\\"", "\" has no end", 4},
  };
  for (const auto& row : rows) {
    const Refusal refusal = RefusalOf([&] { SplitShellWords("--run", row.text); });
    EXPECT_THAT(refusal.message, HasSubstr(row.message)) << row.text;
    EXPECT_EQ(refusal.column, row.column) << row.text;
  }
}

TEST(Duration, IsReadWithAndWithoutUnits) {
  const struct {
    const char* text;
    long unit;
    long seconds;  // -1: none
  } rows[] = {
      {"90", 1, 90},
      {"90", 60, 5400},
      {"90s", 60, 90},
      {"5m", 1, 300},
      {"1h30", 1, 5400},
      {"1h30m", 1, 5400},
      {"1h30m15", 1, 5415},
      {"1h30m15s", 1, 5415},
      {"2d", 1, 172800},
      {"1d12h", 1, 129600},
      {"1 hour 30 minutes", 1, 5400},
      {"10 min", 1, 600},
      {"1:30", 1, 5400},
      {"0", 1, 0},
      {"", 1, -1},
      {"m", 1, -1},
      {"5x", 1, -1},
      {"5m1h", 1, -1},
      {"1h1h", 1, -1},
      {"-5", 1, -1},
      {"1.5h", 1, -1},
      {"1:3", 1, -1},
      {"1:60", 1, -1},
      {"5 m m", 1, -1},
      {"4000d", 1, -1},
      {"99999999999999999999", 1, -1},
      {"3659d 25h", 1, -1},
      {"30 30", 1, -1},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(ReadDuration(row.text, row.unit).value_or(-1), row.seconds) << row.text;
  }
}

TEST(Duration, SaysWhatItMayBe) {
  EXPECT_EQ(ParseDuration("--delay", "1h30m", 1, 0, 86400), 5400);
  EXPECT_EQ(ParseDuration("--spread", "1h30", 60, 0, 720), 90);
  EXPECT_EQ(ParseDuration("--spread", "720", 60, 0, 720), 720);
  const struct {
    const char* text;
    long unit, least, most;
    const char* message;
  } rows[] = {
      {"soon", 1, 0, 86400,
       "--delay \"soon\": this is no length of time; give 0 to 86400 seconds, 90, 5m or 1h30m"},
      {"2d", 1, 0, 86400, "this is too long; give 0 to 86400 seconds"},
      {"0", 1, 1, 300, "this is too short; give 1 to 300 seconds"},
      {"90s", 60, 0, 720, "this is no whole number of minutes; give 0 to 720 minutes"},
      {"721", 60, 0, 720, "this is too long"},
  };
  for (const auto& row : rows) {
    const Refusal refusal =
        RefusalOf([&] { ParseDuration("--delay", row.text, row.unit, row.least, row.most); });
    EXPECT_THAT(refusal.message, HasSubstr(row.message));
    EXPECT_EQ(refusal.marked, row.text);
  }
}

TEST(Duration, IsShownAsItIsRead) {
  EXPECT_EQ(SecondsText(0), "0s");
  EXPECT_EQ(SecondsText(90), "1m30s");
  EXPECT_EQ(SecondsText(5400), "1h30m");
  EXPECT_EQ(SecondsText(600), "10m");
  EXPECT_EQ(SecondsText(604800), "7d");
  EXPECT_EQ(MinutesText(59), "59");
  EXPECT_EQ(MinutesText(60), "1h");
  EXPECT_EQ(MinutesText(61), "1h1");
  for (const long minutes : {0L, 59L, 60L, 61L, 90L, 1440L, 2880L}) {
    EXPECT_EQ(ReadDuration(MinutesText(minutes), 60), minutes * 60);
  }
}

TEST(Header, IsANameAndAValue) {
  EXPECT_EQ(ParseHeader("--header", "X-Key: abc"),
            std::make_pair(std::string("X-Key"), std::string("abc")));
  EXPECT_EQ(ParseHeader("--header", "a:b:c").second, "b:c");
  EXPECT_EQ(ParseHeader("--header", "a:").second, "");
  EXPECT_THAT(RefusalOf([] { ParseHeader("--header", "X-Key abc"); }).message,
              HasSubstr("a colon is missing; give a name and a value, X-Key: abc"));
  EXPECT_EQ(RefusalOf([] { ParseHeader("--header", "X Key: abc"); }).marked, "X Key");
  EXPECT_EQ(RefusalOf([] { ParseHeader("--header", ": abc"); }).marked, ":");
}

TEST(Variable, IsADeviceAVariableAndAValue) {
  EXPECT_EQ(json(ParseVariable("--set", "1.2001=on")),
            json::parse(R"({"device":1,"variable":2001,"value":"on"})"));
  EXPECT_EQ(ParseVariable("--set", "1.2=a=b.c")["value"], "a=b.c");
  EXPECT_EQ(ParseVariable("--set", "1.2=")["value"], "");
  const struct {
    const char* text;
    const char* message;
    const char* marked;
  } rows[] = {
      {"on", "give DEVICE.VARIABLE=VALUE", "on"},
      {"1=on.off", "give DEVICE.VARIABLE=VALUE", "1=on.off"},
      {"x.1=on", "the device is no number", "x"},
      {"1.x=on", "the variable is no number", "x"},
      {"4294967296.1=on", "the device is no number", "4294967296"},
  };
  for (const auto& row : rows) {
    const Refusal refusal = RefusalOf([&] { ParseVariable("--set", row.text); });
    EXPECT_THAT(refusal.message, HasSubstr(row.message));
    EXPECT_EQ(refusal.marked, row.marked);
  }
}

TEST(CatchUp, IsAPolicyOrHowLate) {
  const struct {
    const char* text;
    const char* catchUp;
    const char* shown;
  } rows[] = {
      {"ignore", R"({"policy":"ignore"})", "ignore"},
      {"Always", R"({"policy":"always"})", "always"},
      {"10", R"({"policy":"within","minutes":10})", "10m"},
      {"2h", R"({"policy":"within","minutes":120})", "2h"},
      {"7d", R"({"policy":"within","minutes":10080})", "7d"},
  };
  for (const auto& row : rows) {
    const json read = ParseCatchUp("--catch-up", row.text);
    EXPECT_EQ(read, json::parse(row.catchUp));
    EXPECT_EQ(CatchUpText(read), row.shown);
  }
  for (const char* text : {"", "never", "0", "8d", "90s"}) {
    EXPECT_THAT(RefusalOf([&] { ParseCatchUp("--catch-up", text); }).message,
                HasSubstr("this is no way to catch up; give ignore, always"));
  }
}

TEST(Day, IsADateOrAWordThatTheHouseKnows) {
  int asked = 0;
  const auto today = [&asked] {
    ++asked;
    return std::string("2026-12-31");
  };
  EXPECT_EQ(ParseDay("--until", "2027-03-31", today), "2027-03-31");
  EXPECT_EQ(asked, 0);
  EXPECT_EQ(ParseDay("--until", "Today", today), "2026-12-31");
  EXPECT_EQ(ParseDay("--until", "tomorrow", today), "2027-01-01");
  EXPECT_EQ(ParseDay("--until", "yesterday", today), "2026-12-30");
  for (const char* text : {"", "2027-02-29", "31.12.2026", "2026-1-1", "soon", "2026-12-24x"}) {
    EXPECT_THAT(RefusalOf([&] { ParseDay("--until", text, today); }).message,
                HasSubstr("this is no day; give a date like 2026-12-24, today or tomorrow"));
  }
  EXPECT_EQ(DaysLater("2028-02-28", 1), "2028-02-29");
  EXPECT_EQ(DaysLater("2026-12-31", -365), "2025-12-31");
  EXPECT_EQ(WeekdayOf("2026-11-21"), "Sat");
  EXPECT_EQ(WeekdayOf("x"), "");
}

}  // namespace
