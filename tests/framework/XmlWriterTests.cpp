// Writing, in both styles, and reading again.

#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <string>

#include "framework/XmlText.h"
#include "host/VxXml.h"

namespace {

using vx::XmlStyle;
using VxXML::CreateXmlNode;
using VxXML::INode;

TEST(XmlWriter, EscapesWhatEachStyleNeeds) {
  const struct {
    const char* why;
    const char* text;
    const char* lossless;
    const char* transcript;
  } rows[] = {
      {"nothing", "", "<n/>", "<n/>"},
      {"plain", "Porch", "<n>Porch</n>", "<n>Porch</n>"},
      {"the three", "a<b>&c", "<n>a&lt;b&gt;&amp;c</n>", "<n>a&lt;b&gt;&amp;c</n>"},
      {"an entity's own text", "&lt;", "<n>&amp;lt;</n>", "<n>&amp;lt;</n>"},
      {"quotes stand as they are", "\"'", "<n>\"'</n>", "<n>\"'</n>"},
      {"a line feed and a tab", "a\n\tb", "<n>a\n\tb</n>", "<n>a\n\tb</n>"},
      {"a carriage return", "a\rb", "<n>a&#13;b</n>", "<n>a\rb</n>"},
      {"white space is content", " ", "<n> </n>", "<n> </n>"},
      {"other scripts", "\xC3\xA9\xF0\x9F\x92\xA1", "<n>\xC3\xA9\xF0\x9F\x92\xA1</n>",
       "<n>\xC3\xA9\xF0\x9F\x92\xA1</n>"},
      {"the end of a CDATA section", "]]>", "<n>]]&gt;</n>", "<n>]]&gt;</n>"},
  };
  for (const auto& row : rows) {
    const auto node = CreateXmlNode("n", row.text);
    EXPECT_EQ(node->ToString(), row.lossless) << row.why;
    EXPECT_EQ(vx::WriteXml(*node, XmlStyle::kLossless), row.lossless) << row.why;
    EXPECT_EQ(vx::WriteXml(*node, XmlStyle::kTranscript), row.transcript) << row.why;
  }
}

TEST(XmlWriter, WritesAttributesSoThatTheyAreReadAgain) {
  const char* const text = "<n a=\"&lt;&amp;&gt;&quot;'\" b=\"x&#10;y&#9;z&#13;\"/>";
  const auto document = VxXML::CreateXmlDocument(text);
  ASSERT_TRUE(document);
  const std::string written = document->GetRoot()->ToString();
  const auto again = VxXML::CreateXmlDocument(written);
  ASSERT_TRUE(again) << written;
  EXPECT_EQ(again->GetRoot()->ToString(), written);
  EXPECT_EQ(written, text);
}

TEST(XmlWriter, WritesTheOwnTextBeforeTheChildren) {
  const auto node = CreateXmlNode("n", "text");
  node->AddText("child", "");
  EXPECT_EQ(node->ToString(), "<n>text<child/></n>");
}

TEST(XmlWriter, WritesANodeWithoutItsSiblingsAndParents) {
  const auto top = CreateXmlNode("top", "");
  INode& first = XmlHelper::AddChild(*top, "first", "");
  XmlHelper::AddChild(first, "inner", "1");
  XmlHelper::AddChild(*top, "second", "");
  EXPECT_EQ(first.ToString(), "<first><inner>1</inner></first>");
  EXPECT_EQ(top->ToString(), "<top><first><inner>1</inner></first><second/></top>");
}

// A random tree of at most `nodes` elements, with texts that need care.
vx::auto_com<INode> RandomTree(std::mt19937& random, int nodes) {
  static const char* const kTexts[] = {"",    "x",   " ",    "\r",      "\r\n",  "\n",
                                       "<&>", "]]>", "\t\"", "a\rb\n ", "&#13;", "\xE2\x82\xAC"};
  const auto text = [&random] { return kTexts[random() % std::size(kTexts)]; };
  auto root = CreateXmlNode("root", text());
  INode* at = root.get();
  for (int i = 0; i < nodes; ++i) {
    INode& child = XmlHelper::AddChild(*at, random() % 2 == 0 ? "even" : "odd", text());
    switch (random() % 3) {
      case 0:
        at = &child;
        break;
      case 1:
        at = root.get();
        break;
      default:
        break;
    }
  }
  return root;
}

bool Equal(const INode& a, const INode& b) {
  if (a.GetName() != b.GetName() || a.GetText() != b.GetText()) return false;
  const INode* x = a.GetFirstChild();
  const INode* y = b.GetFirstChild();
  for (; x != nullptr && y != nullptr; x = x->GetNextSibling(), y = y->GetNextSibling()) {
    if (!Equal(*x, *y)) return false;
  }
  return x == y;
}

TEST(XmlWriter, WhatIsWrittenLosslesslyIsReadAsAnEqualTree) {
  std::mt19937 random(20240306);
  for (int round = 0; round < 500; ++round) {
    const auto tree = RandomTree(random, 60);
    const std::string text = tree->ToString();
    const auto document = VxXML::CreateXmlDocument(text);
    ASSERT_TRUE(document) << vx::LastXmlError() << "\n" << text;
    EXPECT_TRUE(Equal(*tree, *document->GetRoot())) << text;
    EXPECT_EQ(document->GetRoot()->ToString(), text);
  }
}

}  // namespace
