#include "controller/ScratchAgent.h"

#include "controller/Failure.h"
#include "controller/ProjectVariables.h"
#include "controller/ScratchHost.h"

namespace controller {

void ScratchHost::VmRegisterListener(VxBaseDriver&, unsigned long device, unsigned long variable,
                                     IVariableCallback& listener) {
  if (device != kProjectDevice) return;
  if (variable == kLatitudeVariable) {
    listener.OnVariableChanged(device, variable, DegreesText(place_.latitude));
  } else if (variable == kLongitudeVariable) {
    listener.OnVariableChanged(device, variable, DegreesText(place_.longitude));
  }
}

ScratchAgent::ScratchAgent(const DriverLoader& loader, const Place& place)
    : loader_(loader),
      host_(std::make_unique<ScratchHost>(place)),
      before_(vx::SetAssertSink(this)) {
  Renew();
  agent_->Initialize(kSchedulerDevice, std::nullopt);
}

ScratchAgent::~ScratchAgent() {
  agent_.reset();
  vx::SetAssertSink(before_);
}

void ScratchAgent::Renew() {
  agent_.reset();
  agent_ = std::make_unique<DriverInstance>(loader_, *host_);
}

ScratchAgent::Answer ScratchAgent::Offer(const VxXML::INode& event) {
  Answer answer = Keep(event);
  agent_->Command("DELETE_EVENT", {{"EVENT_ID", std::to_string(event.GetUnsigned("eventid"))}});
  answer.assertions.assign(assertions_.begin(), assertions_.end());
  return answer;
}

ScratchAgent::Answer ScratchAgent::Keep(const VxXML::INode& event) {
  assertions_.clear();
  // Modifying is what takes an element with the id that it brings, as loading does.
  agent_->Command("MODIFY_EVENT", {{"EVENT_XML", event.ToString()}});
  Answer answer;
  answer.stored =
      agent_->Request("GET_EVENT", {{"EVENT_ID", std::to_string(event.GetUnsigned("eventid"))}});
  answer.assertions.assign(assertions_.begin(), assertions_.end());
  return answer;
}

std::string ScratchAgent::StateAfterLoading(const std::string& persisted) {
  Renew();
  agent_->Initialize(kSchedulerDevice, persisted);
  const auto state = agent_->PersistText();
  if (!state) throw Failure("the scheduler has no state after loading the schedule");
  return *state;
}

void ScratchAgent::OnAssert(const char* file, int line, const vx::StackTrace&) {
  assertions_.insert(std::string(file) + ':' + std::to_string(line));
}

}  // namespace controller
