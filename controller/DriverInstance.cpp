#include "controller/DriverInstance.h"

#include "controller/Failure.h"
#include "controller/Printable.h"
#include "framework/XmlText.h"

namespace controller {

DriverInstance::DriverInstance(const DriverLoader& loader, IInstanceManager& manager)
    : driver_(loader.Create(manager)) {
  if (driver_ == nullptr) throw Failure("the driver's library has created no driver");
}

void DriverInstance::Initialize(unsigned long deviceId,
                                const std::optional<std::string>& persisted) {
  const auto config = VxXML::CreateXmlNode("config", "");
  if (!persisted) {
    driver_->Initialize(deviceId, *config, nullptr);
    return;
  }
  const auto document = ParseXml(*persisted, "the saved state");
  driver_->Initialize(deviceId, *config, document->GetRoot());
}

void DriverInstance::Command(const std::string& name, const CommandMessage::Params& params) {
  const CommandMessage message(name, params);
  driver_->ExecuteCommand(message, nullptr, 0);
}

vx::auto_com<VxXML::INode> DriverInstance::Request(const std::string& name,
                                                   const CommandMessage::Params& params) {
  const CommandMessage message(name, params);
  return driver_->UIRequest(message);
}

bool DriverInstance::Test(const std::string& name, const CommandMessage::Params& params) {
  const ConditionMessage message(name, params);
  return driver_->TestCondition(message, nullptr);
}

std::optional<std::string> DriverInstance::PersistText() {
  const auto state = driver_->GetPersistState(0);
  if (!state) return std::nullopt;
  return vx::WriteXml(*state, vx::XmlStyle::kLossless);
}

vx::auto_com<VxXML::IDocument> ParseXml(std::string_view text, const std::string& what) {
  auto document = VxXML::CreateXmlDocument(text);
  if (!document) throw Failure(what + " cannot be read: " + Printable(vx::LastXmlError(), 500));
  return document;
}

}  // namespace controller
