#include <gtest/gtest.h>
#include <random>
#include <string>

#include "controller/PlainXml.h"
#include "framework/XmlText.h"
#include "host/VxXml.h"

namespace controller {
namespace {

TEST(PlainXml, KnowsTheFormInWhichStatesAreWritten) {
  EXPECT_TRUE(IsPlainXml("<a/>"));
  EXPECT_TRUE(IsPlainXml("<event_data><current_id>3</current_id><events/></event_data>"));
  EXPECT_TRUE(
      IsPlainXml("<a>x &amp; y &lt;&gt;&#13;\n\t \"'<b-1.c_d>\xC3\xA4 \xF0\x9F\x92\xA1"
                 "</b-1.c_d></a>"));
}

TEST(PlainXml, IsNeverSureOfWhatAParserWouldRefuse) {
  for (const char* text : {"",
                           "a",
                           "<",
                           "<a",
                           "<a>",
                           "<a></b>",
                           "<a></ab>",
                           "<a></a>b",
                           "<a/><b/>",
                           "</a>",
                           "<a><b></a></b>",
                           "<a>&</a>",
                           "<a>&nbsp;</a>",
                           "<a>&#0;</a>",
                           "<a>\x01</a>",
                           "<a>\xFF</a>",
                           "<a>\xED\xA0\x80</a>",
                           "<a>\xEF\xBF\xBF</a>",
                           "<a>]]></a>",
                           "<1a/>",
                           "< a/>",
                           "<a><</a>",
                           "<a>\x7F\x80</a>"}) {
    EXPECT_FALSE(IsPlainXml(text)) << text;
  }
  EXPECT_FALSE(IsPlainXml(std::string_view("<a>\0</a>", 8)));
}

TEST(PlainXml, LeavesWhatIsLessPlainToAParser) {
  EXPECT_FALSE(IsPlainXml("<a b=\"c\"/>"));
  EXPECT_FALSE(IsPlainXml("<!-- --><a/>"));
  std::string deep;
  for (int level = 0; level < 33; ++level) deep = "<a>" + deep + "</a>";
  EXPECT_FALSE(IsPlainXml(deep));
}

TEST(PlainXml, AgreesWithTheParserWhateverIsBroken) {
  const std::string good = "<a>x<b>&amp;y</b><c/>\xC3\xA4&#13;<d><e>1</e></d></a>";
  ASSERT_TRUE(IsPlainXml(good));
  std::mt19937 chance(7);  // NOLINT(cert-msc51-cpp): the same texts each time
  int plain = 0;
  for (int round = 0; round < 50000; ++round) {
    std::string text = good;
    for (auto changes = chance() % 3 + 1; changes > 0; --changes) {
      static constexpr std::string_view kBytes("<>/&;#ab13 \xC3\xA4\xFF\0", 15);
      text[chance() % text.size()] = kBytes[chance() % kBytes.size()];
    }
    if (!IsPlainXml(text)) continue;
    ++plain;
    ASSERT_TRUE(VxXML::CreateXmlDocument(text)) << text << ": " << vx::LastXmlError();
  }
  EXPECT_GT(plain, 100) << "or nothing was compared";
}

}  // namespace
}  // namespace controller
