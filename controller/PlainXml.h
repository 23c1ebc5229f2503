#pragma once

#include <string_view>

namespace controller {

/// Whether the text is one XML element of the plain form in which states are written: elements
/// without attributes, text in which only `&amp;`, `&lt;`, `&gt;` and `&#13;` stand for others, and
/// nothing that XML cannot hold. Any parser reads such a text. One of which this answers false may
/// be well-formed all the same: ask a parser. Takes a fraction of a parser's time.
bool IsPlainXml(std::string_view text);

}  // namespace controller
