#include "host/VxAssert.h"

#include <backtrace.h>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cxxabi.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <memory>

#include "framework/AssertSink.h"

namespace vx {
namespace {

class StandardErrorSink final : public IAssertSink {
 public:
  void OnAssert(const char* file, int line, const StackTrace& stack) override {
    std::fprintf(stderr, "assertion: %s:%d\n%s", file, line, Symbolise(stack).c_str());
  }
  bool WantsStacks() const override { return true; }
};

StandardErrorSink standardErrorSink;
IAssertSink* sink = &standardErrorSink;

// What the debug information and the symbol tables say of one address.
struct Frame {
  std::string function;
  std::string file;
  int line = 0;
};

std::string Demangle(const char* name) {
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> plain(
      abi::__cxa_demangle(name, nullptr, nullptr, &status), &std::free);
  return status == 0 ? plain.get() : name;
}

int OnSource(void* frame, std::uintptr_t, const char* file, int line, const char* function) {
  auto& found = *static_cast<Frame*>(frame);
  if (!found.function.empty() || function == nullptr) return 0;  // the innermost inlined call
  found.function = Demangle(function);
  found.file = file == nullptr ? "" : file;
  found.line = line;
  return 0;
}

void OnSymbol(void* frame, std::uintptr_t, const char* name, std::uintptr_t, std::uintptr_t) {
  if (name != nullptr) static_cast<Frame*>(frame)->function = Demangle(name);
}

void OnError(void*, const char*, int) {}  // no debug information: the address has to do

std::string Describe(void* address) {
  static backtrace_state* const state = backtrace_create_state(nullptr, 0, OnError, nullptr);
  const auto pc = reinterpret_cast<std::uintptr_t>(address) - 1;  // the call, not its return
  Frame frame;
  if (state != nullptr) {
    backtrace_pcinfo(state, pc, OnSource, OnError, &frame);
    if (frame.function.empty()) backtrace_syminfo(state, pc, OnSymbol, OnError, &frame);
  }
  char where[32];
  std::snprintf(where, sizeof where, "%p", address);
  std::string text = frame.function.empty() ? where : frame.function;
  if (frame.line != 0) text += " at " + frame.file + ":" + std::to_string(frame.line);
  Dl_info library;
  if (dladdr(address, &library) != 0 && library.dli_fname != nullptr) {
    const std::string path = library.dli_fname;
    text += " (" + path.substr(path.rfind('/') + 1) + ")";
  }
  return text;
}

}  // namespace

StackTrace::StackTrace() {
  if (!sink->WantsStacks()) return;
  const int count = backtrace(frames_.data(), static_cast<int>(frames_.size()));
  size_ = count > 0 ? static_cast<std::size_t>(count) : 0;
}

void AssertWrite(const char* file, int line, const StackTrace& stack) {
  sink->OnAssert(file, line, stack);
}

IAssertSink* SetAssertSink(IAssertSink* newSink) {
  IAssertSink* const before = sink;
  sink = newSink == nullptr ? &standardErrorSink : newSink;
  return before;
}

std::string Symbolise(const StackTrace& stack) {
  std::string text;
  for (std::size_t i = 0; i < stack.Size(); ++i) {
    text += "  " + Describe(stack.Frames()[i]) + "\n";
  }
  return text;
}

}  // namespace vx
