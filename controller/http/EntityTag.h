#pragma once

#include <string>
#include <string_view>

#include "controller/http/Http.h"

namespace controller {

/// A strong entity tag, quotes included, of what is shown: two are the same only where the contents
/// are.
std::string EntityTag(std::string_view content);

/// Obeys If-Match: throws the `Problem` "precondition-failed" where it is given and `current` is
/// none of its tags. "*" is any. `current` is empty where there is nothing (nothing matches then).
void CheckIfMatch(const HttpRequest& request, const std::string& current);

/// Obeys If-None-Match of a GET: whether the client has what would be answered. Weak tags compare
/// like strong ones here, RFC 9110, 13.1.2.
bool IsKnownToClient(const HttpRequest& request, const std::string& current);

/// `response` with its tag, or 304 where the client has it.
HttpResponse WithTag(const HttpRequest& request, HttpResponse response, const std::string& tag);

}  // namespace controller
