#include "controller/cli/show/Fields.h"

#include <algorithm>

#include "controller/Printable.h"
#include "controller/cli/show/DisplayWidth.h"

namespace controller::cli {

void Fields::Add(const std::string& name, const std::string& value, Style style) {
  fields_.push_back({name, Printable(value), style});
}

void Fields::Write(const Terminal& terminal) const {
  std::size_t width = 0;
  for (const Field& field : fields_) width = std::max(width, DisplayWidth(field.name));
  for (const Field& field : fields_) {
    terminal.out << terminal.Styled(PadToWidth(field.name, width), Style::kBold) << "  "
                 << terminal.Styled(field.value, field.style) << '\n';
  }
}

}  // namespace controller::cli
