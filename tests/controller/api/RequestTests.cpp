#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controller/api/JsonText.h"
#include "controller/api/Moments.h"
#include "tests/support/TestClock.h"

namespace {

using namespace controller;

std::string JsonString(std::string_view text) {
  std::string out;
  AppendJsonString(out, text);
  return out;
}

TEST(JsonText, KeepsTextAndEscapesWhatJsonWants) {
  EXPECT_EQ(JsonString("T\xC3\xBCr"), "\"T\xC3\xBCr\"");
  EXPECT_EQ(JsonString("a\"b\\c"), R"("a\"b\\c")");
  EXPECT_EQ(JsonString(std::string("a\0b\n\x7F", 5)), R"("a\u0000b\u000a\u007f")");
  EXPECT_EQ(JsonString("</script>"), "\"</script>\"");
}

TEST(JsonText, IsJsonWhateverBytesThereAre) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string text = {'a', static_cast<char>(byte), 'b'};
    const auto parsed = nlohmann::json::parse(JsonString(text), nullptr, false);
    ASSERT_TRUE(parsed.is_string()) << byte;
    const std::string wanted = byte < 0x80 ? text
                                           : "a\xEF\xBF\xBD"
                                             "b";
    EXPECT_EQ(parsed, wanted) << byte;
  }
  EXPECT_EQ(ValidUtf8("\xED\xA0\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD") << "a surrogate";
}

TEST(Moment, IsWrittenWithTheOffsetOfItsTime) {
  const auto text = [](const char* zone, std::time_t moment) {
    const ZoneScope scope(zone);
    return MomentJson(moment).dump();
  };
  EXPECT_EQ(text("UTC0", 0), "\"1970-01-01T00:00:00+00:00\"");
  EXPECT_EQ(text("EST5EDT,M3.2.0,M11.1.0", 1782043200), "\"2026-06-21T08:00:00-04:00\"");
  EXPECT_EQ(text("<+0545>-5:45", 0), "\"1970-01-01T05:45:00+05:45\"");
  EXPECT_EQ(text("<-0330>3:30", 0), "\"1969-12-31T20:30:00-03:30\"");
  EXPECT_EQ(text("UTC0", 253402300799), "\"9999-12-31T23:59:59+00:00\"");
  EXPECT_EQ(text("UTC0", 253402300800), "null") << "a year of five digits";
  EXPECT_EQ(MomentJson(std::nullopt).dump(), "null");
}

TEST(Moment, IsReadAsRfc3339HasIt) {
  EXPECT_EQ(ParseMoment("1970-01-01T00:00:00Z"), 0);
  EXPECT_EQ(ParseMoment("1970-01-01t01:00:00+01:00"), 0);
  EXPECT_EQ(ParseMoment("2026-11-21T16:04:00.999-03:30"), 1795289640);
  EXPECT_EQ(ParseMoment("2016-12-31T23:59:60Z"), 1483228800) << "a leap second is the next";
  for (const char* text :
       {"", "2026-11-21", "2026-11-21T16:04:00", "2026-11-21 16:04:00Z", "2026-02-29T00:00:00Z",
        "2026-11-21T24:00:00Z", "2026-11-21T16:60:00Z", "2026-11-21T16:04:61Z",
        "2026-11-21T16:04:00+1:00", "2026-11-21T16:04:00+24:00", "2026-11-21T16:04:00.Z",
        "2026-11-21T16:04:00Zx", "2026-11-21T16:04:00+01:60"}) {
    EXPECT_EQ(ParseMoment(text), std::nullopt) << text;
  }
}

}  // namespace
