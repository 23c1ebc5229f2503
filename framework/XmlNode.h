#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/VxXml.h"

namespace vx {

/// An element's name, shared by all elements that bear it. Counted, so that a text with many
/// different names leaves nothing behind.
struct XmlName {
  std::string text;
  std::uint32_t references = 0;
};

/// The one implementation of `VxXML::INode`: a tree of counted nodes linked among themselves, small
/// because a state of a hundred thousand events is a few million of them. A parent holds one
/// reference to each child. Destroying a tree needs no stack in its depth.
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

  std::string_view GetName() const override { return name_->text; }
  bool IsNamed(std::string_view name) const override { return name_->text == name; }
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

  std::string_view Text() const { return {IsInline() ? inline_ : heap_, size_}; }
  void SetText(std::string_view text);
  void SetAttributes(Attributes attributes);
  /// Null where there are none.
  const Attributes* GetAttributes() const { return attributes_.get(); }

  XmlNode* FirstChild() const { return last_ == nullptr ? nullptr : last_->next_; }
  XmlNode* NextSibling() const {
    return parent_ == nullptr || parent_->last_ == this ? nullptr : next_;
  }
  XmlNode* Parent() const { return parent_; }

 private:
  static constexpr std::size_t kInlineSize = 16;

  ~XmlNode();
  bool IsInline() const { return size_ <= kInlineSize; }
  XmlNode* Find(std::string_view name) const;
  void Link(XmlNode& child);
  void Unlink(XmlNode& child);
  void DropChildren(XmlNode** doomed);

  std::uint32_t references_ = 1;
  std::uint32_t size_ = 0;
  XmlName* name_;
  XmlNode* parent_ = nullptr;
  XmlNode* next_ = nullptr;  // the last child's leads to the first
  XmlNode* last_ = nullptr;  // the last child
  union {
    char inline_[kInlineSize];
    char* heap_;
  };
  std::unique_ptr<Attributes> attributes_;
};

/// The number at the start of a text, as `strtol` and `strtoul` read it in base 10.
long ToLong(std::string_view text);
unsigned long ToUnsignedLong(std::string_view text);

}  // namespace vx
