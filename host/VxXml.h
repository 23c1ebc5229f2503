#pragma once

#include <string>
#include <string_view>

#include "host/AutoCom.h"
#include "host/Export.h"

/// XML as drivers see it: trees of reference-counted elements. An element has a name, a text of its
/// own, attributes (where it was parsed from a text that has some) and child elements. Comments,
/// processing instructions and white space between elements are no children.
///
/// Numbers are decimal text. Reading follows `strtol` and `strtoul` in base 10: leading blanks and
/// a sign are allowed, reading stops at the first character that is no digit, and no digits are 0;
/// a value beyond the type is saturated by them and then narrowed.
///
/// All of it belongs to the driver's thread.
namespace VxXML {

/// One element. Whoever holds an `auto_com` of it keeps it alive; a parent holds its children.
class VX_API INode {
 public:
  virtual void AddRef() = 0;
  virtual void Release() = 0;

  /// The element's name; lives as long as the node.
  virtual std::string_view GetName() const = 0;
  /// Whether the element's name is `name`, to the letter.
  virtual bool IsNamed(std::string_view name) const = 0;

  /// The element's own text, CDATA sections included, entities decoded, nothing trimmed and nothing
  /// of its children's; empty where there is none.
  virtual std::string GetText() const = 0;
  /// The own text as a signed number (`strtol`), 0 where it holds none.
  virtual int GetInt() const = 0;
  /// The own text as an unsigned number (`strtoul`), 0 where it holds none.
  virtual unsigned long GetUnsigned() const = 0;
  /// Whether there is no child element and no text but white space.
  virtual bool IsEmpty() const = 0;

  /// The first child with this name, or null; it stays this node's and lives as long as it is its
  /// child.
  virtual INode* GetChild(std::string_view name) const = 0;
  /// The first child element, or null.
  virtual INode* GetFirstChild() const = 0;
  /// The element that follows this one under the same parent, or null.
  virtual INode* GetNextSibling() const = 0;

  /// Named values: the text or number of the first child called `name`; the empty text or 0 where
  /// there is none.
  virtual std::string GetText(std::string_view name) const = 0;
  virtual int GetInt(std::string_view name) const = 0;
  virtual unsigned long GetUnsigned(std::string_view name) const = 0;
  /// Like `GetInt(name)`, but where no such child exists the attribute of that name is read.
  virtual int GetIntOrAttribute(std::string_view name) const = 0;

  /// Appends `child`, which is taken out of the parent it may have had; this node adds a reference
  /// of its own, the caller keeps his. Adding a node to itself or to one of its descendants does
  /// nothing.
  virtual void AddChild(INode& child) = 0;
  /// Appends a new child called `name` with this text or number.
  virtual void AddText(std::string_view name, std::string_view value) = 0;
  virtual void AddInt(std::string_view name, long value) = 0;
  virtual void AddUnsigned(std::string_view name, unsigned long value) = 0;

  /// The element as text, compact, without a declaration, such that parsing it gives an equal tree.
  virtual std::string ToString() const = 0;

 protected:
  ~INode() = default;
};

/// A parsed text. Its root lives as long as the document, or as long as somebody holds the root.
class VX_API IDocument {
 public:
  virtual void AddRef() = 0;
  virtual void Release() = 0;

  /// The root element; it stays the document's.
  virtual INode* GetRoot() const = 0;

 protected:
  ~IDocument() = default;
};

/// A new element with a text of its own (which may be empty); the caller owns the one reference.
VX_API vx::auto_com<INode> CreateXmlNode(std::string_view name, std::string_view value);

/// Parses one XML document from UTF-8 text. Null where it does not parse: not well-formed, invalid
/// UTF-8, a NUL, a document type declaration, more than 256 levels of elements or more than 256
/// MiB. Nothing outside the text is ever read. An encoding named in the text's declaration is
/// ignored.
VX_API vx::auto_com<IDocument> CreateXmlDocument(std::string_view text);

}  // namespace VxXML

namespace XmlHelper {

/// Appends a new child called `name` with the text `value` and returns it; it stays `parent`'s.
VX_API VxXML::INode& AddChild(VxXML::INode& parent, const char* name, const char* value);

}  // namespace XmlHelper
