#include "controller/ScheduleReview.h"

#include <algorithm>
#include <limits>
#include <map>
#include <optional>

#include "controller/EventChecks.h"
#include "controller/Failure.h"
#include "controller/NumberText.h"
#include "controller/Printable.h"
#include "controller/ScratchAgent.h"

namespace controller {

namespace {

/// The scheduler keeps events of this description to itself: they never reach its persisted state.
constexpr const char* kNeverPersisted = "hostcore_mediascan_event";

using Positions = std::map<unsigned long, std::size_t>;

std::optional<std::string> WhyNoId(const VxXML::INode& event) {
  const VxXML::INode* id = event.GetChild("eventid");
  if (id == nullptr) return "it has no eventid; give it a number of its own";
  if (id->GetUnsigned() != 0) return std::nullopt;
  const std::string text = id->GetText();
  return "its eventid is " + Quoted(text) +
         (FormOf(text) == NumberForm::kNumber ? ", which means none" : ", which is no number") +
         "; give it a number of its own, 1 or more";
}

std::optional<std::string> WhyNotLoaded(const VxXML::INode& child, const Positions& taken) {
  if (!child.IsNamed("event")) {
    return "it is an element " + Quoted(child.GetName()) + "; only \"event\" elements count";
  }
  if (auto why = WhyNoId(child)) return why;
  const unsigned long id = child.GetUnsigned("eventid");
  const auto first = taken.find(id);
  if (first == taken.end()) return std::nullopt;
  return "eventid " + std::to_string(id) + " is that of child " + std::to_string(first->second) +
         " already; give it a number of its own";
}

void CheckWrapper(const VxXML::INode& root, ScheduleReview& review) {
  using Kind = Finding::Kind;
  if (!root.IsNamed("event_data")) return;
  bool seenEvents = false;
  for (const VxXML::INode* child = root.GetFirstChild(); child; child = child->GetNextSibling()) {
    if (child->IsNamed("current_id")) continue;
    if (!child->IsNamed("events")) {
      Add(review.whole, Kind::kChanged,
          "the element " + Quoted(child->GetName()) + " in \"event_data\" is not kept");
    } else if (std::exchange(seenEvents, true)) {
      Add(review.whole, Kind::kDropped, "a second \"events\" in \"event_data\" does not count");
    }
  }
  if (!seenEvents) Add(review.whole, Kind::kNote, "\"event_data\" has no \"events\" in it");
}

void CheckCurrentId(const VxXML::INode& root, ScheduleReview& review) {
  const VxXML::INode* given = root.IsNamed("event_data") ? root.GetChild("current_id") : nullptr;
  if (given == nullptr) return;
  const std::string text = given->GetText();
  unsigned long largest = 0;
  for (const ReviewedEvent& event : review.events) {
    if (!event.Has(Finding::Kind::kDropped)) largest = std::max(largest, event.eventid);
  }
  if (FormOf(text) != NumberForm::kNumber) {
    Add(review.whole, Finding::Kind::kChanged, "current_id is " + Quoted(text) + ", no number");
  } else if (given->GetUnsigned() < largest) {
    Add(review.whole, Finding::Kind::kChanged,
        "current_id " + text + " becomes " + std::to_string(largest) + ", the largest id in use");
  }
}

void CheckDescriptions(std::vector<ReviewedEvent>& events) {
  std::map<std::string, std::size_t> first;
  for (ReviewedEvent& event : events) {
    if (event.Has(Finding::Kind::kDropped) || event.description.empty()) continue;
    const auto [known, isNew] = first.emplace(event.description, event.position);
    if (isNew) continue;
    Add(event.findings, Finding::Kind::kNote,
        "its description is that of event " + std::to_string(known->second) +
            " too; both are kept, but no further event of that description can be added");
  }
}

void AskScheduler(ScratchAgent& scratch, const VxXML::INode& child, ReviewedEvent& event) {
  if (event.eventid > static_cast<unsigned long>(std::numeric_limits<long>::max())) {
    return Add(
        event.findings, Finding::Kind::kNote,
        "its eventid is so large that it can be neither shown nor deleted, and that no event "
        "may be addable after it; give a smaller one");
  }
  const ScratchAgent::Answer answer = scratch.Offer(child);
  for (const std::string& assertion : answer.assertions) {
    Add(event.findings, Finding::Kind::kNote, "the scheduler objects to it (" + assertion + ")");
  }
  if (!answer.stored) {
    Add(event.findings, Finding::Kind::kDropped, "the scheduler does not take it");
    return;
  }
  CheckChanges(child, *answer.stored, event.findings);
  CheckMeaning(ReadEventElement(*answer.stored), event.findings);
}

}  // namespace

bool ReviewedEvent::Has(Finding::Kind kind) const {
  return std::any_of(findings.begin(), findings.end(),
                     [&](const Finding& finding) { return finding.kind == kind; });
}

std::size_t ScheduleReview::Count(Finding::Kind kind) const {
  return static_cast<std::size_t>(std::count_if(
      events.begin(), events.end(), [&](const ReviewedEvent& event) { return event.Has(kind); }));
}

const VxXML::INode* EventsOf(const VxXML::INode& root) {
  if (root.IsNamed("events")) return &root;
  if (root.IsNamed("event_data")) return root.GetChild("events");
  throw Failure("the outermost element is " + Quoted(root.GetName()) +
                    "; a schedule is an \"event_data\" element, or the older \"events\"",
                ExitStatus::kBadInput);
}

std::vector<ReviewedEvent> ReviewLoading(const VxXML::INode& events) {
  std::vector<ReviewedEvent> reviewed;
  Positions taken;
  for (const VxXML::INode* child = events.GetFirstChild(); child; child = child->GetNextSibling()) {
    ReviewedEvent event;
    event.position = reviewed.size() + 1;
    event.eventid = child->GetUnsigned("eventid");
    event.description = child->GetText("description");
    if (const auto why = WhyNotLoaded(*child, taken)) {
      Add(event.findings, Finding::Kind::kDropped, *why);
    } else {
      taken.emplace(event.eventid, event.position);
    }
    reviewed.push_back(std::move(event));
  }
  return reviewed;
}

ScheduleReview ReviewSchedule(const VxXML::INode& root, const DriverLoader& loader,
                              const Place& place) {
  ScheduleReview review;
  CheckWrapper(root, review);
  const VxXML::INode* events = EventsOf(root);
  if (events != nullptr) review.events = ReviewLoading(*events);
  ScratchAgent scratch(loader, place);
  const VxXML::INode* child = events == nullptr ? nullptr : events->GetFirstChild();
  for (ReviewedEvent& event : review.events) {
    if (event.description == kNeverPersisted && !event.Has(Finding::Kind::kDropped)) {
      Add(event.findings, Finding::Kind::kDropped,
          std::string("events described \"") + kNeverPersisted + "\" are never kept");
    }
    if (!event.Has(Finding::Kind::kDropped)) AskScheduler(scratch, *child, event);
    child = child->GetNextSibling();
  }
  CheckDescriptions(review.events);
  CheckCurrentId(root, review);
  return review;
}

}  // namespace controller
