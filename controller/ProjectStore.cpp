#include "controller/ProjectStore.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include "controller/Failure.h"
#include "controller/Printable.h"
#include "controller/ProjectSchema.h"
#include "controller/http/TokenSchema.h"

namespace controller {

namespace {

constexpr int kBusyMilliseconds = 1000;
constexpr std::string_view kSqliteMagic("SQLite format 3\0", 16);

[[noreturn]] void RefuseFile(const std::filesystem::path& file, const std::string& why) {
  throw Failure("project " + Quoted(file.string()) + ": " + why);
}

/// Creates an empty file that nobody else may read: SQLite itself would let everybody.
void CreateFile(const std::filesystem::path& file) {
  const int fd = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (fd < 0) RefuseFile(file, "cannot be created: " + std::string(std::strerror(errno)));
  ::close(fd);
}

/// Looks at the file before SQLite does: at what kind of file it is (opening a pipe would wait for
/// ever) and at its first bytes. Answers its name, which is what SQLite is to open.
std::string Inspect(const std::filesystem::path& file, ProjectStore::Use use) {
  struct stat found {};
  if (::stat(file.c_str(), &found) != 0) {
    if (errno != ENOENT) RefuseFile(file, std::strerror(errno));
    if (use == ProjectStore::Use::kLook) RefuseFile(file, "there is no such file; check --project");
    CreateFile(file);
    return file.string();
  }
  if (!S_ISREG(found.st_mode)) RefuseFile(file, "is no file; give another --project");
  if (found.st_size == 0) return file.string();
  std::array<char, kSqliteMagic.size()> head{};
  const int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) RefuseFile(file, std::strerror(errno));
  const ssize_t size = ::read(fd, head.data(), head.size());
  ::close(fd);
  if (size < 0 || std::string_view(head.data(), static_cast<std::size_t>(size)) != kSqliteMagic) {
    RefuseFile(file, "is no project; it was left as it is. Give another --project");
  }
  return file.string();
}

std::string NewProjectId() {
  std::array<unsigned char, 16> bytes{};
  if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
    throw Failure("the system gives no random numbers: " + std::string(std::strerror(errno)));
  }
  std::string id;
  for (const unsigned char byte : bytes) {
    std::array<char, 3> text{};
    std::snprintf(text.data(), text.size(), "%02x", byte);
    id += text.data();
  }
  return id;
}

}  // namespace

ProjectStore::ProjectStore(const std::filesystem::path& file, Use use)
    : use_(use), database_(Inspect(file, use), SqliteDatabase::Mode::kExisting, kBusyMilliseconds) {
  const bool empty = database_.Number("PRAGMA page_count") == 0;
  if (!empty) Check();
  if (use == Use::kLook) {
    if (empty) RefuseFile(file, "is empty; check --project");
    return;
  }
  if (sqlite3_db_readonly(database_.Handle(), "main") != 0) {
    RefuseFile(file, "may not be written; check its permissions, or give another --project");
  }
  // The file of the rollback journal stays while this is open, and a transaction ends by writing
  // over its head: making and removing the file would cost two more flushes of the folder, each as
  // long as all else that a change needs.
  database_.Text("PRAGMA journal_mode = PERSIST");
  database_.Number("PRAGMA journal_size_limit = 16777216");
  // FULL makes the end of a transaction durable; EXTRA does where the file had to be removed all
  // the same. Without it a power cut could take back a change that was reported as saved.
  database_.Execute("PRAGMA synchronous = EXTRA");
  empty ? Create() : Upgrade();
}

ProjectStore::~ProjectStore() {
  if (use_ == Use::kLook) return;
  // So that nothing lies beside a project that is not in use. Where that fails it does no harm.
  sqlite3_exec(database_.Handle(), "PRAGMA journal_mode = DELETE", nullptr, nullptr, nullptr);
}

void ProjectStore::Create() {
  SqliteTransaction transaction(database_);
  database_.Execute(kProjectSchema1);
  database_.Execute(kProjectSchema2);
  database_.Execute(kTokenSchema);
  SqliteStatement insert(database_,
                         "INSERT INTO setting (name, value) VALUES "
                         "('project_id', ?1), ('created', ?2)");
  insert.Bind(1, NewProjectId()).Bind(2, std::to_string(std::time(nullptr))).Step();
  transaction.Commit();
  isNew_ = true;
}

void ProjectStore::Upgrade() {
  if (database_.Number("PRAGMA user_version") >= kProjectSchemaVersion) return;
  SqliteTransaction transaction(database_);
  database_.Execute(kProjectSchema2);
  database_.Execute(kTokenSchema);
  transaction.Commit();
}

void ProjectStore::Check() {
  const auto application = database_.Number("PRAGMA application_id");
  const auto version = database_.Number("PRAGMA user_version");
  if (application != kProjectApplicationId) Refuse("is another program's database");
  if (version > kProjectSchemaVersion) {
    Refuse("was written by a newer vexalink (format " + std::to_string(version) +
           ", this one reads " + std::to_string(kProjectSchemaVersion) + ")");
  }
  if (version < 1) Refuse("has no valid format number (" + std::to_string(version) + ")");
  const std::string damage = database_.Text("PRAGMA quick_check(1)");
  if (damage != "ok") Refuse("is damaged (" + Printable(damage, 200) + ")");
  // Whoever changed the tables did not change the number: better told now than in mid-run.
  SqliteStatement(database_, "SELECT name, value FROM setting").Step();
  SqliteStatement(database_, "SELECT driver, xml, saved FROM driver_state").Step();
  SqliteStatement(database_, "SELECT id, driver, xml, saved, reason FROM driver_state_backup")
      .Step();
  if (version >= 2) {
    SqliteStatement(database_, "SELECT event, body FROM programming").Step();
    SqliteStatement(database_, "SELECT event, date, planned, outcome FROM decision").Step();
    SqliteStatement(database_, "SELECT id, at, kind, after FROM journal").Step();
  }
  if (!Setting("project_id")) Refuse("is damaged (it has no project_id)");
}

void ProjectStore::Refuse(const std::string& why) {
  RefuseFile(database_.Path(), why +
                                   "; it was left as it is. Put a copy back, install the vexalink "
                                   "that wrote it, or give another --project");
}

std::string ProjectStore::ProjectId() { return Setting("project_id").value_or(""); }

}  // namespace controller
