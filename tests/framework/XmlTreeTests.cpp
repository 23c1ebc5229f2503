// Trees of unusual shape: nothing recurses in their depth, nothing goes square in their width.

#include <gtest/gtest.h>
#include <string>

#include "framework/XmlText.h"
#include "host/VxXml.h"

namespace {

using VxXML::CreateXmlNode;
using VxXML::INode;

constexpr int kMillion = 1000000;

TEST(XmlTree, AMillionLevelsAreBuiltDownwardsWrittenAndDestroyed) {
  const auto root = CreateXmlNode("r", "");
  INode* at = root.get();
  for (int level = 1; level < kMillion; ++level) at = &XmlHelper::AddChild(*at, "n", "");
  at->AddText("leaf", "x");
  const std::string text = root->ToString();
  EXPECT_EQ(text.size(),
            (std::string("<r></r>").size() + std::string("<n></n>").size() * (kMillion - 1) +
             std::string("<leaf>x</leaf>").size()));
  EXPECT_EQ(vx::WriteXml(*root, vx::XmlStyle::kTranscript), text);
}

TEST(XmlTree, AMillionLevelsAreBuiltUpwardsAndDestroyed) {
  vx::auto_com<INode> top = CreateXmlNode("n", "leaf");
  for (int level = 1; level < kMillion; ++level) {
    vx::auto_com<INode> parent = CreateXmlNode("n", "");
    parent->AddChild(*top);
    top = parent;
  }
  EXPECT_FALSE(top->IsEmpty());
}

TEST(XmlTree, ADeepTreeHeldInTheMiddleLosesOnlyWhatIsAbove) {
  auto root = CreateXmlNode("r", "");
  INode* at = root.get();
  vx::auto_com<INode> middle;
  for (int level = 1; level < 200000; ++level) {
    at = &XmlHelper::AddChild(*at, "n", "");
    if (level == 100000) middle = vx::auto_com<INode>::share(at);
  }
  at->AddText("leaf", "x");
  root.reset();
  int below = 0;
  for (const INode* node = middle.get(); node != nullptr; node = node->GetFirstChild()) ++below;
  EXPECT_EQ(below, 100001) << "99,999 more levels, the leaf and the middle itself";
}

TEST(XmlTree, AMillionChildrenAreKeptInOrderAndDestroyed) {
  const auto root = CreateXmlNode("r", "");
  for (int i = 0; i < kMillion; ++i) root->AddInt("c", i);
  int expected = 0;
  for (const INode* child = root->GetFirstChild(); child != nullptr;
       child = child->GetNextSibling()) {
    if (child->GetInt() != expected) break;
    ++expected;
  }
  EXPECT_EQ(expected, kMillion);
}

TEST(XmlTree, ManyChildrenMoveToAnotherParentFromTheFront) {
  const auto from = CreateXmlNode("from", "");
  const auto to = CreateXmlNode("to", "");
  for (int i = 0; i < 200000; ++i) from->AddInt("c", i);
  while (INode* child = from->GetFirstChild()) to->AddChild(*child);
  EXPECT_TRUE(from->IsEmpty());
  EXPECT_EQ(to->GetFirstChild()->GetInt(), 0);
}

}  // namespace
