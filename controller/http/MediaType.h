#pragma once

#include <string>
#include <vector>

#include "controller/http/RequestHead.h"

namespace controller {

/// A body must be of one of `types`, in UTF-8 and not compressed; throws a `Problem` where it is
/// not. Without a body nothing is asked.
void CheckMediaType(const RequestHead& head, const std::vector<std::string>& types);

}  // namespace controller
