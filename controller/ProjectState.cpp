#include "controller/ProjectStore.h"

namespace controller {

std::optional<std::string> ProjectStore::Setting(std::string_view name) {
  SqliteStatement query(database_, "SELECT value FROM setting WHERE name = ?1");
  query.Bind(1, name);
  if (!query.Step()) return std::nullopt;
  return query.TextAt(0);
}

void ProjectStore::SaveSettings(const std::map<std::string, std::string>& settings) {
  SqliteTransaction transaction(database_);
  for (const auto& [name, value] : settings) {
    SqliteStatement(database_,
                    "INSERT INTO setting (name, value) VALUES (?1, ?2) "
                    "ON CONFLICT (name) DO UPDATE SET value = excluded.value")
        .Bind(1, name)
        .Bind(2, value)
        .Step();
  }
  transaction.Commit();
}

std::optional<StoredState> ProjectStore::State(std::string_view driver) {
  SqliteStatement query(database_, "SELECT xml, saved FROM driver_state WHERE driver = ?1");
  query.Bind(1, driver);
  if (!query.Step()) return std::nullopt;
  return StoredState{query.TextAt(0), query.NumberAt(1), ""};
}

void ProjectStore::SaveState(std::string_view driver, std::string_view xml) {
  SqliteTransaction transaction(database_);
  WriteState(driver, xml);
  transaction.Commit();
}

void ProjectStore::ReplaceState(std::string_view driver, std::string_view xml,
                                std::string_view reason, const std::function<void()>& more) {
  SqliteTransaction transaction(database_);
  PutAside(driver, reason);
  WriteState(driver, xml);
  if (more) more();
  transaction.Commit();
}

void ProjectStore::BackUpState(std::string_view driver, std::string_view reason) {
  SqliteTransaction transaction(database_);
  PutAside(driver, reason);
  transaction.Commit();
}

std::vector<StoredState> ProjectStore::Backups(std::string_view driver) {
  SqliteStatement query(database_,
                        "SELECT xml, saved, reason FROM driver_state_backup "
                        "WHERE driver = ?1 ORDER BY id DESC");
  query.Bind(1, driver);
  std::vector<StoredState> backups;
  while (query.Step()) {
    backups.push_back({query.TextAt(0), query.NumberAt(1), query.TextAt(2)});
  }
  return backups;
}

void ProjectStore::PutAside(std::string_view driver, std::string_view reason) {
  SqliteStatement(database_,
                  "INSERT INTO driver_state_backup (driver, xml, saved, reason) "
                  "SELECT driver, xml, saved, ?2 FROM driver_state WHERE driver = ?1")
      .Bind(1, driver)
      .Bind(2, reason)
      .Step();
  SqliteStatement(database_,
                  "DELETE FROM driver_state_backup WHERE driver = ?1 AND id NOT IN "
                  "(SELECT id FROM driver_state_backup WHERE driver = ?1 "
                  "ORDER BY id DESC LIMIT 10)")
      .Bind(1, driver)
      .Step();
}

void ProjectStore::WriteState(std::string_view driver, std::string_view xml) {
  SqliteStatement(database_,
                  "INSERT INTO driver_state (driver, xml, saved) VALUES (?1, ?2, ?3) "
                  "ON CONFLICT (driver) DO UPDATE SET xml = excluded.xml, "
                  "saved = excluded.saved")
      .Bind(1, driver)
      .Bind(2, xml)
      .Bind(3, static_cast<std::int64_t>(std::time(nullptr)))
      .Step();
}

}  // namespace controller
