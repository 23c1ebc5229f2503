#pragma once

#include <string>

#include "controller/cli/Json.h"
#include "controller/cli/show/Terminal.h"

namespace controller::cli {

// A row of the journal as the API answers it, in words.

/// `7 "Porch"`, or nothing where it concerns no event.
std::string JournalEventText(const Json& row);
/// "caught-up, planned 15:23, by cli:ada"
std::string JournalWhatText(const Json& row);
/// How its kind is to be shown.
Style JournalStyle(const Json& row);

}  // namespace controller::cli
