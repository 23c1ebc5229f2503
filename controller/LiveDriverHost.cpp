#include "controller/LiveDriverHost.h"

#include <algorithm>

#include "controller/Clock.h"
#include "controller/HostMessages.h"
#include "controller/Log.h"
#include "host/VxBaseDriver.h"

namespace controller {

LiveDriverHost::LiveDriverHost(event_base* base, DaySeed& seed, IHostObserver& observer)
    : seed_(seed), observer_(observer), timers_(base) {}

void LiveDriverHost::SetRecorder(ICallRecorder& recorder) {
  recorder_ = &recorder;
  seed_.SetOnSeed([&recorder](unsigned int value) { recorder.OnSeed(value); });
  recorder.SetAnswers([this] {
    return ICallRecorder::HostAnswers{variables_, seed_.ValueToday()};
  });
}

void LiveDriverHost::SetVariable(unsigned long device, unsigned long variable,
                                 const std::string& value) {
  const Variable changed(device, variable);
  variables_[changed] = value;
  // A listener may register or unregister while it is told: go by a copy, ask whether it still is
  // one.
  for (const Listener& told : std::vector<Listener>(listeners_)) {
    const bool still = std::any_of(listeners_.begin(), listeners_.end(), [&](const Listener& now) {
      return now.callback == told.callback && now.variable == changed;
    });
    if (told.variable != changed || !still) continue;
    if (recorder_ != nullptr) recorder_->OnVariable(device, variable, value);
    told.callback->OnVariableChanged(device, variable, value);
    if (recorder_ != nullptr) recorder_->OnReturned();
  }
}

void LiveDriverHost::Forget(const IDriver* driver) {
  std::erase_if(listeners_, [&](const Listener& listener) { return listener.driver == driver; });
  std::erase_if(bindings_, [&](const auto& binding) { return binding.first.first == driver; });
  std::erase_if(timerOwners_, [&](const auto& timer) {
    if (timer.second != driver) return false;
    timers_.Kill(timer.first);
    return true;
  });
}

int LiveDriverHost::RegisterQuery(const char* iid, void* object) {
  if (iid == nullptr || object == nullptr) return 0;
  return queries_.emplace(iid, object).second ? 1 : 0;
}

void LiveDriverHost::UnregisterQuery(const char* iid) {
  if (iid != nullptr) queries_.erase(iid);
}

void* LiveDriverHost::FindQuery(const char* iid) {
  const auto found = iid == nullptr ? queries_.end() : queries_.find(iid);
  return found == queries_.end() ? nullptr : found->second;
}

unsigned long LiveDriverHost::AddTimer(VxBaseDriver& driver, unsigned long intervalMilliseconds,
                                       unsigned int) {
  const unsigned long id = timers_.Add(
      intervalMilliseconds, [this, &driver](unsigned long timer) { Tick(driver, timer); });
  if (id != 0) timerOwners_[id] = &driver;
  return id;
}

void LiveDriverHost::Tick(VxBaseDriver& driver, unsigned long timer) {
  if (!observer_.OnTickBegins(driver)) return;
  if (recorder_ == nullptr) {
    seed_.SeedOnNewDay();
    driver.OnTimerExpired(timer, 0);
  } else {
    // It is seeded for the day in which the tick is.
    const ClockScope sameMoment(Clock::Now());
    seed_.SeedOnNewDay();
    recorder_->OnTick();
    driver.OnTimerExpired(timer, 0);
    recorder_->OnReturned();
  }
  observer_.OnTickEnded(driver);
}

void LiveDriverHost::KillTimer(VxBaseDriver& driver, unsigned long timerId) {
  const auto found = timerOwners_.find(timerId);
  if (found == timerOwners_.end() || found->second != &driver) return;
  timerOwners_.erase(found);
  timers_.Kill(timerId);
}

void LiveDriverHost::VmRegisterListener(VxBaseDriver& driver, unsigned long device,
                                        unsigned long variable, IVariableCallback& listener) {
  const Variable wanted(device, variable);
  listeners_.push_back({&driver, wanted, &listener});
  const auto present = variables_.find(wanted);
  if (present != variables_.end()) listener.OnVariableChanged(device, variable, present->second);
  // Here and not only before Initialize: loading the events has drawn numbers, as adding an event
  // does, and the day's list is drawn next. It must begin where a change of day begins.
  seed_.Seed();
}

void LiveDriverHost::VmUnregisterListener(VxBaseDriver&, unsigned long device,
                                          unsigned long variable, IVariableCallback& listener) {
  std::erase_if(listeners_, [&](const Listener& known) {
    return known.callback == &listener && known.variable == Variable(device, variable);
  });
}

int LiveDriverHost::RegisterBinding(VxBaseDriver& driver, unsigned long bindingId, int type,
                                    const std::string& name) {
  bindings_[{&driver, bindingId}] = {type, name, ""};
  return 0;
}

void LiveDriverHost::RegisterBindingClass(VxBaseDriver& driver, unsigned long bindingId,
                                          const std::string& bindingClass) {
  const auto found = bindings_.find({&driver, bindingId});
  if (found != bindings_.end()) found->second.bindingClass = bindingClass;
}

void LiveDriverHost::UnregisterBinding(VxBaseDriver& driver, unsigned long bindingId) {
  bindings_.erase({&driver, bindingId});
}

void LiveDriverHost::FireEvent(VxBaseDriver& driver, unsigned long eventId) {
  observer_.OnEventFired(driver, eventId);
}

vx::auto_com<IBindMessage> LiveDriverHost::CreateBindMessage(VxBaseDriver&) {
  return vx::auto_com<IBindMessage>(new BindMessage);
}

void LiveDriverHost::SendBoundCall(VxBaseDriver& driver, unsigned long bindingId,
                                   const IBindMessage& message, ICmdReturn*) {
  observer_.OnBoundCall(driver, bindingId, message);
}

void LiveDriverHost::ConSendDataToUI(VxBaseDriver& driver, const VxXML::INode& data) {
  observer_.OnUiData(driver, data);
}

void LiveDriverHost::DmInvalidateState(VxBaseDriver& driver) {
  observer_.OnStateInvalidated(driver);
}

void LiveDriverHost::EmRemoveByOwner(VxBaseDriver& driver, unsigned long ownerId, int kind) {
  observer_.OnProgrammingDropped(driver, ownerId, kind);
}

void LiveDriverHost::LogMessage(VxBaseDriver& driver, unsigned int level, const char* text) {
  if (text == nullptr) return;
  observer_.OnDriverLog(driver, level, text);
  if (level <= 3) return Log::Error(text);
  if (level == 4) return Log::Warning(text);
  level <= 6 ? Log::Info(text) : Log::Debug(text);
}

}  // namespace controller
