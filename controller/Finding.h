#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace controller {

/// Something that whoever hands over a schedule ought to know.
struct Finding {
  enum class Kind {
    /// The event would be lost.
    kDropped,
    /// The event would be kept, but something of it would be another.
    kChanged,
    /// The event would be kept as it is, which may not be what was meant.
    kNote,
  };
  Kind kind = Kind::kNote;
  std::string text;
};

using Findings = std::vector<Finding>;

inline void Add(Findings& findings, Finding::Kind kind, std::string text) {
  findings.push_back({kind, std::move(text)});
}

}  // namespace controller
