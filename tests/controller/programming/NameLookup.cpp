#include "tests/controller/programming/NameLookup.h"

#include <atomic>
#include <chrono>
#include <dlfcn.h>
#include <netdb.h>
#include <string_view>
#include <thread>

namespace {

std::atomic<int> slow{0};

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

}  // namespace

int name_lookup::Slow() { return slow; }

/// Takes the place of the C library's function.
extern "C" __attribute__((visibility("default"))) int getaddrinfo(const char* name,
                                                                  const char* service,
                                                                  const addrinfo* hints,
                                                                  addrinfo** result) {
  using Function = int (*)(const char*, const char*, const addrinfo*, addrinfo**);
  static const auto real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "getaddrinfo"));
  const std::string_view wanted = name == nullptr ? "" : name;
  if (EndsWith(wanted, ".invalid")) return EAI_NONAME;
  if (!EndsWith(wanted, "slow.test")) return real(name, service, hints, result);
  const bool counts = wanted == "slow.test";
  slow += counts;
  std::this_thread::sleep_for(std::chrono::seconds(3));
  slow -= counts;
  return real("127.0.0.1", service, hints, result);
}
