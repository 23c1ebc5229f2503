#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <unistd.h>

namespace local_time {

/// What `ZoneGeneration` compares; in sight so that it costs no call.
class ZoneMark {
 public:
  /// Whether the environment and the C library are as they were at the last `Set`.
  bool Holds() const {
    return environ == environment_ && HasSameEntry() && timezone == standardOffset_ &&
           daylight == hasDaylight_;
  }
  void Set();

 private:
  // Setting a variable replaces its entry or appends one, unsetting moves those behind it.
  bool HasSameEntry() const {
    if (environment_ == nullptr) return false;
    if (hasZone_) {
      // An entry may be changed in place. It does not get shorter than it was as memory.
      return environ[index_] == entry_ && IsText(entry_);
    }
    return environ[index_] == nullptr && (index_ == 0 || environ[index_ - 1] == entry_);
  }
  // Eight bytes at a time, the last ones together with some that were compared already: calling
  // memcmp costs more than the comparison.
  bool IsText(const char* entry) const {
    constexpr std::size_t kWord = sizeof(std::uint64_t);
    if (size_ < kWord) return std::memcmp(entry, text_, size_) == 0;
    for (std::size_t at = 0; at + kWord < size_; at += kWord) {
      if (WordAt(entry + at) != WordAt(text_ + at)) return false;
    }
    return WordAt(entry + size_ - kWord) == WordAt(text_ + size_ - kWord);
  }
  static std::uint64_t WordAt(const char* bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
  }

  char** environment_ = nullptr;
  std::size_t index_ = 0;       // of the entry of TZ, else of the end
  char* entry_ = nullptr;       // of TZ, else the last
  const char* text_ = nullptr;  // of the entry of TZ
  std::size_t size_ = 0;        // of the text with its NUL
  long standardOffset_ = 0;
  int hasDaylight_ = 0;
  bool hasZone_ = false;
};

/// Only for the functions below.
struct ZoneState {
  unsigned generation = 0;
  unsigned holds = 0;
  std::time_t heldSince = 0;
  ZoneMark mark;

  void Renew();
};
inline constinit ZoneState zoneState;

/// Counts the changes of the process's time zone, so that whoever keeps something of the local
/// calendar can tell when to forget it: what was kept under another number is stale.
///
/// Seen at once: `TZ` set, changed or unset by `setenv`, `putenv` and `unsetenv`, whether or not
/// `tzset` was called, and a `tzset` that changed the zone's standard offset or whether it has
/// daylight-saving time. A `tzset` that took up another file behind /etc/localtime and changed
/// neither is seen by the next `ForgetZone`, which the agent's tick calls every minute. Costs a few
/// comparisons, no system call.
[[gnu::always_inline]] inline unsigned ZoneGeneration() {
  if (zoneState.holds == 0 && !zoneState.mark.Holds()) zoneState.Renew();
  return zoneState.generation;
}

/// Makes all that was kept stale.
inline void ForgetZone() { ++zoneState.generation; }

/// While one of these lives the zone is taken to stay as it is, and so is the present moment of
/// `Present`, which spares work that converts a great many instants a look at the environment and
/// the clock for each. For the length of one operation.
class ZoneHold {
 public:
  ZoneHold() {
    ZoneGeneration();
    if (zoneState.holds++ == 0) zoneState.heldSince = std::time(nullptr);
  }
  ~ZoneHold() { --zoneState.holds; }
  ZoneHold(const ZoneHold&) = delete;
  ZoneHold& operator=(const ZoneHold&) = delete;
};

/// The present moment, or that at which a hold began: where only what is in force at present
/// counts, which does not change in the course of an operation.
inline std::time_t Present() {
  return zoneState.holds != 0 ? zoneState.heldSince : std::time(nullptr);
}

}  // namespace local_time
