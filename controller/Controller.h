#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "controller/AssertLog.h"
#include "controller/DaySeed.h"
#include "controller/DriverInstance.h"
#include "controller/DriverLoader.h"
#include "controller/Failure.h"
#include "controller/HousePlace.h"
#include "controller/IHostObserver.h"
#include "controller/LiveDriverHost.h"
#include "controller/Loop.h"
#include "controller/ProjectLock.h"
#include "controller/ProjectStore.h"
#include "controller/Signals.h"
#include "controller/StateSaver.h"

namespace controller {

/// What `vexalink serve` was asked for.
struct ServeOptions {
  std::filesystem::path project;
  std::string agent;
  /// Kept in the project where it is given.
  std::optional<Place> place;
  /// A new project starts without events.
  bool empty = false;
};

/// A running controller: one project, one scheduler, one loop. Everything it owns is given back,
/// and the schedule is saved, when it ends.
class Controller final : private IHostObserver {
 public:
  /// Takes the project and starts the scheduler with what is kept of it. Throws a `Failure`;
  /// nothing that could not be read has then been written over.
  explicit Controller(ServeOptions options);
  ~Controller();
  Controller(const Controller&) = delete;
  Controller& operator=(const Controller&) = delete;

  /// Runs until a signal ends it. kFailed where the schedule could not be saved at the end.
  ExitStatus Run();

 private:
  void OnEventFired(IDriver& driver, unsigned long eventId) override;
  void OnBoundCall(IDriver& driver, unsigned long bindingId, const IBindMessage& message) override;
  void OnUiData(IDriver& driver, const VxXML::INode& data) override;
  void OnStateInvalidated(IDriver& driver) override;
  void OnProgrammingDropped(IDriver& driver, unsigned long ownerId, int kind) override;

  void SetPlace();
  void LoadSchedule();
  void CreateScheduler(const std::optional<std::string>& persisted);
  void DestroyScheduler();
  void AddFirstSchedule();
  void TellDropped(const std::string& persisted);
  void TellSchedule();
  void TellFired(unsigned long eventId);
  void OnSignal(int signal);
  void ReloadTimeZone();
  void RestartScheduler();
  void OnTrouble(const std::string& why);
  ExitStatus Stop();

  ServeOptions options_;
  EventBase base_;
  Signals signals_;
  std::unique_ptr<DriverLoader> loader_;
  ProjectLock lock_;
  ProjectStore store_;
  AssertLog asserts_;
  LoopQueue queue_;
  DaySeed seed_;
  LiveDriverHost host_;
  std::unique_ptr<DriverInstance> scheduler_;
  StateSaver saver_;
  HousePlace place_;
  std::string zone_;
  std::string status_;
};

/// The project's file made ready to be opened: its folder exists afterwards.
const std::filesystem::path& PreparedProject(const std::filesystem::path& project);

/// Loads a driver's library; throws a `Failure`.
std::unique_ptr<DriverLoader> LoadDriver(const std::string& path);

}  // namespace controller
