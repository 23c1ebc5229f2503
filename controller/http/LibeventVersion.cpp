#include "controller/http/LibeventVersion.h"

#include <dlfcn.h>
#include <event2/event.h>
#include <string>

#include "controller/Failure.h"

namespace controller {

namespace {

constexpr ev_uint32_t kNeeded = 0x02010c00;  // 2.1.12

/// Distributions mend 2.1.12 without giving it another number. What mended the reading of
/// Transfer-Encoding has added this function.
bool IsMended() { return dlsym(RTLD_DEFAULT, "evhttp_check_transfer_encoding_") != nullptr; }

}  // namespace

void CheckLibeventVersion() {
  const ev_uint32_t number = event_get_version_number() & 0xFFFFFF00;
  if (number > kNeeded || (number == kNeeded && IsMended())) return;
  throw Failure("libevent " + std::string(event_get_version()) +
                " is installed, which reads some requests in an unsafe way; install its security "
                "updates (in Debian 12 libevent-extra-2.1-7 2.1.12-stable-8+deb12u1 or later)");
}

}  // namespace controller
