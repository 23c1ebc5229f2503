#include "controller/Sqlite.h"

#include "controller/Failure.h"
#include "controller/Printable.h"

namespace controller {

namespace {

/// Whether the file is no longer the one of its name. What SQLite answers then depends on where it
/// noticed.
bool HasMoved(sqlite3* handle) {
  int moved = 0;
  sqlite3_file_control(handle, "main", SQLITE_FCNTL_HAS_MOVED, &moved);
  return moved != 0;
}

std::string Explanation(sqlite3* handle, int code) {
  if (handle == nullptr) return "out of memory";
  const int extended = sqlite3_extended_errcode(handle);
  if (HasMoved(handle)) return "the file was moved or deleted while it was in use; put it back";
  switch (extended) {
    case SQLITE_READONLY_DIRECTORY:
    case SQLITE_CANTOPEN:
      return "its folder cannot be written or the file cannot be opened; check the permissions";
    default:
      break;
  }
  switch (code & 0xFF) {
    case SQLITE_BUSY:
      return "another process holds it; try again when that has ended";
    case SQLITE_READONLY:
      return "it may not be written; check the permissions";
    case SQLITE_FULL:
      return "the disk is full";
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
      return std::string("it is damaged (") + sqlite3_errmsg(handle) +
             "); it was left as it is. Put a copy back, or give another --project";
    default:
      return sqlite3_errmsg(handle);
  }
}

}  // namespace

SqliteDatabase::SqliteDatabase(const std::string& path, Mode mode, int busyMilliseconds)
    : path_(path) {
  // "./" keeps a relative name from being one of SQLite's own.
  const std::string name = path.starts_with('/') ? path : "./" + path;
  const int create = mode == Mode::kCreate ? SQLITE_OPEN_CREATE : 0;
  sqlite3* handle = nullptr;
  const int code = sqlite3_open_v2(name.c_str(), &handle, SQLITE_OPEN_READWRITE | create, nullptr);
  handle_.reset(handle);
  if (code != SQLITE_OK) Fail(code);
  sqlite3_extended_result_codes(handle, 1);
  sqlite3_busy_timeout(handle, busyMilliseconds);
  // The file may come from anywhere: nothing that is stored in it is to be executed.
  sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
  sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
}

void SqliteDatabase::Execute(const char* sql) {
  const int code = sqlite3_exec(Handle(), sql, nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) Fail(code);
}

std::int64_t SqliteDatabase::Number(const char* sql) {
  SqliteStatement statement(*this, sql);
  return statement.Step() ? statement.NumberAt(0) : 0;
}

std::string SqliteDatabase::Text(const char* sql) {
  SqliteStatement statement(*this, sql);
  return statement.Step() ? statement.TextAt(0) : "";
}

void SqliteDatabase::Fail(int code) const {
  throw Failure("project " + Quoted(path_) + ": " + Explanation(Handle(), code));
}

SqliteStatement::SqliteStatement(SqliteDatabase& database, const char* sql) : database_(database) {
  sqlite3_stmt* statement = nullptr;
  const int code = sqlite3_prepare_v2(database.Handle(), sql, -1, &statement, nullptr);
  statement_.reset(statement);
  if (code != SQLITE_OK) database.Fail(code);
}

SqliteStatement& SqliteStatement::Bind(int index, std::string_view text) {
  // A null pointer would bind NULL instead of the empty text.
  const char* bytes = text.data() == nullptr ? "" : text.data();
  const int code = sqlite3_bind_text64(statement_.get(), index, bytes, text.size(),
                                       SQLITE_TRANSIENT, SQLITE_UTF8);
  if (code != SQLITE_OK) database_.Fail(code);
  return *this;
}

SqliteStatement& SqliteStatement::Bind(int index, std::int64_t number) {
  const int code = sqlite3_bind_int64(statement_.get(), index, number);
  if (code != SQLITE_OK) database_.Fail(code);
  return *this;
}

SqliteStatement& SqliteStatement::BindNull(int index) {
  const int code = sqlite3_bind_null(statement_.get(), index);
  if (code != SQLITE_OK) database_.Fail(code);
  return *this;
}

bool SqliteStatement::Step() {
  const int code = sqlite3_step(statement_.get());
  if (code != SQLITE_ROW && code != SQLITE_DONE) database_.Fail(code);
  return code == SQLITE_ROW;
}

std::string SqliteStatement::TextAt(int column) const {
  const void* bytes = sqlite3_column_blob(statement_.get(), column);
  const int size = sqlite3_column_bytes(statement_.get(), column);
  if (bytes == nullptr) return {};
  return {static_cast<const char*>(bytes), static_cast<std::size_t>(size)};
}

std::int64_t SqliteStatement::NumberAt(int column) const {
  return sqlite3_column_int64(statement_.get(), column);
}

bool SqliteStatement::IsNullAt(int column) const {
  return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL;
}

SqliteTransaction::SqliteTransaction(SqliteDatabase& database)
    : database_(database), open_(sqlite3_get_autocommit(database.Handle()) != 0) {
  if (open_) database_.Execute("BEGIN IMMEDIATE");
}

SqliteTransaction::~SqliteTransaction() {
  // Where the failure itself has ended the transaction this answers an error, which is all right.
  if (open_) sqlite3_exec(database_.Handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void SqliteTransaction::Commit() {
  if (!open_) return;
  database_.Execute("COMMIT");
  open_ = false;
}

}  // namespace controller
