#pragma once

#include <string>

#include "controller/cli/parse/TextParts.h"

namespace controller::cli {

/// Takes a comparison in one of its spellings: "eq", "=", "is", "not in", "after". Answers the
/// API's word. Throws a `TextError`.
std::string TakeComparison(TextParts& parts);

/// How a comparison reads in a sentence: "is", "is not", "after", ...; `list`: with several values.
std::string ComparisonWords(const std::string& comparison, bool list);

}  // namespace controller::cli
