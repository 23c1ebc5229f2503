#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

namespace controller::cli {

enum class Style { kPlain, kBold, kDim, kGood, kBad, kWarning };

/// Where a command writes what it has found out.
struct Terminal {
  std::ostream& out;
  /// Columns; 0 where what is written goes elsewhere than to a terminal: nothing is cut then.
  std::size_t width = 0;
  bool colors = false;
  /// Whether people read it.
  bool isTerminal = false;

  /// The text in a style, where there are colours.
  std::string Styled(std::string_view text, Style style) const;
};

/// Standard output. `color` is "auto", "always" or "never"; with "auto" a NO_COLOR in the
/// environment, or TERM=dumb, means never. COLUMNS in the environment tells a width too.
Terminal StandardOutput(const std::string& color);

}  // namespace controller::cli
