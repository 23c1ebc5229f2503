#include "framework/XmlText.h"

#include "framework/XmlNode.h"

namespace vx {
namespace {

enum class Place { kText, kAttribute };

// What stands for a character, or nothing where it stands for itself.
std::string_view Escape(char character, Place place, XmlStyle style) {
  switch (character) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return place == Place::kAttribute ? "&quot;" : "";
    case '\r':  // a parser makes a line feed of it
      return style == XmlStyle::kLossless ? "&#13;" : "";
    case '\n':  // in an attribute, a blank
      return place == Place::kAttribute ? "&#10;" : "";
    case '\t':
      return place == Place::kAttribute ? "&#9;" : "";
    default:
      return "";
  }
}

void WriteText(std::string_view text, Place place, XmlStyle style, std::string* out) {
  for (const char character : text) {
    const std::string_view escape = Escape(character, place, style);
    if (escape.empty()) {
      out->push_back(character);
    } else {
      out->append(escape);
    }
  }
}

void WriteStartTag(const XmlNode& node, XmlStyle style, std::string* out) {
  out->push_back('<');
  out->append(node.GetName());
  if (const XmlNode::Attributes* attributes = node.GetAttributes()) {
    for (const auto& [name, value] : *attributes) {
      out->append(" ").append(name).append("=\"");
      WriteText(value, Place::kAttribute, style, out);
      out->push_back('"');
    }
  }
  const bool hasContent = !node.Text().empty() || node.FirstChild() != nullptr;
  out->append(hasContent ? ">" : "/>");
  WriteText(node.Text(), Place::kText, style, out);
}

void WriteEndTag(const XmlNode& node, std::string* out) {
  if (node.Text().empty() && node.FirstChild() == nullptr) return;
  out->append("</").append(node.GetName()).push_back('>');
}

}  // namespace

std::string WriteXml(const VxXML::INode& node, XmlStyle style) {
  std::string out;
  const auto& root = static_cast<const XmlNode&>(node);
  const XmlNode* at = &root;
  while (true) {
    WriteStartTag(*at, style, &out);
    if (const XmlNode* child = at->FirstChild()) {
      at = child;
      continue;
    }
    WriteEndTag(*at, &out);
    while (at != &root && at->NextSibling() == nullptr) {
      at = at->Parent();
      WriteEndTag(*at, &out);
    }
    if (at == &root) return out;
    at = at->NextSibling();
  }
}

}  // namespace vx
