#pragma once

#include <map>
#include <string>
#include <vector>

/// A calendar as a reader of RFC 5545 understands it.
struct ReadCalendar {
  /// What is against the rules; empty where nothing is.
  std::vector<std::string> faults;
  /// The properties of the calendar itself, and of each entry, their values as texts.
  std::map<std::string, std::string> head;
  std::vector<std::map<std::string, std::string>> events;
};

/// Reads a stream strictly: line ends, folding, UTF-8, nesting, what each component must have and
/// may have once, the forms of times, and that no two entries have one UID.
ReadCalendar ReadCalendarText(const std::string& stream);
