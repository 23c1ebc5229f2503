#include "controller/http/Digest.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <nettle/memops.h>
#include <nettle/sha2.h>
#include <sys/random.h>

#include "controller/Failure.h"

namespace controller {

namespace {

std::string Base64Url(const std::array<std::uint8_t, 32>& bytes) {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
  std::string text;
  unsigned bits = 0;
  int count = 0;
  for (const std::uint8_t byte : bytes) {
    bits = bits << 8 | byte;
    for (count += 8; count >= 6; count -= 6) text += kDigits[bits >> (count - 6) & 63];
  }
  text += kDigits[bits << (6 - count) & 63];
  return text;
}

}  // namespace

std::string Sha256Hex(std::string_view text) {
  sha256_ctx context;
  sha256_init(&context);
  sha256_update(&context, text.size(), reinterpret_cast<const std::uint8_t*>(text.data()));
  std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest{};
  sha256_digest(&context, digest.size(), digest.data());
  std::string hex;
  for (const std::uint8_t byte : digest) {
    hex += "0123456789abcdef"[byte >> 4];
    hex += "0123456789abcdef"[byte & 15];
  }
  return hex;
}

std::string ContentHash(std::string_view text) { return Sha256Hex(text).substr(0, 32); }

bool EqualInConstantTime(std::string_view left, std::string_view right) {
  return left.size() == right.size() && memeql_sec(left.data(), right.data(), left.size()) != 0;
}

std::string NewSecret() {
  std::array<std::uint8_t, 32> bytes{};
  if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
    throw Failure("the system gives no random numbers: " + std::string(std::strerror(errno)));
  }
  return Base64Url(bytes);
}

}  // namespace controller
