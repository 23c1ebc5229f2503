#pragma once

#include <string>

#include "host/Export.h"
#include "host/VxXml.h"

namespace vx {

/// How an element is written.
enum class XmlStyle {
  /// Parsing it gives an equal tree: line ends that a parser would fold are written as references.
  kLossless,
  /// For transcripts: only `&`, `<` and `>` are escaped in text, everything else stands as it is.
  kTranscript,
};

/// The element and all below it, compact, without a declaration; `<name/>` where there is no
/// content. Needs no stack in the depth of the tree.
VX_API std::string WriteXml(const VxXML::INode& node, XmlStyle style);

/// Why the last `CreateXmlDocument` on this thread answered null: "line 3, column 7: not
/// well-formed", for example. Empty after a success.
VX_API const std::string& LastXmlError();

}  // namespace vx
