#include "controller/Committer.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "controller/DriverInstance.h"
#include "controller/Failure.h"
#include "controller/Log.h"
#include "controller/PlainXml.h"
#include "controller/XmlRepair.h"

namespace controller {

namespace {

// Long enough for requests that arrive together to be saved together, too short to be noticed.
constexpr long kGatherMilliseconds = 2;

}  // namespace

Committer::Committer(event_base* base, ProjectStore& store, std::string driver, Fetch fetch,
                     OnTrouble onTrouble)
    : base_(base),
      store_(store),
      driver_(std::move(driver)),
      fetch_(std::move(fetch)),
      onTrouble_(std::move(onTrouble)),
      due_(MakeLoopEvent(base, -1, 0, OnDue, this)) {}

void Committer::Add(Write write, OnSaved onSaved, OnDelayed onDelayed) {
  // While saving fails the next attempt has its time; a change does not bring it forward, but who
  // asked for it need not wait to learn that.
  if (failures_ > 0 && onDelayed) std::exchange(onDelayed, nullptr)(trouble_);
  waiting_.push_back({std::move(write), std::move(onSaved), std::move(onDelayed)});
  if (failures_ == 0) Arm(kGatherMilliseconds);
}

void Committer::Invalidate() {
  stateWaits_ = true;
  if (failures_ == 0) Arm(kGatherMilliseconds);
}

bool Committer::SaveNow() {
  stateWaits_ = true;
  return Flush();
}

bool Committer::Flush() {
  std::list<Waiting> saved;
  try {
    WriteAll();
    saved.swap(waiting_);
  } catch (const std::exception& failure) {
    Failed(failure.what());
    return false;
  }
  Succeeded(std::move(saved));
  return true;
}

void Committer::WriteAll() {
  // The driver is asked before the transaction begins, so that this is short.
  std::optional<std::string> state;
  if (stateWaits_) state = fetch_();
  if (state) state = ReadableState(*std::move(state));
  SqliteTransaction transaction(store_.Database());
  if (stamp_) stamp_(store_);
  if (state) store_.SaveState(driver_, *state);
  for (const Waiting& waiting : waiting_) {
    if (waiting.write) waiting.write(store_);
  }
  transaction.Commit();
  if (state) Log::Debug("saved, " + std::to_string(state->size()) + " bytes");
}

void Committer::Succeeded(std::list<Waiting> saved) {
  stateWaits_ = false;
  armed_ = false;
  event_del(due_.get());
  ++saves_;
  if (std::exchange(failures_, 0) > 0) {
    trouble_.clear();
    Log::Info("saving works again; everything is saved");
    onTrouble_("");
  }
  for (const Waiting& each : saved) {
    if (each.onSaved) each.onSaved();
  }
}

void Committer::Failed(const std::string& why) {
  const long seconds = std::min(60L, 1L << std::min(failures_, 6u));
  ++saveFailures_;
  trouble_ = why;
  if (failures_++ == 0) onTrouble_(why);
  Log::Error("the schedule could not be saved: " + why + "; the next attempt is in " +
             std::to_string(seconds) + " s");
  armed_ = false;
  Arm(seconds * 1000);
  for (Waiting& waiting : waiting_) {
    if (waiting.onDelayed) std::exchange(waiting.onDelayed, nullptr)(why);
  }
}

void Committer::Arm(long milliseconds) {
  if (std::exchange(armed_, true)) return;
  const timeval delay = Milliseconds(milliseconds);
  event_add(due_.get(), &delay);
}

void Committer::OnDue(int, short, void* argument) {
  auto& self = *static_cast<Committer*>(argument);
  self.armed_ = false;
  Guarded(self.base_, [&self] { self.Flush(); });
}

std::string ReadableState(std::string text) {
  // Every save asks this of the whole schedule, and hardly ever is the answer no.
  if (IsPlainXml(text) || VxXML::CreateXmlDocument(text)) return text;
  RepairedXml repaired = RepairXml(text);
  ParseXml(repaired.text, "the state that the driver gave");
  Log::Warning("the schedule holds " + std::to_string(repaired.replaced) +
               " characters that XML cannot hold; U+FFFD was saved in their place");
  return std::move(repaired.text);
}

}  // namespace controller
