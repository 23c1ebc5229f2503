#pragma once

#include <cstddef>

#include "controller/http/RequestHead.h"

namespace controller {

/// What the server bears at most. Times are in milliseconds.
struct HttpLimits {
  std::size_t connections = 512;
  std::size_t streams = 256;
  HeadLimits head;
  /// Between two requests on one connection.
  long idle = 75000;
  /// From the first byte of a request to the end of its head: a client that sends a byte now and
  /// then does not keep its place for ever.
  long headTime = 10000;
  /// From the end of the head to the end of the body.
  long bodyTime = 60000;
  /// Without any progress in what is being sent.
  long writeTime = 30000;
  /// How long a connection that was refused is still listened to, so that the refusal is read.
  long lingerTime = 2000;
};

}  // namespace controller
