// Whatever is written on a command line, the parsers take it or say what is wrong with it.

#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <string>

#include "controller/cli/parse/ActionParts.h"
#include "controller/cli/parse/ConditionText.h"
#include "controller/cli/parse/DayText.h"
#include "controller/cli/parse/DurationText.h"
#include "controller/cli/parse/EveryText.h"
#include "controller/cli/parse/ShellWords.h"
#include "controller/cli/parse/TextError.h"
#include "controller/cli/parse/TimeText.h"
#include "controller/cli/show/DisplayWidth.h"

namespace {

using namespace controller::cli;

const char* const kPieces[] = {
    "every",    "2",       "weeks",   "on",         "mon",          ",",
    "and",      "month",   "the",     "2nd",        "last",         "fri",
    "sunset",   "-",       "+",       "1h30",       "time",         "between",
    "22:00",    "is",      "not",     "in",         "day",          "night",
    "within",   "minutes", "before",  "date",       "leap",         "year",
    "2027",     ">=",      "'",       "\"",         "\\",           "$x",
    "|",        ":",       "=",       ".",          "1.2=",         "\xFF",
    "\xE7\x8E", "玄",      "\x1b[2J", "\n",         "\xE2\x80\xAE", "99999999999999999999",
    "weekday",  "noon",    "-1",      "2026-12-24",
};

std::string SomeText(std::mt19937& random) {
  std::string text;
  const std::size_t count = random() % 8;
  for (std::size_t i = 0; i < count; ++i) {
    text += kPieces[random() % std::size(kPieces)];
    if (random() % 3 != 0) text += ' ';
    if (random() % 20 == 0) text += static_cast<char>(random() % 256);
  }
  return text;
}

/// A refusal must be harmless, and its mark below the text.
void ExpectGood(const TextError& error, const std::string& text) {
  const std::string message = error.what();
  const std::string& picture = error.Picture();
  for (const std::string& shown : {message, picture})
    EXPECT_EQ(shown.find('\x1b'), std::string::npos);
  EXPECT_EQ(message.find('\n'), std::string::npos) << text;
  ASSERT_EQ(std::count(picture.begin(), picture.end(), '\n'), 2) << text;
  const std::size_t end = picture.find('\n');
  const std::string marks = picture.substr(end + 1, picture.size() - end - 2);
  EXPECT_LE(DisplayWidth(marks), DisplayWidth(picture.substr(0, end)) + 1) << picture;
  const bool saysWhatIsRight = message.find("; give ") != std::string::npos ||
                               message.find("; leave it out: ") != std::string::npos;
  EXPECT_TRUE(saysWhatIsRight) << message;
}

TEST(AnyText, IsTakenOrRefusedWithAReason) {
  const std::function<void(const std::string&)> parsers[] = {
      [](const std::string& text) { ParseAt("--at", text); },
      [](const std::string& text) { EveryText(ParseEvery("--every", text)); },
      [](const std::string& text) { ConditionWords(ParseCondition("--if", text)); },
      [](const std::string& text) { ParseDuration("--delay", text, 1, 0, 86400); },
      [](const std::string& text) { ParseCatchUp("--catch-up", text); },
      [](const std::string& text) { ParseVariable("--set", text); },
      [](const std::string& text) { ParseHeader("--header", text); },
      [](const std::string& text) { SplitShellWords("--run", text); },
      [](const std::string& text) {
        ParseDay("--from", text, [] { return std::string("2026-11-21"); });
      },
  };
  std::mt19937 random(1);  // the same texts each time
  std::size_t taken = 0;
  std::size_t refused = 0;
  for (int i = 0; i < 5000; ++i) {
    const std::string text = SomeText(random);
    for (const auto& parse : parsers) {
      try {
        parse(text);
        ++taken;
      } catch (const TextError& error) {
        ++refused;
        ExpectGood(error, text);
      }
    }
  }
  EXPECT_GT(taken, 1000U);
  EXPECT_GT(refused, 1000U);
}

}  // namespace
