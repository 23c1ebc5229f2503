#pragma once

#include <nlohmann/json.hpp>

namespace controller::cli {

/// What is sent and answered, its fields in the order in which they stand.
using Json = nlohmann::ordered_json;

}  // namespace controller::cli
