#pragma once

#include <cstdint>
#include <memory>
#include <sqlite3.h>
#include <string>
#include <string_view>

namespace controller {

/// One connection to an SQLite file. Every operation throws a `Failure` that names the file and
/// says what SQLite says. Statements must go before their connection.
class SqliteDatabase {
 public:
  enum class Mode { kExisting, kCreate };

  /// `path` is a file name and nothing else: SQLite's own names (":memory:", "file:...") are not
  /// understood. Waits `busyMilliseconds` for another process's transaction before giving up. A
  /// file that may not be written is opened for reading.
  SqliteDatabase(const std::string& path, Mode mode, int busyMilliseconds);

  /// Runs statements that take no values and give no rows.
  void Execute(const char* sql);
  /// The first column of the one row of a query without values.
  std::int64_t Number(const char* sql);
  std::string Text(const char* sql);

  const std::string& Path() const { return path_; }
  sqlite3* Handle() const { return handle_.get(); }
  /// Throws the last error of this connection; `code` is what the failed call answered.
  [[noreturn]] void Fail(int code) const;

 private:
  struct Close {
    void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
  };

  std::string path_;
  std::unique_ptr<sqlite3, Close> handle_;
};

/// A prepared statement with its values, counted from 1.
class SqliteStatement {
 public:
  SqliteStatement(SqliteDatabase& database, const char* sql);

  SqliteStatement& Bind(int index, std::string_view text);
  SqliteStatement& Bind(int index, std::int64_t number);
  SqliteStatement& BindNull(int index);
  /// To the next row; false when there is none.
  bool Step();
  /// A column of the present row, counted from 0.
  std::string TextAt(int column) const;
  std::int64_t NumberAt(int column) const;
  bool IsNullAt(int column) const;

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };

  SqliteDatabase& database_;
  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

/// A write transaction: begun at once, rolled back unless `Commit` has returned. One that is begun
/// inside another is part of that, and ends with it.
class SqliteTransaction {
 public:
  explicit SqliteTransaction(SqliteDatabase& database);
  ~SqliteTransaction();
  SqliteTransaction(const SqliteTransaction&) = delete;
  SqliteTransaction& operator=(const SqliteTransaction&) = delete;

  /// When it returns, the changes are on the disk.
  void Commit();

 private:
  SqliteDatabase& database_;
  bool open_;
};

}  // namespace controller
