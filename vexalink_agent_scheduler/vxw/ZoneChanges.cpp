#include "vexalink_agent_scheduler/vxw/ZoneChanges.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace local_time {
namespace {

constexpr std::time_t kDay = 86400;
constexpr std::time_t kFirstRule = 365 * kDay;  // 1971
constexpr std::size_t kMostBytes = 1 << 20;     // far beyond any zone

// Where the C library looks for the zone.
std::string PathOf(const char* zone) {
  if (zone == nullptr) return "/etc/localtime";
  if (*zone == ':') ++zone;
  if (*zone == '/') return zone;
  const char* const folder = std::getenv("TZDIR");
  const bool hasFolder = folder != nullptr && *folder != '\0';
  return std::string(hasFolder ? folder : "/usr/share/zoneinfo") + "/" +
         (*zone == '\0' ? "Universal" : zone);
}

// The bytes of a file; nothing where it cannot be opened.
std::optional<std::string> ReadFile(const std::string& path) {
  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  const std::unique_ptr<std::FILE, Closer> file(std::fopen(path.c_str(), "rb"));
  if (!file) return std::nullopt;
  std::string bytes;
  std::array<char, 4096> piece{};
  while (const std::size_t size = std::fread(piece.data(), 1, piece.size(), file.get())) {
    if (bytes.size() > kMostBytes) break;
    bytes.append(piece.data(), size);
  }
  return bytes;
}

std::uint64_t BigEndian(std::string_view bytes) {
  std::uint64_t value = 0;
  for (const char byte : bytes) value = value << 8 | static_cast<unsigned char>(byte);
  return value;
}

// One of the two blocks of a zone file (RFC 8536), which say the same, the first with 32 bits for
// an instant and the second with 64.
struct Block {
  std::string_view instants;
  std::uint64_t leapSeconds;
};

// Takes a block off the front of `bytes`; nothing where there is none.
std::optional<Block> TakeBlock(std::size_t instantSize, std::string_view* bytes) {
  constexpr std::size_t kHead = 44;
  if (bytes->size() < kHead || !bytes->starts_with("TZif") || (*bytes)[4] < '2') {
    return std::nullopt;
  }
  // Of UTC flags, standard flags, leap seconds, changes, types and characters of names.
  std::array<std::uint64_t, 6> counts{};
  for (std::size_t i = 0; i < counts.size(); ++i) {
    counts[i] = BigEndian(bytes->substr(20 + i * 4, 4));
  }
  const std::uint64_t instants = counts[3] * instantSize;
  const std::uint64_t size = instants + counts[3] + counts[4] * 6 + counts[5] +
                             counts[2] * (instantSize + 4) + counts[1] + counts[0];
  bytes->remove_prefix(kHead);
  if (bytes->size() < size) return std::nullopt;
  const Block block{bytes->substr(0, instants), counts[2]};
  bytes->remove_prefix(size);
  return block;
}

std::optional<ZoneChanges> ChangesOfFile(std::string_view bytes) {
  constexpr std::size_t kInstant = 8;
  if (!TakeBlock(4, &bytes)) return std::nullopt;
  const std::optional<Block> block = TakeBlock(kInstant, &bytes);
  if (!block || block->leapSeconds != 0) return std::nullopt;
  ZoneChanges changes{{}, -ZoneChanges::kFarthest, true};
  for (std::size_t at = 0; at < block->instants.size(); at += kInstant) {
    changes.listed.push_back(
        static_cast<std::time_t>(BigEndian(block->instants.substr(at, kInstant))));
  }
  if (!std::is_sorted(changes.listed.begin(), changes.listed.end())) return std::nullopt;
  if (!changes.listed.empty()) changes.ruleBegin = changes.listed.back();
  // What is left is the rule, as `TZ` would have it: with days where there are changes.
  if (bytes.find(',') != std::string_view::npos) {
    changes.ruleBegin = std::max(changes.ruleBegin, kFirstRule);
  }
  return changes;
}

// Whether a `TZ` that names no file is of a clock that never changes: a name and an offset.
bool IsOneClock(std::string_view zone) {
  const std::size_t name = zone.starts_with('<') ? zone.find('>') : 0;
  if (name == std::string_view::npos) return false;
  zone.remove_prefix(std::min(zone.find_first_of("+-0123456789", name), zone.size()));
  return zone.find_first_not_of("+-:0123456789") == std::string_view::npos;
}

// Of a `TZ` that says it all itself.
std::optional<ZoneChanges> ChangesOfText(std::string_view zone) {
  if (IsOneClock(zone)) return ZoneChanges{{}, -ZoneChanges::kFarthest, false};
  const bool hasRule = zone.find(',') != std::string_view::npos;
  const auto defaults = hasRule ? std::nullopt : ReadFile(PathOf("posixrules"));
  if (!defaults) return ZoneChanges{{}, kFirstRule, false};
  // Daylight-saving time without a rule has that of yet another file, shifted by some hours.
  std::optional<ZoneChanges> changes = ChangesOfFile(*defaults);
  if (!changes) return std::nullopt;
  changes->listed.clear();
  changes->ruleBegin = std::max(changes->ruleBegin + 3 * kDay, kFirstRule);
  return changes;
}

}  // namespace

std::optional<ZoneChanges> ReadZoneChanges() {
  const char* const zone = std::getenv("TZ");
  const auto file = ReadFile(PathOf(zone));
  return file ? ChangesOfFile(*file) : ChangesOfText(zone == nullptr ? "UTC0" : zone);
}

}  // namespace local_time
