#include "framework/XmlNode.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>

#include "framework/NodePool.h"
#include "framework/XmlText.h"

namespace vx {
namespace {

constexpr std::string_view kWhiteSpace = " \t\r\n";

template <typename T>
std::string_view Decimal(T value, char (&buffer)[24]) {
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return {buffer, static_cast<std::size_t>(result.ptr - buffer)};
}

}  // namespace

long ToLong(std::string_view text) { return std::strtol(std::string(text).c_str(), nullptr, 10); }

unsigned long ToUnsignedLong(std::string_view text) {
  return std::strtoul(std::string(text).c_str(), nullptr, 10);
}

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VX_NODES_FROM_HEAP
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define VX_NODES_FROM_HEAP
#endif

#if defined(VX_NODES_FROM_HEAP)
// Each node from the heap, so that the sanitizer sees what is used after its end and what is
// leaked.
void* XmlNode::operator new(std::size_t size) { return ::operator new(size); }
void XmlNode::operator delete(void* node) { ::operator delete(node); }
#else
namespace {

NodePool& Nodes() {
  static NodePool* const pool = new NodePool(sizeof(XmlNode));  // never destroyed, like the names
  return *pool;
}

}  // namespace

void* XmlNode::operator new(std::size_t) { return Nodes().Take(); }
void XmlNode::operator delete(void* node) { Nodes().Return(node); }
#endif

XmlNode::XmlNode(std::string_view name, std::string_view text)
    : references_(1), content_(0), name_(NamePool::Take(name)), inline_{} {
  SetOnlyText(text);
}

XmlNode::~XmlNode() {
  DropContent();
  NamePool::Return(name_);
}

// Frees what the node holds beside itself; it has no content then.
void XmlNode::DropContent() {
  if (content_ == kLongText) delete[] long_.begin;
  if (content_ == kRich) delete rich_;
  content_ = 0;
}

// For a node that has no children or attributes.
void XmlNode::SetOnlyText(std::string_view text) {
  if (text.size() <= kInlineSize) {
    DropContent();
    std::copy(text.begin(), text.end(), inline_);
    content_ = static_cast<std::uint32_t>(text.size()) & kContentMask;
    return;
  }
  char* const copy = new char[text.size()];
  std::memcpy(copy, text.data(), text.size());
  DropContent();
  long_ = {copy, text.size()};
  content_ = kLongText;
}

void XmlNode::SetText(std::string_view text) {
  if (content_ < kChildren) return SetOnlyText(text);
  if (content_ == kRich || !text.empty()) MakeRich().text = text;
}

XmlNode::Rich& XmlNode::MakeRich() {
  if (content_ == kRich) return *rich_;
  auto* const rich = new Rich{std::string(Text()), {}, LastChild()};
  DropContent();
  rich_ = rich;
  content_ = kRich;
  return *rich;
}

void XmlNode::SetAttributes(Attributes attributes) {
  if (content_ == kRich || !attributes.empty()) MakeRich().attributes = std::move(attributes);
}

void XmlNode::SetLastChild(XmlNode* last) {
  if (content_ == 0 || content_ == kChildren) {
    last_ = last;
    content_ = last == nullptr ? 0 : kChildren;
  } else {
    MakeRich().last = last;
  }
}

// Takes the children off and chains those that nobody else holds to `doomed`.
void XmlNode::DropChildren(XmlNode** doomed) {
  XmlNode* const last = LastChild();
  if (last == nullptr) return;
  SetLastChild(nullptr);
  XmlNode* next = last->next_;
  XmlNode* child = nullptr;
  do {
    child = next;
    next = child->next_;
    child->parent_ = nullptr;
    child->next_ = nullptr;
    if (--child->references_ != 0) continue;
    child->next_ = *doomed;
    *doomed = child;
  } while (child != last);
}

void XmlNode::Release() {
  if (--references_ != 0) return;
  XmlNode* doomed = nullptr;
  DropChildren(&doomed);
  delete this;
  while (XmlNode* node = doomed) {
    doomed = node->next_;
    node->DropChildren(&doomed);
    delete node;
  }
}

void XmlNode::Link(XmlNode& child) {
  XmlNode* const last = LastChild();
  SetLastChild(&child);
  child.parent_ = this;
  child.next_ = last == nullptr ? &child : last->next_;
  if (last != nullptr) last->next_ = &child;
}

void XmlNode::Unlink(XmlNode& child) {
  XmlNode* const last = LastChild();
  XmlNode* before = last;
  while (before->next_ != &child) before = before->next_;
  before->next_ = child.next_;
  if (last == &child) SetLastChild(before == &child ? nullptr : before);
  child.parent_ = nullptr;
  child.next_ = nullptr;
}

int XmlNode::GetInt() const { return static_cast<int>(ToLong(Text())); }

unsigned long XmlNode::GetUnsigned() const { return ToUnsignedLong(Text()); }

bool XmlNode::IsEmpty() const {
  return LastChild() == nullptr && Text().find_first_not_of(kWhiteSpace) == std::string_view::npos;
}

XmlNode* XmlNode::Find(std::string_view name) const {
  XmlNode* child = FirstChild();
  while (child != nullptr && !child->IsNamed(name)) child = child->NextSibling();
  return child;
}

std::string XmlNode::GetText(std::string_view name) const {
  const XmlNode* child = Find(name);
  return child == nullptr ? std::string() : child->GetText();
}

int XmlNode::GetInt(std::string_view name) const {
  const XmlNode* child = Find(name);
  return child == nullptr ? 0 : child->GetInt();
}

unsigned long XmlNode::GetUnsigned(std::string_view name) const {
  const XmlNode* child = Find(name);
  return child == nullptr ? 0 : child->GetUnsigned();
}

int XmlNode::GetIntOrAttribute(std::string_view name) const {
  if (const XmlNode* child = Find(name)) return child->GetInt();
  const Attributes* const attributes = GetAttributes();
  if (attributes == nullptr) return 0;
  const auto found =
      std::find_if(attributes->begin(), attributes->end(),
                   [name](const auto& attribute) { return attribute.first == name; });
  return found == attributes->end() ? 0 : static_cast<int>(ToLong(found->second));
}

void XmlNode::AddChild(INode& node) {
  auto& child = static_cast<XmlNode&>(node);
  for (const XmlNode* above = this; above != nullptr; above = above->parent_) {
    if (above == &child) return;
  }
  if (child.parent_ != nullptr) {
    child.parent_->Unlink(child);  // its reference becomes ours
  } else {
    child.AddRef();
  }
  Link(child);
}

XmlNode& XmlNode::Append(std::string_view name, std::string_view text) {
  auto* child = new XmlNode(name, text);
  Link(*child);
  return *child;
}

void XmlNode::AddText(std::string_view name, std::string_view value) { Append(name, value); }

void XmlNode::AddInt(std::string_view name, long value) {
  char buffer[24];
  Append(name, Decimal(value, buffer));
}

void XmlNode::AddUnsigned(std::string_view name, unsigned long value) {
  char buffer[24];
  Append(name, Decimal(value, buffer));
}

std::string XmlNode::ToString() const { return WriteXml(*this, XmlStyle::kLossless); }

}  // namespace vx

namespace VxXML {

vx::auto_com<INode> CreateXmlNode(std::string_view name, std::string_view value) {
  return vx::auto_com<INode>(new vx::XmlNode(name, value));
}

}  // namespace VxXML

namespace XmlHelper {

VxXML::INode& AddChild(VxXML::INode& parent, const char* name, const char* value) {
  return static_cast<vx::XmlNode&>(parent).Append(name, value);
}

}  // namespace XmlHelper
