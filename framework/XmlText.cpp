#include "framework/XmlText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

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

// Where a text goes: only its size is kept, so that the text itself need not move while it grows,
// which would touch several times the memory.
class Count {
 public:
  void Put(std::string_view text) { size_ += text.size(); }
  std::size_t Size() const { return size_; }

 private:
  std::size_t size_ = 0;
};

// Where it goes then: into a string, piece by piece.
class Pieces {
 public:
  explicit Pieces(std::size_t size) { out_.reserve(size); }
  void Put(std::string_view text) {
    if (text.size() > piece_.size() - used_) Flush();
    if (text.size() > piece_.size()) {
      out_.append(text);
      return;
    }
    std::copy(text.begin(), text.end(), piece_.begin() + static_cast<std::ptrdiff_t>(used_));
    used_ += text.size();
  }
  std::string Take() {
    Flush();
    return std::move(out_);
  }

 private:
  void Flush() {
    out_.append(piece_.data(), used_);
    used_ = 0;
  }

  std::array<char, 4096> piece_;
  std::size_t used_ = 0;
  std::string out_;
};

// Whether any style or place has something stand for a character; hardly any text has one.
constexpr std::array<bool, 256> kMayBeEscaped = [] {
  std::array<bool, 256> table{};
  for (const char character : {'&', '<', '>', '"', '\r', '\n', '\t'}) {
    table[static_cast<unsigned char>(character)] = true;
  }
  return table;
}();

template <typename Out>
void WriteText(std::string_view text, Place place, XmlStyle style, Out* out) {
  std::size_t written = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!kMayBeEscaped[static_cast<unsigned char>(text[i])]) continue;
    const std::string_view escape = Escape(text[i], place, style);
    if (escape.empty()) continue;
    out->Put(text.substr(written, i - written));
    out->Put(escape);
    written = i + 1;
  }
  out->Put(text.substr(written));
}

bool HasContent(const XmlNode& node) {
  return node.FirstChild() != nullptr || !node.Text().empty();
}

template <typename Out>
void WriteAttributes(const XmlNode::Attributes& attributes, XmlStyle style, Out* out) {
  for (const auto& [name, value] : attributes) {
    out->Put(" ");
    out->Put(name);
    out->Put("=\"");
    WriteText(value, Place::kAttribute, style, out);
    out->Put("\"");
  }
}

template <typename Out>
void WriteStartTag(const XmlNode& node, XmlStyle style, Out* out) {
  const std::string_view tag = node.StartTag();
  const XmlNode::Attributes* const attributes = node.GetAttributes();
  if (attributes == nullptr && HasContent(node)) {
    out->Put(tag);
  } else {
    out->Put(tag.substr(0, tag.size() - 1));
    if (attributes != nullptr) WriteAttributes(*attributes, style, out);
    out->Put(HasContent(node) ? ">" : "/>");
  }
  WriteText(node.Text(), Place::kText, style, out);
}

template <typename Out>
void WriteEndTag(const XmlNode& node, Out* out) {
  if (HasContent(node)) out->Put(node.EndTag());
}

template <typename Out>
void WriteTree(const XmlNode& root, XmlStyle style, Out* out) {
  const XmlNode* at = &root;
  while (true) {
    WriteStartTag(*at, style, out);
    if (const XmlNode* child = at->FirstChild()) {
      at = child;
      continue;
    }
    WriteEndTag(*at, out);
    while (at != &root && at->NextSibling() == nullptr) {
      at = at->Parent();
      WriteEndTag(*at, out);
    }
    if (at == &root) return;
    at = at->NextSibling();
  }
}

}  // namespace

std::string WriteXml(const VxXML::INode& node, XmlStyle style) {
  const auto& root = static_cast<const XmlNode&>(node);
  Count count;
  WriteTree(root, style, &count);
  Pieces pieces(count.Size());
  WriteTree(root, style, &pieces);
  return pieces.Take();
}

}  // namespace vx
