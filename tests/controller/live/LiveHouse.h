#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "TempFolder.h"
#include "controller/live/Controller.h"

namespace controller {

/// A real controller on a project of its own, in this process; its loop turns when it is told. What
/// it tells is written down.
class LiveHouse final : private IHouseListener {
 public:
  LiveHouse();
  ~LiveHouse();
  LiveHouse(const LiveHouse&) = delete;
  LiveHouse& operator=(const LiveHouse&) = delete;

  Controller& Get() { return *controller_; }
  /// Ends the controller as a crash does not: everything is saved. And starts it anew.
  void Restart();
  /// Ends it without saving what waits.
  void Crash();
  /// Turns the loop until it holds; false after a minute.
  bool Until(const std::function<bool()>& holds);
  /// A callback for a change, and whether it has been called with the empty text.
  House::Saved Saved();
  /// Turns the loop until the latest change is saved.
  bool WaitForSaved();
  std::vector<JournalRow> Rows(const std::string& kind);
  /// What the project holds on the disk, read by another connection.
  std::string StoredXml();

  /// A daily event.
  static EventElement Daily(const std::string& description, int minutes);

  std::vector<std::string> told;
  std::string saved;

 private:
  void OnEventChanged(Change change, unsigned long eventId) override;
  void OnProgrammingChanged(unsigned long eventId) override;
  void OnJournalRow(const JournalRow& row) override;
  void OnProjectChanged() override { told.emplace_back("project"); }
  void OnTodayChanged() override {}
  void OnSaving(bool works, const std::string&) override;
  void OnScheduleReplaced() override { told.emplace_back("replaced"); }
  void Start();

  const TempFolder folder_;
  std::unique_ptr<Controller> controller_;
};

}  // namespace controller
