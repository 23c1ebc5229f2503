#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "controller/EventElement.h"

namespace controller {

/// One row of the journal. Names are those of docs/api.md; texts that do not apply are empty.
struct JournalRow {
  /// Counts up from 1, never given twice.
  std::int64_t id = 0;
  std::time_t at = 0;
  /// "fired", "held", "missed", "action", "change", "clock", "controller"
  std::string kind;
  /// 0: none.
  unsigned long event = 0;
  std::string description;
  /// The civil day of the occurrence.
  std::optional<DayFields> date;
  std::optional<std::time_t> planned;
  /// The random part in minutes, where it is known.
  std::optional<long> drawn;
  std::string reason;
  std::string actor;
  /// Of an action.
  std::string outcome;
  std::string text;
  /// JSON texts: the event, or what else was changed, before and after.
  std::string before;
  std::string after;
};

/// Which rows are wanted, the newest first.
struct JournalQuery {
  std::vector<std::string> kinds;
  std::optional<unsigned long> event;
  std::optional<std::time_t> from;
  /// Exclusive.
  std::optional<std::time_t> to;
  /// Part of the description or of the text, whatever the case (ASCII).
  std::string containing;
  /// Rows before this one.
  std::optional<std::int64_t> before;
  std::size_t limit = 100;
};

}  // namespace controller
