// Parsing: expat's callbacks build our nodes.

#include <expat.h>
#include <memory>
#include <vector>

#include "framework/XmlNode.h"
#include "framework/XmlText.h"

namespace vx {
namespace {

constexpr std::size_t kMostBytes = std::size_t{256} * 1024 * 1024;
constexpr std::size_t kMostLevels = 256;

thread_local std::string lastError;

class XmlDocument final : public VxXML::IDocument {
 public:
  explicit XmlDocument(auto_com<VxXML::INode> root) : root_(std::move(root)) {}
  void AddRef() override { ++references_; }
  void Release() override {
    if (--references_ == 0) delete this;
  }
  VxXML::INode* GetRoot() const override { return root_.get(); }

 private:
  ~XmlDocument() = default;

  auto_com<VxXML::INode> root_;
  unsigned long references_ = 1;
};

// Builds the tree of one text. The text of the elements that are open is gathered in one buffer and
// set when each ends.
class TreeBuilder {
 public:
  explicit TreeBuilder(XML_Parser parser) : parser_(parser) {
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, OnStart, OnEnd);
    XML_SetCharacterDataHandler(parser, OnText);
    XML_SetStartDoctypeDeclHandler(parser, OnDoctype);
  }

  auto_com<VxXML::INode> TakeRoot() { return std::move(root_); }
  /// Why the builder itself stopped; null where the parser did.
  const char* Refusal() const { return refusal_; }

 private:
  struct Open {
    XmlNode* node;
    std::string text;
  };

  static void OnStart(void* self, const XML_Char* name, const XML_Char** attributes) {
    static_cast<TreeBuilder*>(self)->Start(name, attributes);
  }
  static void OnEnd(void* self, const XML_Char*) { static_cast<TreeBuilder*>(self)->End(); }
  static void OnText(void* self, const XML_Char* text, int size) {
    auto& builder = *static_cast<TreeBuilder*>(self);
    builder.open_[builder.depth_ - 1].text.append(text, static_cast<std::size_t>(size));
  }
  static void OnDoctype(void* self, const XML_Char*, const XML_Char*, const XML_Char*, int) {
    static_cast<TreeBuilder*>(self)->Refuse("a document type declaration is not accepted");
  }

  void Start(const XML_Char* name, const XML_Char** attributes) {
    if (depth_ == kMostLevels) {
      Refuse("elements are nested deeper than 256 levels");
      return;
    }
    XmlNode* node = nullptr;
    if (depth_ == 0) {
      node = new XmlNode(name, {});
      root_ = auto_com<VxXML::INode>(node);
    } else {
      node = &open_[depth_ - 1].node->Append(name, {});
    }
    if (attributes[0] != nullptr) node->SetAttributes(Attributes(attributes));
    if (open_.size() == depth_) open_.emplace_back();
    open_[depth_].node = node;
    open_[depth_].text.clear();
    ++depth_;
  }

  void End() {
    --depth_;
    open_[depth_].node->SetText(open_[depth_].text);
  }

  static XmlNode::Attributes Attributes(const XML_Char** pairs) {
    XmlNode::Attributes attributes;
    for (; pairs[0] != nullptr; pairs += 2) attributes.emplace_back(pairs[0], pairs[1]);
    return attributes;
  }

  void Refuse(const char* why) {
    refusal_ = why;
    XML_StopParser(parser_, XML_FALSE);
  }

  XML_Parser parser_;
  auto_com<VxXML::INode> root_;
  std::vector<Open> open_;  // the first depth_ are in use; the others keep their buffers
  std::size_t depth_ = 0;
  const char* refusal_ = nullptr;
};

std::string Position(XML_Parser parser) {
  return "line " + std::to_string(XML_GetCurrentLineNumber(parser)) + ", column " +
         std::to_string(XML_GetCurrentColumnNumber(parser) + 1) + ": ";
}

struct ParserDeleter {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};
using ParserPtr = std::unique_ptr<std::remove_pointer_t<XML_Parser>, ParserDeleter>;

// What is refused before a parser sees it; null where nothing is. Expat would take a NUL or such a
// mark as a sign of UTF-16.
const char* RefuseUnparsed(std::string_view text) {
  if (text.size() > kMostBytes) return "larger than 256 MiB";
  if (text.find('\0') != std::string_view::npos) return "holds a NUL";
  if (text.starts_with("\xFE\xFF") || text.starts_with("\xFF\xFE")) return "not UTF-8";
  return nullptr;
}

auto_com<VxXML::INode> Parse(std::string_view text) {
  if (const char* why = RefuseUnparsed(text)) {
    lastError = why;
    return nullptr;
  }
  // Texts are UTF-8 whatever their declaration says: they come as strings, not as files.
  const ParserPtr parser(XML_ParserCreate("UTF-8"));
  if (!parser) throw std::bad_alloc();
  TreeBuilder builder(parser.get());
  const XML_Status status =
      XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), XML_TRUE);
  if (status == XML_STATUS_OK) {
    lastError.clear();
    return builder.TakeRoot();
  }
  const char* why = builder.Refusal() != nullptr ? builder.Refusal()
                                                 : XML_ErrorString(XML_GetErrorCode(parser.get()));
  lastError = Position(parser.get()) + why;
  return nullptr;
}

}  // namespace

const std::string& LastXmlError() { return lastError; }

}  // namespace vx

namespace VxXML {

vx::auto_com<IDocument> CreateXmlDocument(std::string_view text) {
  vx::auto_com<INode> root = vx::Parse(text);
  if (!root) return nullptr;
  return vx::auto_com<IDocument>(new vx::XmlDocument(std::move(root)));
}

}  // namespace VxXML
