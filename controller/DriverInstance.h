#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "controller/DriverLoader.h"
#include "controller/HostMessages.h"
#include "controller/ICallRecorder.h"
#include "host/IDriver.h"
#include "host/IInstanceManager.h"

namespace controller {

/// One driver from its creation to its destruction. The loader, the manager and the recorder, which
/// may be null, must outlive it.
class DriverInstance {
 public:
  /// Creates the driver; throws a `Failure` where its library does not.
  DriverInstance(const DriverLoader& loader, IInstanceManager& manager,
                 ICallRecorder* recorder = nullptr);
  ~DriverInstance();
  DriverInstance(const DriverInstance&) = delete;
  DriverInstance& operator=(const DriverInstance&) = delete;

  /// Initialises the driver with an empty configuration and the text that `PersistText` answered in
  /// an earlier life, if any. Throws a `Failure` for a text that does not parse, before the driver
  /// has seen any of it.
  void Initialize(unsigned long deviceId, const std::optional<std::string>& persisted);

  void Command(const std::string& name, const CommandMessage::Params& params = {});
  /// Null where the driver has no answer.
  vx::auto_com<VxXML::INode> Request(const std::string& name,
                                     const CommandMessage::Params& params = {});
  /// Whether a condition holds, by the driver's opinion.
  bool Test(const std::string& name, const CommandMessage::Params& params);
  /// The lowest id of an event with this description, 0 where there is none; nothing where the
  /// driver has not the scheduler's interface, which tells.
  std::optional<unsigned long> IdOfDescription(const std::string& description);
  /// What the driver wants to find again, as XML; nothing where it keeps nothing.
  std::optional<std::string> PersistText();

  IDriver& Driver() const { return *driver_; }

 private:
  std::unique_ptr<IDriver> Create(const DriverLoader& loader, IInstanceManager& manager);

  ICallRecorder* recorder_;
  std::unique_ptr<IDriver> driver_;
};

/// Parses a text that holds one XML element; throws a `Failure` that begins with `what`, "the saved
/// schedule" for example, and says where the text is wrong.
vx::auto_com<VxXML::IDocument> ParseXml(std::string_view text, const std::string& what);

}  // namespace controller
