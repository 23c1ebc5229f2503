#include "controller/StateSaver.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "controller/DriverInstance.h"
#include "controller/Failure.h"
#include "controller/Log.h"
#include "controller/XmlRepair.h"

namespace controller {

StateSaver::StateSaver(event_base* base, ProjectStore& store, std::string driver, Fetch fetch,
                       OnTrouble onTrouble)
    : store_(store),
      driver_(std::move(driver)),
      fetch_(std::move(fetch)),
      onTrouble_(std::move(onTrouble)),
      due_(MakeLoopEvent(base, -1, 0, OnDue, this)) {}

void StateSaver::Invalidate() {
  pending_ = true;
  // While saving fails the next attempt has its time; a change does not bring it forward.
  if (failures_ == 0) Arm(0);
}

bool StateSaver::SaveNow() {
  pending_ = true;
  try {
    Save();
  } catch (const std::exception& failure) {
    Failed(failure.what());
  }
  return !pending_;
}

void StateSaver::Save() {
  if (const auto state = fetch_()) {
    store_.SaveState(driver_, ReadableState(*state));
    Log::Debug("saved, " + std::to_string(state->size()) + " bytes");
  }
  pending_ = false;
  event_del(due_.get());
  if (std::exchange(failures_, 0) == 0) return;
  Log::Info("saving works again; everything is saved");
  onTrouble_("");
}

void StateSaver::Failed(const std::string& why) {
  const long seconds = std::min(60L, 1L << std::min(failures_, 6u));
  if (failures_++ == 0) onTrouble_(why);
  Log::Error("the schedule could not be saved: " + why + "; the next attempt is in " +
             std::to_string(seconds) + " s");
  Arm(seconds * 1000);
}

void StateSaver::Arm(long milliseconds) {
  const timeval delay = Milliseconds(milliseconds);
  event_add(due_.get(), &delay);
}

void StateSaver::OnDue(int, short, void* self) { static_cast<StateSaver*>(self)->SaveNow(); }

std::string ReadableState(std::string text) {
  if (VxXML::CreateXmlDocument(text)) return text;
  RepairedXml repaired = RepairXml(text);
  ParseXml(repaired.text, "the state that the driver gave");
  Log::Warning("the schedule holds " + std::to_string(repaired.replaced) +
               " characters that XML cannot hold; U+FFFD was saved in their place");
  return std::move(repaired.text);
}

}  // namespace controller
