#include "framework/XmlNode.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <unordered_map>

#include "framework/NodePool.h"
#include "framework/XmlText.h"

namespace vx {
namespace {

constexpr std::string_view kWhiteSpace = " \t\r\n";

// All names in use, by text. Never destroyed: nodes may outlive static objects.
class NamePool {
 public:
  static NamePool& Instance() {
    static NamePool* const pool = new NamePool;
    return *pool;
  }

  XmlName* Take(std::string_view text) {
    auto found = names_.find(text);
    if (found == names_.end()) {
      auto name = std::make_unique<XmlName>(XmlName{std::string(text), 0});
      const std::string_view key = name->text;
      found = names_.emplace(key, std::move(name)).first;
    }
    ++found->second->references;
    return found->second.get();
  }

  void Return(XmlName* name) {
    if (--name->references == 0) names_.erase(std::string_view(name->text));
  }

 private:
  std::unordered_map<std::string_view, std::unique_ptr<XmlName>> names_;
};

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
    : name_(NamePool::Instance().Take(name)), inline_{} {
  SetText(text);
}

XmlNode::~XmlNode() {
  SetText({});
  NamePool::Instance().Return(name_);
}

void XmlNode::SetText(std::string_view text) {
  char* const copy = text.size() > kInlineSize ? new char[text.size()] : nullptr;
  if (copy != nullptr) std::memcpy(copy, text.data(), text.size());
  if (!IsInline()) delete[] heap_;
  if (copy != nullptr) {
    heap_ = copy;
  } else {
    std::copy(text.begin(), text.end(), inline_);
  }
  size_ = static_cast<std::uint32_t>(text.size());
}

void XmlNode::SetAttributes(Attributes attributes) {
  attributes_ = attributes.empty() ? nullptr : std::make_unique<Attributes>(std::move(attributes));
}

// Takes the children off and chains those that nobody else holds to `doomed`.
void XmlNode::DropChildren(XmlNode** doomed) {
  while (XmlNode* child = FirstChild()) {
    Unlink(*child);
    if (--child->references_ != 0) continue;
    child->next_ = *doomed;
    *doomed = child;
  }
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
  child.parent_ = this;
  child.next_ = last_ == nullptr ? &child : last_->next_;
  if (last_ != nullptr) last_->next_ = &child;
  last_ = &child;
}

void XmlNode::Unlink(XmlNode& child) {
  XmlNode* before = last_;
  while (before->next_ != &child) before = before->next_;
  if (before == &child) {
    last_ = nullptr;
  } else {
    before->next_ = child.next_;
    if (last_ == &child) last_ = before;
  }
  child.parent_ = nullptr;
  child.next_ = nullptr;
}

int XmlNode::GetInt() const { return static_cast<int>(ToLong(Text())); }

unsigned long XmlNode::GetUnsigned() const { return ToUnsignedLong(Text()); }

bool XmlNode::IsEmpty() const {
  return last_ == nullptr && Text().find_first_not_of(kWhiteSpace) == std::string_view::npos;
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
  if (attributes_ == nullptr) return 0;
  const auto found =
      std::find_if(attributes_->begin(), attributes_->end(),
                   [name](const auto& attribute) { return attribute.first == name; });
  return found == attributes_->end() ? 0 : static_cast<int>(ToLong(found->second));
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
