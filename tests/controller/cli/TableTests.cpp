// Tables for people: aligned by what a terminal shows, and harmless.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

#include "controller/cli/show/DisplayWidth.h"
#include "controller/cli/show/Fields.h"
#include "controller/cli/show/Table.h"

namespace {

using namespace controller::cli;

Table Events() {
  Table table({{"ID", true}, {"DESCRIPTION", false, true}, {"TIME"}});
  table.Add({"7", "Porch", "sunset-30"});
  table.Add({"12", "玄関の灯", "07:30"});
  table.Add({"1000", "Tu\xCC\x88re", ""});
  return table;
}

std::string Written(const Table& table, std::size_t width, bool colors = false) {
  std::ostringstream out;
  table.Write(Terminal{out, width, colors, width > 0});
  return out.str();
}

TEST(Table, StandsBelowEachOtherByWhatIsShown) {
  EXPECT_EQ(Written(Events(), 0),
            "  ID  DESCRIPTION  TIME\n"
            "   7  Porch        sunset-30\n"
            "  12  玄関の灯     07:30\n"
            "1000  Tu\xCC\x88re\n");
}

TEST(Table, IsCutToTheTerminalWhereThatIsAllowed) {
  Table table({{"ID", true}, {"DESCRIPTION", false, true}, {"NEXT"}, {"DOES", false, true}});
  table.Add({"7", "A long description of the porch", "Fri 2026-12-04", "2 actions, and disabled"});
  // 41: the narrowest that all titles and eight columns of the last cell have room in.
  for (std::size_t width = 41; width < 90; ++width) {
    std::istringstream lines(Written(table, width));
    for (std::string line; std::getline(lines, line);) EXPECT_LE(DisplayWidth(line), width) << line;
  }
  EXPECT_THAT(Written(table, 60), testing::HasSubstr("Fri 2026-12-04"));
  EXPECT_THAT(Written(table, 60), testing::HasSubstr("…"));
  EXPECT_THAT(Written(table, 0), testing::Not(testing::HasSubstr("…")));
  // Too narrow for what may not be cut: that stays whole.
  EXPECT_THAT(Written(table, 10), testing::HasSubstr("Fri 2026-12-04"));
}

TEST(Table, DoesNotLetATextActOnTheTerminal) {
  Table table({{"DESCRIPTION"}, {"NEXT"}});
  table.Add(
      {"\x1b[2J\r\n\xE2\x80\xAE"
       "evil\xC2\x9B",
       "a"});
  const std::string text = Written(table, 0);
  EXPECT_THAT(text, testing::HasSubstr("\\x1b[2J\\r\\n\\u202eevil\\x9b  a"));
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2);
  EXPECT_EQ(text.find('\x1b'), std::string::npos);
}

TEST(Table, HasColoursOnlyWhereTheyAreWanted) {
  Table table({{"A"}, {"B"}});
  table.Add({{"x", Style::kBad}, "y"});
  EXPECT_EQ(Written(table, 0), "A  B\nx  y\n");
  EXPECT_EQ(Written(table, 0, /*colors=*/true),
            "\x1b[1mA\x1b[0m  \x1b[1mB\x1b[0m\n\x1b[31mx\x1b[0m  y\n");
}

TEST(Fields, StandBelowEachOther) {
  Fields fields;
  fields.Add("next", "Fri");
  fields.Add("catches up", "1\n0m");
  std::ostringstream out;
  fields.Write(Terminal{out});
  EXPECT_EQ(out.str(), "next        Fri\ncatches up  1\\n0m\n");
}

}  // namespace
