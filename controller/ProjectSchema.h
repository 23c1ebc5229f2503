#pragma once

namespace controller {

/// Marks the file as a project of this program: "VXLK", in the header field that SQLite reserves
/// for it.
constexpr long kProjectApplicationId = 0x56584C4B;

/// The version of the tables below. A change of them is a new number and a step that leads from the
/// one before to it.
constexpr long kProjectSchemaVersion = 1;

constexpr const char* kProjectSchema = R"sql(
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

}  // namespace controller
