#pragma once

#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "controller/Failure.h"
#include "controller/Place.h"

namespace controller {

/// `vexalink serve`: what was asked for.
struct ServeOptions {
  std::filesystem::path project;
  std::string agent;
  /// Kept in the project where it is given.
  std::optional<Place> place;
  /// A new project starts without events.
  bool empty = false;
  /// Start at once, also where the clock is behind the newest row of the journal.
  bool trustClock = false;
  /// Where to listen; nothing: 127.0.0.1:7440, if that is free.
  std::vector<std::string> listen;
  /// Further names under which the controller is reached.
  std::vector<std::string> allowedHosts;
  /// Whether to listen at all.
  bool http = true;
  /// Where what the scheduler is called with is recorded; nothing: it is not.
  std::optional<std::filesystem::path> record;
  /// Where what the scheduler itself has called is written, beside a record.
  std::optional<std::filesystem::path> transcript;
};

/// `vexalink import`: what was asked for.
struct ImportOptions {
  /// "-" is standard input.
  std::string file;
  std::filesystem::path project;
  std::string agent;
  bool dryRun = false;
  /// Import also where events would be lost.
  bool force = false;
};

/// `vexalink export`: what was asked for.
struct ExportOptions {
  std::filesystem::path project;
  /// "-" is standard output.
  std::string file = "-";
  /// Not the present schedule but one that was put aside, 1 for the newest.
  std::optional<unsigned> backup;
};

/// Runs a controller until it is told to end. Logs; throws nothing.
ExitStatus RunServe(const ServeOptions& options);

/// Checks a schedule, tells on `out` what of it would be lost or become another, and makes it the
/// project's, all of it or nothing. Throws a `Failure`.
ExitStatus RunImport(const ImportOptions& options, std::ostream& out);

/// Writes a schedule as it is kept. A file is there whole or not at all. Throws a `Failure`.
ExitStatus RunExport(const ExportOptions& options);

}  // namespace controller
