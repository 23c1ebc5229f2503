#pragma once

namespace controller {

/// Throws a `Failure` where the libevent that is loaded is one whose HTTP is known to be unsafe, or
/// one that this was not written for.
void CheckLibeventVersion();

}  // namespace controller
