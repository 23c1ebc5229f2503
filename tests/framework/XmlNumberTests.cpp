// Numbers in XML are read as strtol and strtoul read them in base 10.

#include <climits>
#include <gtest/gtest.h>

#include "host/VxXml.h"

namespace {

TEST(XmlNumber, SignedIsReadLikeStrtolAndNarrowed) {
  const struct {
    const char* why;
    const char* text;
    int value;
  } rows[] = {
      {"plain", "42", 42},
      {"empty", "", 0},
      {"leading blanks", "  42", 42},
      {"every kind of white space", "\t\n\v\f\r 42", 42},
      {"trailing blanks", "42  ", 42},
      {"a plus", "+7", 7},
      {"a minus", "-7", -7},
      {"a sign and a blank", "- 7", 0},
      {"two signs", "--7", 0},
      {"a sign alone", "-", 0},
      {"stops at a letter", "12abc", 12},
      {"no digits", "abc", 0},
      {"leading zeros are not octal", "010", 10},
      {"no hexadecimal", "0x10", 0},
      {"no fraction", "3.9", 3},
      {"no exponent", "1e3", 1},
      {"no thousands", "1,500", 1},
      {"digits of another script", "\xD9\xA3", 0},
      {"the largest", "2147483647", INT_MAX},
      {"the smallest", "-2147483648", INT_MIN},
      {"one above, narrowed", "2147483648", INT_MIN},
      {"one below, narrowed", "-2147483649", INT_MAX},
      {"2^32, narrowed", "4294967296", 0},
      {"2^32 + 5, narrowed", "4294967301", 5},
      {"beyond 64 bits: 2^63 - 1, narrowed", "9223372036854775808", -1},
      {"far beyond", "99999999999999999999999999", -1},
      {"below 64 bits: -2^63, narrowed", "-9223372036854775809", 0},
  };
  for (const auto& row : rows) {
    const auto node = VxXML::CreateXmlNode("n", row.text);
    EXPECT_EQ(node->GetInt(), row.value) << row.why;
    const auto parent = VxXML::CreateXmlNode("p", "");
    parent->AddText("n", row.text);
    EXPECT_EQ(parent->GetInt("n"), row.value) << row.why << ", by name";
  }
}

TEST(XmlNumber, UnsignedIsReadLikeStrtoul) {
  const struct {
    const char* why;
    const char* text;
    unsigned long value;
  } rows[] = {
      {"plain", "42", 42},
      {"empty", "", 0},
      {"leading blanks", " \n42", 42},
      {"stops at a letter", "12abc", 12},
      {"no digits", "x1", 0},
      {"beyond 32 bits", "4294967296", 4294967296UL},
      {"the largest", "18446744073709551615", ULONG_MAX},
      {"beyond it: the largest", "18446744073709551616", ULONG_MAX},
      {"negative, as strtoul has it", "-1", ULONG_MAX},
      {"negative, as strtoul has it", "-5", ULONG_MAX - 4},
  };
  for (const auto& row : rows) {
    const auto node = VxXML::CreateXmlNode("n", row.text);
    EXPECT_EQ(node->GetUnsigned(), row.value) << row.why << ": " << row.text;
    const auto parent = VxXML::CreateXmlNode("p", "");
    parent->AddText("n", row.text);
    EXPECT_EQ(parent->GetUnsigned("n"), row.value) << row.why << ", by name";
  }
}

TEST(XmlNumber, IsZeroOrEmptyWhereTheElementIsMissing) {
  const auto node = VxXML::CreateXmlNode("n", "5");
  EXPECT_EQ(node->GetInt("missing"), 0);
  EXPECT_EQ(node->GetUnsigned("missing"), 0U);
  EXPECT_EQ(node->GetText("missing"), "");
}

TEST(XmlNumber, IsWrittenInPlainDecimal) {
  const auto node = VxXML::CreateXmlNode("n", "");
  node->AddInt("a", 0);
  node->AddInt("b", LONG_MIN);
  node->AddInt("c", LONG_MAX);
  node->AddUnsigned("d", ULONG_MAX);
  EXPECT_EQ(node->ToString(),
            "<n><a>0</a><b>-9223372036854775808</b><c>9223372036854775807</c>"
            "<d>18446744073709551615</d></n>");
}

TEST(XmlNumber, AChildComesBeforeAnAttributeOfItsName) {
  const struct {
    const char* why;
    const char* text;
    int value;
  } rows[] = {
      {"a child", "<y><v>7</v></y>", 7},
      {"an attribute", "<y v='8'/>", 8},
      {"both", "<y v='8'><v>7</v></y>", 7},
      {"an empty child hides the attribute", "<y v='8'><v/></y>", 0},
      {"neither", "<y/>", 0},
      {"an attribute of another name", "<y w='8'/>", 0},
      {"an attribute that is no number", "<y v='many'/>", 0},
      {"an attribute read like any number", "<y v=' 12x'/>", 12},
      {"the second of two attributes", "<y u='1' v='9'/>", 9},
  };
  for (const auto& row : rows) {
    const auto document = VxXML::CreateXmlDocument(row.text);
    ASSERT_TRUE(document) << row.text;
    EXPECT_EQ(document->GetRoot()->GetIntOrAttribute("v"), row.value) << row.why;
  }
}

}  // namespace
