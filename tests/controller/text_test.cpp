#include <gtest/gtest.h>

#include "controller/NumberText.h"
#include "controller/Printable.h"
#include "controller/Utf8.h"
#include "controller/XmlRepair.h"
#include "host/VxXml.h"

namespace controller {
namespace {

using namespace std::string_literals;

TEST(Utf8, RefusesWhatIsNoCharacter) {
  const struct {
    const char* why;
    std::string bytes;
    bool valid;
    std::size_t length;
  } rows[] = {
      {"ASCII", "a", true, 1},
      {"two bytes", "\xC3\xA9", true, 2},
      {"three bytes", "\xE2\x82\xAC", true, 3},
      {"four bytes", "\xF0\x9F\x98\x80", true, 4},
      {"the last code point", "\xF4\x8F\xBF\xBF", true, 4},
      {"one beyond it", "\xF4\x90\x80\x80", false, 1},
      {"overlong slash", "\xC0\xAF", false, 1},
      {"overlong in three bytes", "\xE0\x80\x80", false, 1},
      {"a surrogate", "\xED\xA0\x80", false, 1},
      {"cut short", "\xE2\x82", false, 1},
      {"a continuation alone", "\x80", false, 1},
      {"never in UTF-8", "\xFF", false, 1},
  };
  for (const auto& row : rows) {
    const Utf8Char character = DecodeUtf8(row.bytes, 0);
    EXPECT_EQ(character.valid, row.valid) << row.why;
    EXPECT_EQ(character.length, row.length) << row.why;
  }
}

TEST(Utf8, WritesWhatItReads) {
  for (const char32_t code : {U'a', U'\u00E9', U'\u20AC', U'\U0001F600', U'\uFFFD'}) {
    std::string text;
    AppendUtf8(text, code);
    const Utf8Char read = DecodeUtf8(text, 0);
    EXPECT_EQ(read.code, code);
    EXPECT_EQ(read.length, text.size());
  }
}

TEST(Printable, LeavesNothingThatATerminalObeys) {
  const struct {
    const char* why;
    std::string text;
    std::string shown;
  } rows[] = {
      {"letters of any script stand",
       "Porte d'entr\xC3\xA9"
       "e \xE9\x96\x80",
       "Porte d'entr\xC3\xA9"
       "e \xE9\x96\x80"},
      {"line ends", "a\r\nb\tc", "a\\r\\nb\\tc"},
      {"escape sequences", "\x1b[31mred", "\\x1b[31mred"},
      {"NUL and DEL", "\0\x7f"s, "\\x00\\x7f"},
      {"C1 as a character", "\xC2\x9B", "\\x9b"},
      {"C1 as a byte is no UTF-8", "\x9B", "\\x9b"},
      {"line separator", "\xE2\x80\xA8", "\\u2028"},
      {"right-to-left override", "\xE2\x80\xAE", "\\u202e"},
      {"a backslash stands", "a\\nb", "a\\nb"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Printable(row.text), row.shown) << row.why;
    EXPECT_EQ(Printable(row.shown), row.shown) << "twice is once: " << row.why;
  }
}

TEST(Printable, CutsWhatIsTooLongBetweenCharacters) {
  EXPECT_EQ(Printable("aaa\xC3\xA9", 4), "aaa... (5 bytes)");
  EXPECT_EQ(Printable("aaa\xC3\xA9", 5), "aaa\xC3\xA9");
  EXPECT_LT(Quoted(std::string(1000000, 'x')).size(), 300u);
}

TEST(XmlRepair, ReplacesOnlyWhatXmlCannotHold) {
  const std::string mark = "\xEF\xBF\xBD";
  const struct {
    const char* why;
    std::string text;
    std::string repaired;
    std::size_t replaced;
  } rows[] = {
      {"nothing to do", "<a>\t\n\r\xC3\xA9&#10;</a>", "<a>\t\n\r\xC3\xA9&#10;</a>", 0},
      {"a control character", "<a>\x01</a>", "<a>" + mark + "</a>", 1},
      {"NUL", "<a>\0</a>"s, "<a>" + mark + "</a>", 1},
      {"no UTF-8, byte by byte", "<a>\xFF\xFE</a>", "<a>" + mark + mark + "</a>", 2},
      {"U+FFFE and U+FFFF", "<a>\xEF\xBF\xBE\xEF\xBF\xBF</a>", "<a>" + mark + mark + "</a>", 2},
      {"a reference to one", "<a>&#1;&#x1F;&#xFFFF;</a>", "<a>" + mark + mark + mark + "</a>", 3},
      {"a reference beyond all", "<a>&#99999999999999999999;</a>", "<a>" + mark + "</a>", 1},
  };
  for (const auto& row : rows) {
    const RepairedXml result = RepairXml(row.text);
    EXPECT_EQ(result.text, row.repaired) << row.why;
    EXPECT_EQ(result.replaced, row.replaced) << row.why;
    EXPECT_TRUE(VxXML::CreateXmlDocument(result.text)) << row.why;
  }
}

TEST(XmlRepair, MakesEveryByteReadable) {
  for (int byte = 0; byte < 256; ++byte) {
    if (byte == '<' || byte == '&') continue;
    const std::string text = "<a>x" + std::string(1, static_cast<char>(byte)) + "y</a>";
    EXPECT_TRUE(VxXML::CreateXmlDocument(RepairXml(text).text)) << byte;
  }
}

TEST(NumberText, TellsHowATextAnswersAsANumber) {
  const struct {
    const char* text;
    NumberForm form;
  } rows[] = {
      {"7", NumberForm::kNumber},
      {" -7 \n", NumberForm::kNumber},
      {"+7", NumberForm::kNumber},
      {"7pm", NumberForm::kNumberAndMore},
      {"1 2", NumberForm::kNumberAndMore},
      {"pm", NumberForm::kNoNumber},
      {"-", NumberForm::kNoNumber},
      {"", NumberForm::kEmpty},
      {" \t", NumberForm::kEmpty},
      {"00000000000000000000000001", NumberForm::kNumber},
      {"999999999999999999", NumberForm::kNumber},
      {"1000000000000000000", NumberForm::kTooLarge},
      {"1000000000000000000x", NumberForm::kTooLarge},
  };
  for (const auto& row : rows) EXPECT_EQ(FormOf(row.text), row.form) << row.text;
}

}  // namespace
}  // namespace controller
