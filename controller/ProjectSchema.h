#pragma once

namespace controller {

/// Marks the file as a project of this program: "VXLK", in the header field that SQLite reserves
/// for it.
constexpr long kProjectApplicationId = 0x56584C4B;

/// The version of the tables below. A change of them is a new number and a step that leads from the
/// one before to it.
constexpr long kProjectSchemaVersion = 2;

/// The first version's tables.
constexpr const char* kProjectSchema1 = R"sql(
PRAGMA application_id = 0x56584C4B;
PRAGMA user_version = 1;
CREATE TABLE setting (
  name TEXT PRIMARY KEY,
  value TEXT NOT NULL
) STRICT, WITHOUT ROWID;
-- What GetPersistState answered, one row a driver.
CREATE TABLE driver_state (
  driver TEXT PRIMARY KEY,
  xml TEXT NOT NULL,
  saved INTEGER NOT NULL  -- seconds since the epoch
) STRICT;
-- States that were replaced by an import, or put aside before something of them was lost.
CREATE TABLE driver_state_backup (
  id INTEGER PRIMARY KEY,
  driver TEXT NOT NULL,
  xml TEXT NOT NULL,
  saved INTEGER NOT NULL,
  reason TEXT NOT NULL
) STRICT;
)sql";

/// What the second version adds.
constexpr const char* kProjectSchema2 = R"sql(
PRAGMA user_version = 2;
-- What an event does when it fires; events without a row do nothing.
CREATE TABLE programming (
  event INTEGER PRIMARY KEY,
  body TEXT NOT NULL  -- JSON
) STRICT;
-- What became of each occurrence. An occurrence that was acted on is never acted on again.
CREATE TABLE decision (
  event INTEGER NOT NULL,
  date INTEGER NOT NULL,     -- the civil day, 20261121
  planned INTEGER NOT NULL,  -- seconds since the epoch
  outcome TEXT NOT NULL,     -- fired, held, missed
  PRIMARY KEY (event, date, planned)
) STRICT, WITHOUT ROWID;
CREATE INDEX decision_date ON decision (date);
CREATE TABLE journal (
  id INTEGER PRIMARY KEY,
  at INTEGER NOT NULL,
  kind TEXT NOT NULL,
  event INTEGER,
  description TEXT NOT NULL,
  date INTEGER,
  planned INTEGER,
  drawn INTEGER,
  reason TEXT NOT NULL,
  actor TEXT NOT NULL,
  outcome TEXT NOT NULL,
  text TEXT NOT NULL,
  before TEXT NOT NULL,
  after TEXT NOT NULL
) STRICT;
CREATE INDEX journal_at ON journal (at);
CREATE INDEX journal_event ON journal (event, id);
-- Events that were deleted, the latest of each id, so that they can be brought back.
CREATE TABLE deleted_event (
  event INTEGER PRIMARY KEY,
  at INTEGER NOT NULL,
  xml TEXT NOT NULL,
  programming TEXT NOT NULL  -- JSON
) STRICT;
)sql";

}  // namespace controller
