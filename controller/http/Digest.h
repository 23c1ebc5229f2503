#pragma once

#include <string>
#include <string_view>

namespace controller {

/// SHA-256 in 64 hexadecimal digits.
std::string Sha256Hex(std::string_view text);

/// The first 128 bits of it: enough to tell contents from each other.
std::string ContentHash(std::string_view text);

/// Whether they are equal, in a time that tells nothing about where they differ.
bool EqualInConstantTime(std::string_view left, std::string_view right);

/// 256 bits by chance, fit to be a secret, as 43 letters, digits, "-" and "_" (base64url). Throws a
/// `Failure` where the system has none to give.
std::string NewSecret();

}  // namespace controller
