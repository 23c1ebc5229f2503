#include "controller/cli/show/JournalText.h"

#include <vector>

#include "controller/Printable.h"
#include "controller/cli/show/MomentText.h"

namespace controller::cli {

namespace {

/// The planned time, where the row was not written at that time.
std::string PlannedText(const Json& row) {
  const std::string planned = TextField(row, "planned");
  constexpr std::size_t kToTheMinute = 16;
  if (planned.empty() ||
      planned.substr(0, kToTheMinute) == TextField(row, "at").substr(0, kToTheMinute)) {
    return {};
  }
  return "planned " + MomentText(planned);
}

}  // namespace

std::string JournalEventText(const Json& row) {
  if (!row.contains("event") || !row["event"].is_number()) return {};
  const std::string description = TextField(row, "description");
  return row["event"].dump() + (description.empty() ? "" : ' ' + Quoted(description));
}

std::string JournalWhatText(const Json& row) {
  std::vector<std::string> parts = {TextField(row, "reason"), TextField(row, "outcome"),
                                    TextField(row, "text"), PlannedText(row)};
  if (row.contains("drawn") && row["drawn"].is_number() && row["drawn"] != 0) {
    parts.push_back("drawn " + row["drawn"].dump() + " minutes");
  }
  const std::string actor = TextField(row, "actor");
  if (!actor.empty()) parts.push_back("by " + actor);
  std::string text;
  for (const std::string& part : parts) {
    if (!part.empty()) text += (text.empty() ? "" : ", ") + part;
  }
  return Printable(text);
}

Style JournalStyle(const Json& row) {
  const std::string kind = TextField(row, "kind");
  const std::string outcome = TextField(row, "outcome");
  if (kind == "missed" || outcome == "failed" || outcome == "timed-out") return Style::kBad;
  if (kind == "held" || kind == "clock") return Style::kWarning;
  if (kind == "fired") return Style::kGood;
  return Style::kPlain;
}

}  // namespace controller::cli
