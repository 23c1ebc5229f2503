#pragma once

#include <filesystem>
#include <optional>
#include <ostream>
#include <string>

#include "controller/Failure.h"
#include "controller/Place.h"

namespace controller {

/// `vexalink simulate`: what was asked for.
struct SimulateOptions {
  enum class Form { kTable, kJson, kCalendar };

  std::filesystem::path project;
  std::string agent;
  std::optional<std::string> from;
  std::optional<std::string> to;
  /// In place of the project's own.
  std::optional<Place> place;
  std::optional<unsigned long> event;
  Form form = Form::kTable;
};

/// Lives through a span of days of a project's schedule and writes to `out` what would happen. The
/// project may be in use, and stays as it is. Throws a `Failure`.
ExitStatus RunSimulate(const SimulateOptions& options, std::ostream& out);

}  // namespace controller
