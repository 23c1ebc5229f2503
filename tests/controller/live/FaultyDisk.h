#pragma once

#include <string>

namespace controller {

/// Stands between SQLite and the disk for every database that is opened while it lives: of the
/// calls that may fail (opening, writing, truncating, flushing, locking and deleting a file) one
/// fails when that is asked for, and all go on as usual afterwards. A write that fails has done
/// half of its work.
class FaultyDisk {
 public:
  FaultyDisk();
  ~FaultyDisk();
  FaultyDisk(const FaultyDisk&) = delete;
  FaultyDisk& operator=(const FaultyDisk&) = delete;

  enum class How { kFull, kBroken };
  /// The `number`-th call from here on fails, 1 the next one.
  void FailAt(int number, How how);
  /// All that need room fail, until `Heal`.
  void FailAlways(How how);
  void Heal();
  /// Whether it has come to that; and which call it was.
  bool HasFailed() const;
  const std::string& What() const;
};

}  // namespace controller
