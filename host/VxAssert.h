#pragma once

#include <array>
#include <cstddef>

#include "host/Export.h"

namespace vx {

/// The return addresses of the calls that led to where it was made, innermost first. Names are
/// looked up only when somebody reads the record, so making one is cheap. Makes no record (size 0)
/// where the controller does not want stacks.
class VX_API StackTrace {
 public:
  static constexpr std::size_t kMaxFrames = 32;

  StackTrace();

  /// How many addresses were recorded, 0 to `kMaxFrames`.
  std::size_t Size() const { return size_; }
  /// The addresses, `Size()` of them; they belong to this object.
  void* const* Frames() const { return frames_.data(); }

 private:
  std::array<void*, kMaxFrames> frames_;
  std::size_t size_ = 0;
};

/// Writes an assertion record: something that should hold did not, and the caller goes on. Never
/// aborts and never throws. `file` is the source path as it stands in the record and `line` the
/// number of the check; both belong to the record, not to the place of the call. `file` is not kept
/// after the call. From the driver's thread only.
VX_API void AssertWrite(const char* file, int line, const StackTrace& stack);

}  // namespace vx
