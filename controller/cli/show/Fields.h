#pragma once

#include <string>
#include <utility>
#include <vector>

#include "controller/cli/show/Terminal.h"

namespace controller::cli {

/// Names and what they say, one a line, below each other. Made printable.
class Fields {
 public:
  void Add(const std::string& name, const std::string& value, Style style = Style::kPlain);
  void Write(const Terminal& terminal) const;

 private:
  struct Field {
    std::string name;
    std::string value;
    Style style;
  };
  std::vector<Field> fields_;
};

}  // namespace controller::cli
