#pragma once

#include <ctime>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "controller/Sqlite.h"

namespace controller {

/// A driver's persisted state as it was kept.
struct StoredState {
  std::string xml;
  std::time_t saved = 0;
  /// Of an earlier state: why it was put aside. Empty for the present one.
  std::string reason;
};

/// A project: one SQLite file with the settings of the house, the persisted state of each driver
/// and the states that were replaced. It is written by one process at a time (see `ProjectLock`)
/// and may be read by others meanwhile. A change is on the disk when the operation returns; one
/// that throws has changed nothing. Every operation throws a `Failure` that says what is wrong with
/// which file.
class ProjectStore {
 public:
  enum class Use {
    /// To read and write; created where it is missing or empty.
    kKeep,
    /// To read only; a missing one is an error. Needs no lock.
    kLook,
  };

  /// Opens a project and tests it before anything is written: a file that is no project, is
  /// damaged, or was written by a newer version is refused and stays as it is.
  ProjectStore(const std::filesystem::path& file, Use use);
  ~ProjectStore();
  ProjectStore(const ProjectStore&) = delete;
  ProjectStore& operator=(const ProjectStore&) = delete;

  /// For those who keep something of their own in the project.
  SqliteDatabase& Database() { return database_; }

  /// Whether this opening has created the project.
  bool IsNew() const { return isNew_; }
  /// What tells this project from all others, made by chance when it was created; 32 hex digits.
  std::string ProjectId();

  std::optional<std::string> Setting(std::string_view name);
  /// All or none of them.
  void SaveSettings(const std::map<std::string, std::string>& settings);

  std::optional<StoredState> State(std::string_view driver);
  void SaveState(std::string_view driver, std::string_view xml);
  /// Saves `xml` and puts the state before it aside, for `reason`. The last ten that were put aside
  /// are kept of each driver. `more` is part of the same transaction.
  void ReplaceState(std::string_view driver, std::string_view xml, std::string_view reason,
                    const std::function<void()>& more = {});
  /// Puts a copy of the present state aside.
  void BackUpState(std::string_view driver, std::string_view reason);
  /// The states that were put aside, the newest first.
  std::vector<StoredState> Backups(std::string_view driver);

 private:
  void Create();
  void Check();
  void Upgrade();
  [[noreturn]] void Refuse(const std::string& why);
  void PutAside(std::string_view driver, std::string_view reason);
  void WriteState(std::string_view driver, std::string_view xml);

  Use use_;
  bool isNew_ = false;
  SqliteDatabase database_;
};

}  // namespace controller
