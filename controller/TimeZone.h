#pragma once

#include <filesystem>
#include <string>

namespace controller {

/// Where the system keeps what it knows of time zones; tests give their own.
struct ZoneFiles {
  std::filesystem::path zoneinfo = "/usr/share/zoneinfo";
  std::filesystem::path localtime = "/etc/localtime";
  std::filesystem::path timezone = "/etc/timezone";
};

/// The name of the process's time zone, "Europe/Berlin": from TZ (a name, or the path of a zone
/// file), else from where /etc/localtime points, else from /etc/timezone. A TZ that is a rule is
/// answered as it stands, "EST5EDT,M3.2.0,M11.1.0" for example. Empty where nothing tells.
std::string TimeZoneName(const ZoneFiles& files = {});

/// What TZ says where that is neither a zone that the system has nor a rule, so that the C library
/// takes UTC for it without a word; else empty.
std::string UnknownTimeZone(const ZoneFiles& files = {});

/// Makes the C library read the zone's rules anew, also where TZ is as it was and only the file
/// behind it has changed, which `tzset` alone would not notice.
void ReloadTimeZone();

/// "Europe/Berlin, UTC+01:00 (CET)", at the present moment.
std::string TimeZoneText();

}  // namespace controller
