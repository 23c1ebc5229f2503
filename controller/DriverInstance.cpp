#include "controller/DriverInstance.h"

#include "controller/Failure.h"
#include "controller/Printable.h"
#include "framework/XmlText.h"
#include "vexalink_agent_scheduler/vxw/IAgentScheduler.h"

namespace controller {

DriverInstance::DriverInstance(const DriverLoader& loader, IInstanceManager& manager,
                               ICallRecorder* recorder)
    : recorder_(recorder), driver_(Create(loader, manager)) {
  if (driver_ == nullptr) throw Failure("the driver's library has created no driver");
}

std::unique_ptr<IDriver> DriverInstance::Create(const DriverLoader& loader,
                                                IInstanceManager& manager) {
  if (recorder_ == nullptr) return std::unique_ptr<IDriver>(loader.Create(manager));
  recorder_->OnCreate();
  std::unique_ptr<IDriver> driver(loader.Create(recorder_->HostFor(manager)));
  recorder_->OnReturned();
  return driver;
}

DriverInstance::~DriverInstance() {
  if (recorder_ != nullptr) recorder_->OnDestroy();
  driver_.reset();
  if (recorder_ != nullptr) recorder_->OnReturned();
}

void DriverInstance::Initialize(unsigned long deviceId,
                                const std::optional<std::string>& persisted) {
  const auto config = VxXML::CreateXmlNode("config", "");
  vx::auto_com<VxXML::IDocument> document;
  if (persisted) document = ParseXml(*persisted, "the saved state");
  if (recorder_ != nullptr) recorder_->OnInitialize(persisted);
  const int result =
      driver_->Initialize(deviceId, *config, document ? document->GetRoot() : nullptr);
  if (recorder_ != nullptr) recorder_->OnReturned(result);
}

void DriverInstance::Command(const std::string& name, const CommandMessage::Params& params) {
  const CommandMessage message(name, params);
  if (recorder_ != nullptr) recorder_->OnCommand(name, params);
  const int result = driver_->ExecuteCommand(message, nullptr, 0);
  if (recorder_ != nullptr) recorder_->OnReturned(result);
}

vx::auto_com<VxXML::INode> DriverInstance::Request(const std::string& name,
                                                   const CommandMessage::Params& params) {
  const CommandMessage message(name, params);
  if (recorder_ != nullptr) recorder_->OnRequest(name, params);
  auto reply = driver_->UIRequest(message);
  if (recorder_ != nullptr) recorder_->OnReturned(reply.get());
  return reply;
}

bool DriverInstance::Test(const std::string& name, const CommandMessage::Params& params) {
  const ConditionMessage message(name, params);
  if (recorder_ != nullptr) recorder_->OnCondition(name, params);
  const bool result = driver_->TestCondition(message, nullptr);
  if (recorder_ != nullptr) recorder_->OnReturned(result);
  return result;
}

std::optional<unsigned long> DriverInstance::IdOfDescription(const std::string& description) {
  void* face = nullptr;
  driver_->QueryInterface(kAgentSchedulerIid, &face);
  if (face == nullptr) return std::nullopt;
  if (recorder_ != nullptr) recorder_->OnInterface("GetEventIdByDescription", description);
  const unsigned long id =
      static_cast<IAgentScheduler*>(face)->GetEventIdByDescription(description);
  if (recorder_ != nullptr) recorder_->OnReturned(id);
  return id;
}

std::optional<std::string> DriverInstance::PersistText() {
  if (recorder_ != nullptr) recorder_->OnPersist();
  const auto state = driver_->GetPersistState(0);
  if (recorder_ != nullptr) recorder_->OnReturned(state.get());
  if (!state) return std::nullopt;
  return vx::WriteXml(*state, vx::XmlStyle::kLossless);
}

vx::auto_com<VxXML::IDocument> ParseXml(std::string_view text, const std::string& what) {
  auto document = VxXML::CreateXmlDocument(text);
  if (!document) throw Failure(what + " cannot be read: " + Printable(vx::LastXmlError(), 500));
  return document;
}

}  // namespace controller
