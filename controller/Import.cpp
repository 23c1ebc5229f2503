#include <ctime>
#include <map>
#include <optional>
#include <ostream>

#include "controller/Commands.h"
#include "controller/Committer.h"
#include "controller/EventMoves.h"
#include "controller/Files.h"
#include "controller/HousePlace.h"
#include "controller/Journal.h"
#include "controller/Printable.h"
#include "controller/ProjectLock.h"
#include "controller/ProjectPath.h"
#include "controller/ProjectVariables.h"
#include "controller/ScheduleReview.h"
#include "controller/ScheduleSummary.h"
#include "controller/ScratchAgent.h"

namespace controller {

namespace {

constexpr std::size_t kLargestFile = 256UL * 1024 * 1024;

const char* Word(Finding::Kind kind) {
  switch (kind) {
    case Finding::Kind::kDropped:
      return "dropped: ";
    case Finding::Kind::kChanged:
      return "changed: ";
    default:
      return "note: ";
  }
}

void Tell(const ScheduleReview& review, std::ostream& out) {
  for (const Finding& finding : review.whole) out << Word(finding.kind) << finding.text << '\n';
  for (const ReviewedEvent& event : review.events) {
    for (const Finding& finding : event.findings) {
      out << "child " << event.position << ", " << EventName(event.eventid, event.description)
          << ": " << Word(finding.kind) << finding.text << '\n';
    }
  }
}

/// Wrappers that do not count are lost too, with all that is in them.
std::size_t CountDropped(const ScheduleReview& review) {
  std::size_t dropped = review.Count(Finding::Kind::kDropped);
  for (const Finding& finding : review.whole) {
    if (finding.kind == Finding::Kind::kDropped) ++dropped;
  }
  return dropped;
}

std::size_t CountEvents(const std::string& state) {
  const auto document = ParseXml(state, "the scheduler's own state");
  const VxXML::INode* events = EventsOf(*document->GetRoot());
  std::size_t count = 0;
  const VxXML::INode* event = events == nullptr ? nullptr : events->GetFirstChild();
  for (; event != nullptr; event = event->GetNextSibling()) ++count;
  return count;
}

/// What the scheduler makes of the whole, which is what is kept. `expected` is how many events the
/// review has found to be good; if the scheduler has another opinion nothing may be replaced.
std::string StateToKeep(const std::string& text, const DriverLoader& loader, const Place& place,
                        std::size_t expected) {
  ScratchAgent scratch(loader, place);
  std::string state = ReadableState(scratch.StateAfterLoading(text));
  const std::size_t kept = CountEvents(state);
  if (kept == expected) return state;
  throw Failure("the scheduler keeps " + CountText(kept, "event") + " of this schedule where " +
                std::to_string(expected) + " were expected; nothing was imported");
}

/// Nothing where there is no schedule, or none that can be read: then nobody knows whose is what
/// the project holds besides.
std::optional<std::map<unsigned long, EventElement>> EventsBefore(ProjectStore& store) {
  const auto stored = store.State(kSchedulerName);
  if (!stored) return std::nullopt;
  try {
    return EventsIn(stored->xml);
  } catch (const Failure&) {
    return std::nullopt;
  }
}

void Replace(const ImportOptions& options, const DriverLoader& loader, const std::string& text,
             std::size_t expected) {
  const ProjectLock lock(PreparedProject(options.project), "import");
  ProjectStore store(options.project, ProjectStore::Use::kKeep);
  const HousePlace place = FindHousePlace(store, std::nullopt);
  const std::string state = StateToKeep(text, loader, place.place, expected);
  const auto before = EventsBefore(store);
  const auto after = EventsIn(state);
  store.ReplaceState(kSchedulerName, state, "replaced by an import", [&] {
    if (!before) return;
    MoveDecisions(store, MovesBetween(*before, after));
    MoveKeptProgramming(store, *before, after);
    JournalRow row;
    row.id = Journal(store).NextId();
    row.at = std::time(nullptr);
    row.kind = "change";
    row.reason = "imported";
    row.actor = "local";
    row.text = "replaced by an import: " + CountText(before->size(), "event") + " before, " +
               CountText(after.size(), "event") + " now";
    Journal::Write(store, row);
  });
}

}  // namespace

ExitStatus RunImport(const ImportOptions& options, std::ostream& out) {
  const std::string text = ReadWhole(options.file, kLargestFile);
  const std::string name = options.file == "-" ? "standard input" : Quoted(options.file);
  vx::auto_com<VxXML::IDocument> document;
  try {
    document = ParseXml(text, name);
    EventsOf(*document->GetRoot());
  } catch (const Failure& failure) {
    throw Failure(std::string(failure.what()) + "; nothing was imported", ExitStatus::kBadInput);
  }
  const auto loader = LoadDriver(options.agent);
  const ScheduleReview review = ReviewSchedule(*document->GetRoot(), *loader, kGreenwich);
  Tell(review, out);

  const std::size_t dropped = CountDropped(review);
  const std::size_t kept = review.events.size() - review.Count(Finding::Kind::kDropped);
  out << CountText(review.events.size(), "event") << " read, " << kept << " to keep, " << dropped
      << " to be dropped\n";
  if (dropped > 0 && !options.force) {
    throw Failure(
        CountText(dropped, "event") +
        " would be dropped, so nothing was imported; correct the file, or give --force to "
        "import the others");
  }
  if (options.dryRun) {
    out << "nothing was imported (--dry-run)\n";
    return ExitStatus::kOk;
  }
  Replace(options, *loader, text, kept);
  out << CountText(kept, "event") << " imported into " << Quoted(options.project.string())
      << "; the schedule before, if there was one, is kept: \"vexalink export --backup 1\"\n";
  return ExitStatus::kOk;
}

}  // namespace controller
