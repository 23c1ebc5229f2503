#include "FaultyDisk.h"

#include <new>
#include <sqlite3.h>

namespace controller {

namespace {

constexpr const char* kName = "faulty-disk";

// SQLite calls plain functions, so what they share cannot be a member.
sqlite3_vfs* real = nullptr;
int countdown = 0;
bool always = false;
bool hasFailed = false;
FaultyDisk::How manner = FaultyDisk::How::kBroken;
std::string what;

/// What `FailAlways` lets fail are the calls that need room.
bool Fails(const char* call, bool needsRoom = false) {
  const bool fails = (always && needsRoom) || (countdown > 0 && --countdown == 0);
  if (!fails) return false;
  hasFailed = true;
  what = call;
  return true;
}

bool IsFull() { return manner == FaultyDisk::How::kFull; }

struct File : sqlite3_file {
  sqlite3_file* inner;
};

sqlite3_file* Inner(sqlite3_file* file) { return static_cast<File*>(file)->inner; }

int Close(sqlite3_file* file) {
  sqlite3_file* inner = Inner(file);
  return inner->pMethods == nullptr ? SQLITE_OK : inner->pMethods->xClose(inner);
}

int Read(sqlite3_file* file, void* into, int size, sqlite3_int64 at) {
  return Inner(file)->pMethods->xRead(Inner(file), into, size, at);
}

int Write(sqlite3_file* file, const void* from, int size, sqlite3_int64 at) {
  sqlite3_file* inner = Inner(file);
  if (!Fails("write", /*needsRoom=*/true)) return inner->pMethods->xWrite(inner, from, size, at);
  if (size > 1) inner->pMethods->xWrite(inner, from, size / 2, at);
  return IsFull() ? SQLITE_FULL : SQLITE_IOERR_WRITE;
}

int Truncate(sqlite3_file* file, sqlite3_int64 size) {
  if (Fails("truncate")) return SQLITE_IOERR_TRUNCATE;
  return Inner(file)->pMethods->xTruncate(Inner(file), size);
}

int Sync(sqlite3_file* file, int flags) {
  if (Fails("sync", /*needsRoom=*/true)) return IsFull() ? SQLITE_FULL : SQLITE_IOERR_FSYNC;
  return Inner(file)->pMethods->xSync(Inner(file), flags);
}

int FileSize(sqlite3_file* file, sqlite3_int64* size) {
  return Inner(file)->pMethods->xFileSize(Inner(file), size);
}

int Lock(sqlite3_file* file, int level) {
  if (Fails("lock")) return SQLITE_IOERR_LOCK;
  return Inner(file)->pMethods->xLock(Inner(file), level);
}

int Unlock(sqlite3_file* file, int level) {
  return Inner(file)->pMethods->xUnlock(Inner(file), level);
}

int CheckReservedLock(sqlite3_file* file, int* isHeld) {
  return Inner(file)->pMethods->xCheckReservedLock(Inner(file), isHeld);
}

int FileControl(sqlite3_file* file, int operation, void* argument) {
  return Inner(file)->pMethods->xFileControl(Inner(file), operation, argument);
}

int SectorSize(sqlite3_file* file) { return Inner(file)->pMethods->xSectorSize(Inner(file)); }

int Characteristics(sqlite3_file* file) {
  return Inner(file)->pMethods->xDeviceCharacteristics(Inner(file));
}

// The first version: without shared memory and mapping, which a rollback journal does not use.
const sqlite3_io_methods kMethods = {1,
                                     Close,
                                     Read,
                                     Write,
                                     Truncate,
                                     Sync,
                                     FileSize,
                                     Lock,
                                     Unlock,
                                     CheckReservedLock,
                                     FileControl,
                                     SectorSize,
                                     Characteristics,
                                     nullptr,
                                     nullptr,
                                     nullptr,
                                     nullptr,
                                     nullptr,
                                     nullptr};

int Open(sqlite3_vfs*, sqlite3_filename name, sqlite3_file* file, int flags, int* outFlags) {
  File* made = new (file) File{};
  if (Fails("open")) return SQLITE_CANTOPEN;
  made->inner = reinterpret_cast<sqlite3_file*>(made + 1);
  const int code = real->xOpen(real, name, made->inner, flags, outFlags);
  // SQLite closes what has methods, also after an error.
  if (code == SQLITE_OK || made->inner->pMethods != nullptr) made->pMethods = &kMethods;
  return code;
}

int Delete(sqlite3_vfs*, const char* name, int syncFolder) {
  if (Fails("delete")) return SQLITE_IOERR_DELETE;
  return real->xDelete(real, name, syncFolder);
}

sqlite3_vfs* Vfs() {
  static sqlite3_vfs vfs;
  vfs = *real;
  vfs.pNext = nullptr;
  vfs.zName = kName;
  vfs.szOsFile = static_cast<int>(sizeof(File)) + real->szOsFile;
  vfs.xOpen = Open;
  vfs.xDelete = Delete;
  return &vfs;
}

}  // namespace

FaultyDisk::FaultyDisk() {
  Heal();
  real = sqlite3_vfs_find(nullptr);
  sqlite3_vfs_register(Vfs(), /*makeDflt=*/1);
}

FaultyDisk::~FaultyDisk() {
  sqlite3_vfs_unregister(sqlite3_vfs_find(kName));
  sqlite3_vfs_register(real, /*makeDflt=*/1);
}

void FaultyDisk::FailAt(int number, How how) {
  Heal();
  countdown = number;
  manner = how;
}

void FaultyDisk::FailAlways(How how) {
  Heal();
  always = true;
  manner = how;
}

void FaultyDisk::Heal() {
  countdown = 0;
  always = false;
  hasFailed = false;
  what.clear();
}

bool FaultyDisk::HasFailed() const { return hasFailed; }

const std::string& FaultyDisk::What() const { return what; }

}  // namespace controller
