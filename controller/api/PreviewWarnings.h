#pragma once

#include <ctime>
#include <string>
#include <vector>

#include "controller/api/EventProbe.h"

namespace controller {

/// Something that a user may not expect of an event.
struct PreviewWarning {
  /// "never-occurs", "past-midnight", "clock-change", "drifts", "duplicate", "ends-2038"
  std::string code;
  std::string text;
};

/// What there is to say about a well-formed event: `probe` holds it, `next` are its next
/// occurrences, ten at most, from the moment `now` on.
std::vector<PreviewWarning> PreviewWarnings(EventProbe& probe,
                                            const std::vector<ProbedOccurrence>& next,
                                            std::time_t now);

}  // namespace controller
