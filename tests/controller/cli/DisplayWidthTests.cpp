// How wide a text is on a terminal.

#include <gtest/gtest.h>

#include "controller/cli/show/DisplayWidth.h"

namespace {

using namespace controller::cli;

TEST(DisplayWidth, CountsColumnsNotBytes) {
  const struct {
    const char* why;
    const char* text;
    std::size_t width;
  } rows[] = {
      {"nothing", "", 0},
      {"ASCII", "Porch", 5},
      {"a letter of two bytes", "Türe", 4},
      {"a letter and a combining accent", "Tu\xCC\x88re", 4},
      {"wide characters", "玄関", 4},
      {"half-width kana", "ｱ", 1},
      {"an emoji", "🌅", 2},
      {"an ellipsis", "…", 1},
      {"a joiner",
       "a\xE2\x80\x8D"
       "b",
       2},
      {"Hebrew", "שלום", 4},
      {"a byte that is no UTF-8",
       "a\xFF"
       "b",
       3},
      {"no character of this C library, among emoji", "\xF0\x9F\xAB\xBF", 2},
  };
  for (const auto& row : rows) EXPECT_EQ(DisplayWidth(row.text), row.width) << row.why;
}

TEST(DisplayWidth, DecidesWhereATextIsCut) {
  const struct {
    const char* text;
    std::size_t columns;
    const char* cut;
  } rows[] = {
      {"Porch", 5, "Porch"},
      {"Porch", 4, "Por…"},
      {"Porch", 1, "…"},
      {"Porch", 0, ""},
      {"玄関の灯", 8, "玄関の灯"},
      {"玄関の灯", 7, "玄関の…"},
      {"玄関の灯", 6, "玄関…"},
      {"u\xCC\x88"
       "ber",
       3,
       "u\xCC\x88"
       "b…"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(CutToWidth(row.text, row.columns), row.cut) << row.text;
    EXPECT_LE(DisplayWidth(CutToWidth(row.text, row.columns)), row.columns);
  }
}

TEST(DisplayWidth, IsWhatATextIsPaddedTo) {
  EXPECT_EQ(PadToWidth("玄関", 6), "玄関  ");
  EXPECT_EQ(PadToWidth("Porch", 3), "Porch");
}

}  // namespace
