#pragma once

#include <string>

#include "host/Export.h"
#include "host/VxAssert.h"

namespace vx {

/// Where assertion records go. One per process; the controller owns it.
class IAssertSink {
 public:
  /// One record. `file` is borrowed for the call.
  virtual void OnAssert(const char* file, int line, const StackTrace& stack) = 0;
  /// Whether records should carry the calls that led to them. Asked before each record is made.
  virtual bool WantsStacks() const = 0;

 protected:
  ~IAssertSink() = default;
};

/// Sends all further records to `sink`, which must outlive its use; null: to standard error, the
/// default. Answers the sink before. From the driver's thread only.
VX_API IAssertSink* SetAssertSink(IAssertSink* sink);

/// One line per recorded call, `function at file:line (library)`, innermost first; what the debug
/// information does not tell is left out, and an address stands for a function without a name.
/// Slow: it reads the debug information and the symbol tables.
VX_API std::string Symbolise(const StackTrace& stack);

}  // namespace vx
