#pragma once

#include <string>
#include <utility>
#include <vector>

#include "controller/http/Http.h"

namespace controller {

/// "Not Found" of 404 and so on.
const char* StatusText(int status);

/// Whether an answer of this status has a body at all.
bool StatusHasBody(int status);

/// All fields of an answer, those among them that every answer has: what keeps a page from being
/// used against its reader, and what keeps answers out of caches where the answer does not say
/// otherwise itself.
std::vector<std::pair<std::string, std::string>> ResponseFields(const HttpResponse& response);

/// A whole answer after which the connection ends, for where no request could be read.
std::string LastAnswer(const HttpResponse& response);

}  // namespace controller
