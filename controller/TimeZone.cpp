#include "controller/TimeZone.h"

#include <cstdlib>
#include <ctime>
#include <fstream>
#include <optional>
#include <regex>
#include <string_view>

#include "controller/Log.h"
#include "controller/Printable.h"

namespace controller {

namespace fs = std::filesystem;

namespace {

/// The zone that a path below a zone directory stands for: what follows "zoneinfo/", without the
/// variants that count leap seconds or do not.
std::string NameFromPath(const std::string& path) {
  static constexpr std::string_view kDirectory = "zoneinfo/";
  const auto at = path.rfind(kDirectory);
  if (at == std::string::npos) return "";
  std::string name = path.substr(at + kDirectory.size());
  for (const std::string_view variant : {"posix/", "right/"}) {
    if (name.starts_with(variant)) name.erase(0, variant.size());
  }
  return name;
}

/// The zone of a file: its own place, or where it points; one step after the other, because what it
/// points to may again be a link, to the name of another zone.
std::string NameOfFile(fs::path file) {
  std::error_code error;
  for (int links = 0; links < 16; ++links) {
    if (std::string name = NameFromPath(file.string()); !name.empty()) return name;
    const fs::path target = fs::read_symlink(file, error);
    if (error) break;
    file = target.is_absolute() ? target : (file.parent_path() / target).lexically_normal();
  }
  return "";
}

std::string FirstWordOf(const fs::path& file) {
  std::ifstream in(file);
  std::string word;
  in >> word;
  return word;
}

}  // namespace

std::string TimeZoneName(const ZoneFiles& files) {
  if (const char* given = std::getenv("TZ")) {
    std::string zone = given;
    if (zone.starts_with(':')) zone.erase(0, 1);
    if (zone.empty()) return "UTC";
    return zone.starts_with('/') ? NameOfFile(zone) : zone;
  }
  if (std::string name = NameOfFile(files.localtime); !name.empty()) return name;
  return FirstWordOf(files.timezone);
}

std::string UnknownTimeZone(const ZoneFiles& files) {
  // Where a rule begins: a name, or one in angle brackets, and how far it is from UTC.
  static const std::regex kRule("(<[A-Za-z0-9+-]{3,}>|[A-Za-z]{3,})[+-]?[0-9].*");
  const char* given = std::getenv("TZ");
  if (given == nullptr) return "";
  const std::string zone = given[0] == ':' ? given + 1 : given;
  const char* directory = std::getenv("TZDIR");
  const fs::path folder = directory == nullptr ? files.zoneinfo : fs::path(directory);
  std::error_code error;
  if (zone.empty() || fs::is_regular_file(folder / zone, error)) return "";
  return std::regex_match(zone, kRule) ? "" : zone;
}

void ReloadTimeZone() {
  // The C library compares TZ with what it was, and looks no further when it is the same. So it is
  // something else for a moment.
  const char* value = std::getenv("TZ");
  const std::optional<std::string> kept = value == nullptr ? std::nullopt : std::optional(value);
  ::setenv("TZ", "UTC0", 1);
  ::tzset();
  if (kept) {
    ::setenv("TZ", kept->c_str(), 1);
  } else {
    ::unsetenv("TZ");
  }
  ::tzset();
}

std::string TimeZoneText() {
  const std::time_t now = std::time(nullptr);
  tm fields{};
  const bool known = localtime_r(&now, &fields) != nullptr;
  const std::string name = TimeZoneName();
  return (name.empty() ? "of unknown name" : Printable(name, 200)) + ", UTC" + OffsetText(now) +
         (known && fields.tm_zone != nullptr ? " (" + Printable(fields.tm_zone, 50) + ")" : "");
}

}  // namespace controller
