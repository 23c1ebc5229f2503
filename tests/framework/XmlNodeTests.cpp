// An element and its children: looked at, added, moved.

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "host/VxXml.h"

namespace {

using VxXML::CreateXmlNode;
using VxXML::INode;

std::vector<std::string> Names(const INode& node) {
  std::vector<std::string> names;
  for (const INode* child = node.GetFirstChild(); child != nullptr;
       child = child->GetNextSibling()) {
    names.emplace_back(child->GetName());
  }
  return names;
}

using Strings = std::vector<std::string>;

TEST(XmlNode, HasANameAndAText) {
  const auto node = CreateXmlNode("start_date", "31 & more");
  EXPECT_EQ(node->GetName(), "start_date");
  EXPECT_TRUE(node->IsNamed("start_date"));
  EXPECT_FALSE(node->IsNamed("Start_date")) << "to the letter";
  EXPECT_FALSE(node->IsNamed("start_dat"));
  EXPECT_FALSE(node->IsNamed("start_dates"));
  EXPECT_EQ(node->GetText(), "31 & more");
  EXPECT_EQ(node->GetFirstChild(), nullptr);
  EXPECT_EQ(node->GetNextSibling(), nullptr);
}

TEST(XmlNode, KeepsTextsOfEveryLength) {
  for (const std::size_t length : {0U, 1U, 15U, 16U, 17U, 100U, 100000U}) {
    const std::string text(length, 'x');
    EXPECT_EQ(CreateXmlNode("n", text)->GetText(), text) << length;
    const auto parent = CreateXmlNode("p", "");
    parent->AddText("n", text);
    EXPECT_EQ(parent->GetText("n"), text) << length;
  }
}

TEST(XmlNode, NamesOutliveTheDocumentTheyWereReadFrom) {
  vx::auto_com<INode> root;
  {
    const auto document = VxXML::CreateXmlDocument("<alpha><beta/></alpha>");
    root = vx::auto_com<INode>::share(document->GetRoot());
  }
  EXPECT_EQ(root->GetName(), "alpha");
  EXPECT_EQ(root->GetFirstChild()->GetName(), "beta");
}

TEST(XmlNode, AManyNamedTextLeavesNothingBehind) {
  for (int round = 0; round < 3; ++round) {
    std::string text = "<a>";
    for (int i = 0; i < 20000; ++i) text += "<n" + std::to_string(i) + "/>";
    const auto document = VxXML::CreateXmlDocument(text + "</a>");
    ASSERT_TRUE(document);
    EXPECT_NE(document->GetRoot()->GetChild("n19999"), nullptr);
  }
}

TEST(XmlNode, IsEmptyWithoutChildrenAndWithWhiteSpaceOnly) {
  const struct {
    const char* why;
    const char* text;
    bool empty;
  } rows[] = {
      {"nothing", "<a/>", true},
      {"white space", "<a> \t\r\n </a>", true},
      {"a comment", "<a><!-- x --></a>", true},
      {"an instruction", "<a><?x y?></a>", true},
      {"an empty CDATA section", "<a><![CDATA[]]></a>", true},
      {"an attribute", "<a b='1'/>", true},
      {"text", "<a>x</a>", false},
      {"a zero", "<a>0</a>", false},
      {"an empty child", "<a><b/></a>", false},
      {"a no-break space is no white space", "<a>\xC2\xA0</a>", false},
  };
  for (const auto& row : rows) {
    const auto document = VxXML::CreateXmlDocument(row.text);
    ASSERT_TRUE(document) << row.text;
    EXPECT_EQ(document->GetRoot()->IsEmpty(), row.empty) << row.why;
  }
}

TEST(XmlNode, YieldsElementsOnlyAsChildren) {
  const auto document =
      VxXML::CreateXmlDocument("<a> text <b/><!-- c --><?d e?><![CDATA[f]]><g/> </a>");
  ASSERT_TRUE(document);
  EXPECT_EQ(Names(*document->GetRoot()), (Strings{"b", "g"}));
}

TEST(XmlNode, TheFirstOfSeveralChildrenOfANameCounts) {
  const auto document = VxXML::CreateXmlDocument("<a><b>1</b><c>2</c><b>3</b></a>");
  const INode& root = *document->GetRoot();
  EXPECT_EQ(root.GetText("b"), "1");
  EXPECT_EQ(root.GetInt("b"), 1);
  EXPECT_EQ(root.GetChild("b"), root.GetFirstChild());
  EXPECT_EQ(root.GetChild("d"), nullptr);
}

TEST(XmlNode, LooksOneLevelDownOnly) {
  const auto document = VxXML::CreateXmlDocument("<a><b><c>1</c></b></a>");
  EXPECT_EQ(document->GetRoot()->GetChild("c"), nullptr);
  EXPECT_EQ(document->GetRoot()->GetInt("c"), 0);
}

TEST(XmlNode, AddChildKeepsTheCallersReference) {
  const auto child = CreateXmlNode("child", "text");
  {
    const auto parent = CreateXmlNode("parent", "");
    parent->AddChild(*child);
    EXPECT_EQ(parent->GetFirstChild(), child.get());
  }
  EXPECT_EQ(child->GetText(), "text") << "the parent is gone, the child is not";
  EXPECT_EQ(child->GetNextSibling(), nullptr);
}

TEST(XmlNode, AParentKeepsAChildAlive) {
  const auto parent = CreateXmlNode("parent", "");
  parent->AddChild(*CreateXmlNode("child", "kept"));
  EXPECT_EQ(parent->GetText("child"), "kept");
}

TEST(XmlNode, AChildHeldElsewhereForgetsItsSiblingsWithItsParent) {
  auto parent = CreateXmlNode("parent", "");
  const auto first = CreateXmlNode("first", "");
  const auto second = CreateXmlNode("second", "");
  parent->AddChild(*first);
  parent->AddChild(*second);
  EXPECT_EQ(first->GetNextSibling(), second.get());
  parent.reset();
  EXPECT_EQ(first->GetNextSibling(), nullptr);
}

TEST(XmlNode, MovesAChildFromItsOldParent) {
  const auto from = CreateXmlNode("from", "");
  const auto to = CreateXmlNode("to", "");
  for (const char* name : {"a", "b", "c"}) from->AddChild(*CreateXmlNode(name, ""));
  to->AddChild(*from->GetChild("b"));
  EXPECT_EQ(Names(*from), (Strings{"a", "c"})) << "from the middle";
  to->AddChild(*from->GetChild("a"));
  EXPECT_EQ(Names(*from), (Strings{"c"})) << "the first";
  to->AddChild(*from->GetChild("c"));
  EXPECT_TRUE(from->IsEmpty()) << "the only one";
  EXPECT_EQ(Names(*to), (Strings{"b", "a", "c"}));
  from->AddChild(*to->GetChild("c"));
  EXPECT_EQ(Names(*to), (Strings{"b", "a"})) << "the last";
  to->AddText("d", "");
  EXPECT_EQ(Names(*to), (Strings{"b", "a", "d"})) << "appending still works";
}

TEST(XmlNode, AddingAnOwnChildAgainMovesItToTheEnd) {
  const auto node = CreateXmlNode("n", "");
  for (const char* name : {"a", "b", "c"}) node->AddText(name, "");
  node->AddChild(*node->GetChild("a"));
  EXPECT_EQ(Names(*node), (Strings{"b", "c", "a"}));
  node->AddChild(*node->GetChild("a"));
  EXPECT_EQ(Names(*node), (Strings{"b", "c", "a"}));
}

TEST(XmlNode, RefusesToBecomeItsOwnAncestor) {
  const auto top = CreateXmlNode("top", "");
  INode& middle = XmlHelper::AddChild(*top, "middle", "");
  INode& bottom = XmlHelper::AddChild(middle, "bottom", "");
  top->AddChild(*top);
  bottom.AddChild(*top);
  bottom.AddChild(middle);
  EXPECT_EQ(top->ToString(), "<top><middle><bottom/></middle></top>");
}

TEST(XmlNode, MovesAGrandchildUp) {
  const auto top = CreateXmlNode("top", "");
  INode& middle = XmlHelper::AddChild(*top, "middle", "");
  INode& bottom = XmlHelper::AddChild(middle, "bottom", "");
  top->AddChild(bottom);
  EXPECT_EQ(top->ToString(), "<top><middle/><bottom/></top>");
}

TEST(XmlNode, MovesBetweenDocuments) {
  auto target = CreateXmlNode("target", "");
  {
    const auto first = VxXML::CreateXmlDocument("<first><x>1</x></first>");
    const auto second = VxXML::CreateXmlDocument("<second>2</second>");
    target->AddChild(*first->GetRoot()->GetFirstChild());
    target->AddChild(*second->GetRoot());
    EXPECT_EQ(first->GetRoot()->ToString(), "<first/>");
    EXPECT_EQ(second->GetRoot()->GetText(), "2") << "a document keeps its root";
  }
  EXPECT_EQ(target->ToString(), "<target><x>1</x><second>2</second></target>");
}

TEST(XmlNode, HoldsTextBesideChildrenAndAttributes) {
  for (const std::string& text : {std::string("short"), std::string(40, 'x')}) {
    const auto node = CreateXmlNode("n", text);
    node->AddText("a", "1");
    node->AddText("b", "2");
    EXPECT_EQ(node->GetText(), text) << "children come beside the text";
    EXPECT_EQ(node->ToString(), "<n>" + text + "<a>1</a><b>2</b></n>");
    const auto other = CreateXmlNode("other", "");
    other->AddChild(*node->GetFirstChild());
    other->AddChild(*node->GetFirstChild());
    EXPECT_EQ(node->ToString(), "<n>" + text + "</n>") << "they go, the text stays";
    EXPECT_EQ(other->ToString(), "<other><a>1</a><b>2</b></other>");
  }
  const auto document = VxXML::CreateXmlDocument("<n k='7'>text<c/>more</n>");
  INode* const root = document->GetRoot();
  EXPECT_EQ(root->ToString(), "<n k=\"7\">textmore<c/></n>");
  const auto other = CreateXmlNode("other", "");
  other->AddChild(*root->GetFirstChild());
  EXPECT_EQ(root->ToString(), "<n k=\"7\">textmore</n>");
  EXPECT_EQ(root->GetIntOrAttribute("k"), 7);
  other->AddChild(*other->GetFirstChild());
  EXPECT_EQ(other->ToString(), "<other><c/></other>") << "the only child, taken out and in again";
}

TEST(XmlNode, TakesATextAfterItsLastChildHasGone) {
  const auto document = VxXML::CreateXmlDocument("<n><c/></n>");
  const auto other = CreateXmlNode("other", "");
  other->AddChild(*document->GetRoot()->GetFirstChild());
  EXPECT_EQ(document->GetRoot()->ToString(), "<n/>");
  document->GetRoot()->AddText("d", "1");
  EXPECT_EQ(document->GetRoot()->ToString(), "<n><d>1</d></n>");
}

TEST(XmlHelper, AddChildAnswersTheNewChildOfItsParent) {
  const auto parent = CreateXmlNode("p", "");
  INode& child = XmlHelper::AddChild(*parent, "c", "text");
  EXPECT_EQ(&child, parent->GetFirstChild());
  EXPECT_EQ(child.GetText(), "text");
}

TEST(XmlDocument, RootLivesAsLongAsTheDocument) {
  const auto document = VxXML::CreateXmlDocument("<a><b/></a>");
  const auto second = document;  // copied: two owners
  EXPECT_EQ(second->GetRoot(), document->GetRoot());
  EXPECT_EQ(document->GetRoot()->GetNextSibling(), nullptr);
}

}  // namespace
