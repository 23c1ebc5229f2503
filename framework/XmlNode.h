#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "framework/NamePool.h"
#include "host/VxXml.h"

namespace vx {

/// The one implementation of `VxXML::INode`: a tree of counted nodes linked among themselves. A
/// parent holds one reference to each child. Destroying a tree needs no stack in its depth.
///
/// Small, because a state of a hundred thousand events is a few million of them: most elements have
/// either a short text or children, which share one place, and what is rare (attributes, text
/// beside children) lies elsewhere.
class XmlNode final : public VxXML::INode {
 public:
  using Attributes = std::vector<std::pair<std::string, std::string>>;

  XmlNode(std::string_view name, std::string_view text);
  static void* operator new(std::size_t size);
  static void operator delete(void* node);
  XmlNode(const XmlNode&) = delete;
  XmlNode& operator=(const XmlNode&) = delete;

  void AddRef() override { ++references_; }
  void Release() override;

  std::string_view GetName() const override { return NamePool::Text(name_); }
  bool IsNamed(std::string_view name) const override { return GetName() == name; }
  std::string GetText() const override { return std::string(Text()); }
  int GetInt() const override;
  unsigned long GetUnsigned() const override;
  bool IsEmpty() const override;
  INode* GetChild(std::string_view name) const override { return Find(name); }
  INode* GetFirstChild() const override { return FirstChild(); }
  INode* GetNextSibling() const override { return NextSibling(); }
  std::string GetText(std::string_view name) const override;
  int GetInt(std::string_view name) const override;
  unsigned long GetUnsigned(std::string_view name) const override;
  int GetIntOrAttribute(std::string_view name) const override;
  void AddChild(INode& child) override;
  void AddText(std::string_view name, std::string_view value) override;
  void AddInt(std::string_view name, long value) override;
  void AddUnsigned(std::string_view name, unsigned long value) override;
  std::string ToString() const override;

  /// Appends a new child and returns it; it stays this node's.
  XmlNode& Append(std::string_view name, std::string_view text);

  std::string_view Text() const {
    if (content_ <= kInlineSize) return {inline_, content_};
    if (content_ == kLongText) return {long_.begin, long_.size};
    return content_ == kRich ? std::string_view(rich_->text) : std::string_view();
  }
  void SetText(std::string_view text);
  void SetAttributes(Attributes attributes);
  /// Null where there are none.
  const Attributes* GetAttributes() const {
    return content_ == kRich && !rich_->attributes.empty() ? &rich_->attributes : nullptr;
  }
  /// "<name>" and "</name>".
  std::string_view StartTag() const { return NamePool::StartTag(name_); }
  std::string_view EndTag() const { return NamePool::EndTag(name_); }

  XmlNode* FirstChild() const {
    XmlNode* const last = LastChild();
    return last == nullptr ? nullptr : last->next_;
  }
  XmlNode* NextSibling() const {
    return parent_ == nullptr || parent_->LastChild() == this ? nullptr : next_;
  }
  XmlNode* Parent() const { return parent_; }

 private:
  static constexpr std::uint32_t kInlineSize = 16;
  // What `content_` says beyond the sizes 0 to kInlineSize of a text that lies in the node.
  static constexpr std::uint32_t kLongText = 29;
  static constexpr std::uint32_t kChildren = 30;
  static constexpr std::uint32_t kRich = 31;
  static constexpr std::uint32_t kContentMask = 31;

  struct LongText {
    char* begin;
    std::size_t size;
  };
  struct Rich {
    std::string text;
    Attributes attributes;
    XmlNode* last = nullptr;
  };

  ~XmlNode();
  XmlNode* LastChild() const {
    return content_ == kChildren ? last_ : content_ == kRich ? rich_->last : nullptr;
  }
  void SetLastChild(XmlNode* last);
  Rich& MakeRich();
  void SetOnlyText(std::string_view text);
  void DropContent();
  XmlNode* Find(std::string_view name) const;
  void Link(XmlNode& child);
  void Unlink(XmlNode& child);
  void DropChildren(XmlNode** doomed);

  XmlNode* parent_ = nullptr;
  XmlNode* next_ = nullptr;        // the last child's leads to the first
  std::uint32_t references_ : 27;  // more holders than memory has room for
  std::uint32_t content_ : 5;
  NamePool::Number name_;
  union {
    char inline_[kInlineSize];
    LongText long_;
    XmlNode* last_;  // child; none where it is null
    Rich* rich_;
  };
};

/// The number at the start of a text, as `strtol` and `strtoul` read it in base 10.
long ToLong(std::string_view text);
unsigned long ToUnsignedLong(std::string_view text);

}  // namespace vx
