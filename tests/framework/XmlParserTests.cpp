// What parses, what it yields, and what is refused.

#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include "framework/XmlText.h"
#include "host/VxXml.h"

namespace {

using namespace std::string_view_literals;

TEST(XmlParser, ReadsWellFormedTexts) {
  const struct {
    const char* why;
    std::string_view text;
    std::string_view tree;  // as written for a transcript
  } rows[] = {
      {"an empty element", "<a/>", "<a/>"},
      {"a start and an end", "<a></a>", "<a/>"},
      {"a declaration", "<?xml version=\"1.0\"?><a/>", "<a/>"},
      {"white space around", " \r\n\t<a/>\n ", "<a/>"},
      {"a byte order mark", "\xEF\xBB\xBF<a/>", "<a/>"},
      {"comments around and inside", "<!-- x --><a><!-- <b/> --></a><!-- y -->", "<a/>"},
      {"instructions around and inside", "<?p q?><a><?p <b/>?></a><?r?>", "<a/>"},
      {"children in order", "<a><c/><b/><c/></a>", "<a><c/><b/><c/></a>"},
      {"the five entities", "<a>&lt;&gt;&amp;&quot;&apos;</a>", "<a>&lt;&gt;&amp;\"'</a>"},
      {"character references", "<a>&#65;&#x42;&#x20AC;</a>", "<a>AB\xE2\x82\xAC</a>"},
      {"a CDATA section", "<a><![CDATA[<b>&amp;]]></a>", "<a>&lt;b&gt;&amp;amp;</a>"},
      {"text and CDATA joined", "<a>x<![CDATA[y]]>z</a>", "<a>xyz</a>"},
      {"text round children joined", "<a>x<b>inner</b>y<!-- c -->z</a>", "<a>xyz<b>inner</b></a>"},
      {"white space kept", "<a> x \n y </a>", "<a> x \n y </a>"},
      {"four-byte characters", "<a>\xF0\x9F\x92\xA1</a>", "<a>\xF0\x9F\x92\xA1</a>"},
      {"a name in another script", "<\xC3\xA9\x74\xC3\xA9/>", "<\xC3\xA9\x74\xC3\xA9/>"},
      {"a prefix is part of the name", "<p:a xmlns:p='u'/>", "<p:a xmlns:p=\"u\"/>"},
      {"attributes", "<a b='1' c=\"2\"/>", "<a b=\"1\" c=\"2\"/>"},
      {"quotes in attributes", "<a b='&quot;' c=\"'\"/>", "<a b=\"&quot;\" c=\"'\"/>"},
      {"a declared encoding is ignored",
       "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xC3\xA9</a>", "<a>\xC3\xA9</a>"},
      {"one that nobody knows, too", "<?xml version='1.0' encoding='x-none'?><a/>", "<a/>"},
  };
  for (const auto& row : rows) {
    const auto document = VxXML::CreateXmlDocument(row.text);
    ASSERT_TRUE(document) << row.why << ": " << vx::LastXmlError();
    EXPECT_EQ(vx::WriteXml(*document->GetRoot(), vx::XmlStyle::kTranscript), row.tree) << row.why;
    EXPECT_EQ(vx::LastXmlError(), "") << row.why;
  }
}

TEST(XmlParser, RefusesWhatIsNotWellFormed) {
  const struct {
    const char* why;
    std::string_view text;
  } rows[] = {
      {"nothing", ""},
      {"white space alone", " \n"},
      {"no element", "hello"},
      {"a declaration alone", "<?xml version='1.0'?>"},
      {"a comment alone", "<!-- x -->"},
      {"not closed", "<a>"},
      {"closed as another", "<a></b>"},
      {"closed in another case", "<a></A>"},
      {"crossed", "<a><b></a></b>"},
      {"two roots", "<a/><b/>"},
      {"text before", "x<a/>"},
      {"text after", "<a/>x"},
      {"cut off in a tag", "<a><b"},
      {"a name that begins with a digit", "<1/>"},
      {"no name", "< a/>"},
      {"a bare ampersand", "<a>x & y</a>"},
      {"an entity that nobody declared", "<a>&nbsp;</a>"},
      {"a reference to no character", "<a>&#0;</a>"},
      {"a reference to a control character", "<a>&#1;</a>"},
      {"a reference to a surrogate", "<a>&#xD800;</a>"},
      {"a reference beyond Unicode", "<a>&#x110000;</a>"},
      {"the end of a CDATA section in text", "<a>]]></a>"},
      {"a CDATA section that does not end", "<a><![CDATA[x</a>"},
      {"two hyphens in a comment", "<a><!-- x -- y --></a>"},
      {"an attribute without quotes", "<a b=1/>"},
      {"an attribute without value", "<a b/>"},
      {"an attribute twice", "<a b='1' b='2'/>"},
      {"a less-than sign in an attribute", "<a b='<'/>"},
      {"a declaration that is not first", " <?xml version='1.0'?><a/>"},
  };
  for (const auto& row : rows) {
    EXPECT_FALSE(VxXML::CreateXmlDocument(row.text)) << row.why;
    EXPECT_NE(vx::LastXmlError(), "") << row.why;
  }
}

TEST(XmlParser, RefusesDocumentTypes) {
  const struct {
    const char* why;
    std::string_view text;
  } rows[] = {
      {"the plainest", "<!DOCTYPE a><a/>"},
      {"with an entity", "<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>"},
      {"with one that is not used", "<!DOCTYPE a [<!ENTITY e 'x'>]><a/>"},
      {"with one outside the text",
       "<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///etc/passwd'>]><a>&e;</a>"},
      {"outside the text itself", "<!DOCTYPE a SYSTEM 'file:///etc/passwd'><a/>"},
      {"after a declaration and a comment", "<?xml version='1.0'?><!-- x --><!DOCTYPE a><a/>"},
  };
  for (const auto& row : rows) {
    EXPECT_FALSE(VxXML::CreateXmlDocument(row.text)) << row.why;
    EXPECT_NE(vx::LastXmlError().find("document type"), std::string::npos) << vx::LastXmlError();
  }
}

TEST(XmlParser, RefusesInvalidBytes) {
  const struct {
    const char* why;
    std::string_view bytes;
  } rows[] = {
      {"a NUL", "\0"sv},
      {"a control character", "\x01"},
      {"a vertical tab", "\v"},
      {"a lone continuation", "\x80"},
      {"a lone start", "\xC3"},
      {"a start and a letter", "\xC3x"},
      {"cut off after two of three", "\xE2\x82"},
      {"too long for its character", "\xC0\xAF"},
      {"too long, three bytes", "\xE0\x80\xAF"},
      {"too long, four bytes", "\xF0\x80\x80\xAF"},
      {"a surrogate", "\xED\xA0\x80"},
      {"beyond Unicode", "\xF4\x90\x80\x80"},
      {"a byte that never occurs", "\xFF"},
      {"U+FFFE", "\xEF\xBF\xBE"},
      {"U+FFFF", "\xEF\xBF\xBF"},
      {"Latin-1", "caf\xE9"},
  };
  for (const auto& row : rows) {
    const std::string bytes(row.bytes);
    EXPECT_FALSE(VxXML::CreateXmlDocument("<a>" + bytes + "</a>")) << row.why << ", in text";
    EXPECT_FALSE(VxXML::CreateXmlDocument("<a b='" + bytes + "'/>"))
        << row.why << ", in an attribute";
    EXPECT_FALSE(VxXML::CreateXmlDocument("<a><![CDATA[" + bytes + "]]></a>"))
        << row.why << ", CDATA";
    EXPECT_FALSE(VxXML::CreateXmlDocument("<a/>" + bytes)) << row.why << ", at the end";
  }
  EXPECT_FALSE(VxXML::CreateXmlDocument("<\0a\0/\0>\0"sv)) << "UTF-16";
  EXPECT_FALSE(VxXML::CreateXmlDocument("\xFF\xFE<\0a\0/\0>\0"sv)) << "UTF-16 with its mark";
}

TEST(XmlParser, ReadsNothingBeyondTheText) {
  const std::string_view longer = "<a/><b/>";
  EXPECT_TRUE(VxXML::CreateXmlDocument(longer.substr(0, 4))) << "a view need not end in NUL";
  EXPECT_FALSE(VxXML::CreateXmlDocument(longer.substr(0, 3)));
}

TEST(XmlParser, FoldsLineEndsAsTheStandardSays) {
  const struct {
    const char* why;
    std::string_view text;
    std::string_view content;
  } rows[] = {
      {"CR LF", "<a>x\r\ny</a>", "x\ny"},
      {"CR alone", "<a>x\ry</a>", "x\ny"},
      {"LF stays", "<a>x\ny</a>", "x\ny"},
      {"CR CR LF", "<a>x\r\r\ny</a>", "x\n\ny"},
      {"in a CDATA section", "<a><![CDATA[x\r\ny]]></a>", "x\ny"},
      {"a reference is kept", "<a>x&#13;\ny</a>", "x\r\ny"},
  };
  for (const auto& row : rows) {
    const auto document = VxXML::CreateXmlDocument(row.text);
    ASSERT_TRUE(document) << row.why;
    EXPECT_EQ(document->GetRoot()->GetText(), row.content) << row.why;
  }
}

std::string Nested(int levels) {
  std::string text;
  for (int i = 0; i < levels; ++i) text += "<a>";
  for (int i = 0; i < levels; ++i) text += "</a>";
  return text;
}

TEST(XmlParser, ReadsNoMoreThan256Levels) {
  EXPECT_TRUE(VxXML::CreateXmlDocument(Nested(255)));
  EXPECT_TRUE(VxXML::CreateXmlDocument(Nested(256)));
  EXPECT_FALSE(VxXML::CreateXmlDocument(Nested(257)));
  EXPECT_NE(vx::LastXmlError().find("256 levels"), std::string::npos) << vx::LastXmlError();
  EXPECT_FALSE(VxXML::CreateXmlDocument(Nested(1000000)));
}

TEST(XmlParser, CountsLevelsNotElements) {
  std::string text = "<a>";
  for (int i = 0; i < 100; ++i) text += Nested(255);
  EXPECT_TRUE(VxXML::CreateXmlDocument(text + "</a>"));
  EXPECT_FALSE(VxXML::CreateXmlDocument(text + Nested(256) + "</a>"));
}

TEST(XmlParser, ReadsNoMoreThan256Mebibytes) {
  constexpr std::size_t kMost = std::size_t{256} * 1024 * 1024;
  std::string text = "<a>" + std::string(kMost - 7, 'x') + "</a>";
  ASSERT_EQ(text.size(), kMost);
  EXPECT_TRUE(VxXML::CreateXmlDocument(text)) << vx::LastXmlError();
  text.push_back('\n');
  EXPECT_FALSE(VxXML::CreateXmlDocument(text));
  EXPECT_NE(vx::LastXmlError().find("256 MiB"), std::string::npos) << vx::LastXmlError();
}

TEST(XmlParser, SaysWhereATextBreaks) {
  const struct {
    const char* text;
    const char* position;
  } rows[] = {
      {"<a>\n<b>\n  </a>\n</b>", "line 3, column 5: "},
      {"<a>&none;</a>", "line 1, column 4: "},
      {"<!DOCTYPE a><a/>", "line 1, column "},
      {"", "line 1, column 1: "},
  };
  for (const auto& row : rows) {
    EXPECT_FALSE(VxXML::CreateXmlDocument(row.text));
    EXPECT_EQ(vx::LastXmlError().find(row.position), 0U) << row.text << ": " << vx::LastXmlError();
  }
  EXPECT_TRUE(VxXML::CreateXmlDocument("<a/>"));
  EXPECT_EQ(vx::LastXmlError(), "") << "forgotten after a success";
}

}  // namespace
