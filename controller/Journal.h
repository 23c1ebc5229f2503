#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "controller/EventElement.h"
#include "controller/ProjectStore.h"

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
  /// The civil day of the occurrence.
  std::optional<DayFields> date;
  std::optional<std::time_t> from;
  /// Exclusive.
  std::optional<std::time_t> to;
  /// Part of the description or of the text, whatever the case (ASCII).
  std::string containing;
  /// Rows before this one.
  std::optional<std::int64_t> before;
  std::size_t limit = 100;
};

/// What has happened in a house, kept in its project: the last 400 days, 100,000 rows at most.
class Journal {
 public:
  static constexpr long kKeptDays = 400;
  static constexpr std::int64_t kKeptRows = 100000;

  /// Finds out which number comes next.
  explicit Journal(ProjectStore& store);

  /// The number of a new row.
  std::int64_t NextId() { return ++last_; }

  /// These throw a `Failure` where the database does. A row that is there already is written over.
  static void Write(ProjectStore& store, const JournalRow& row);
  static std::vector<JournalRow> Read(ProjectStore& store, const JournalQuery& wanted);
  /// When the newest row was written.
  static std::optional<std::time_t> Newest(ProjectStore& store);
  /// Drops what is too old or too much.
  static void Prune(ProjectStore& store, std::time_t now);
  /// Drops what is too much, by the numbers of the rows, which follow one another. Cheap enough for
  /// every save.
  static void Bound(ProjectStore& store);

 private:
  std::int64_t last_;
};

}  // namespace controller
