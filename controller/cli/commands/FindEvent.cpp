#include "controller/cli/commands/FindEvent.h"

#include <CLI/CLI.hpp>
#include <vector>

#include "controller/Failure.h"
#include "controller/Printable.h"
#include "controller/cli/parse/TextParts.h"
#include "controller/cli/show/EventText.h"

namespace controller::cli {

namespace {

constexpr long kLargestId = 1000000000000000;
constexpr std::size_t kMostListed = 10;

std::string DescriptionOf(const Json& event) { return TextField(event, "description"); }

std::string Candidates(const std::vector<Json>& events) {
  std::string text;
  for (std::size_t i = 0; i < events.size() && i < kMostListed; ++i) {
    text +=
        (i == 0 ? "" : ", ") + events[i].at("id").dump() + ' ' + Quoted(DescriptionOf(events[i]));
  }
  const std::size_t more = events.size() > kMostListed ? events.size() - kMostListed : 0;
  return more == 0 ? text : text + " and " + std::to_string(more) + " more";
}

[[noreturn]] void FailToFind(const std::string& problem) {
  throw Failure(problem, ExitStatus::kNoSuchEvent);
}

/// Null where there is none.
Json FindById(Api& api, const std::string& id) {
  try {
    return api.Get("/events/" + id);
  } catch (const Failure& failure) {
    if (failure.Status() != ExitStatus::kNoSuchEvent) throw;
    return nullptr;
  }
}

/// The one among them whose whole description is `name`, or null.
const Json* WholeMatch(const std::vector<Json>& events, const std::string& name) {
  for (const Json& event : events) {
    if (DescriptionOf(event) == name) return &event;
  }
  const Json* found = nullptr;
  for (const Json& event : events) {
    if (LowerCase(DescriptionOf(event)) != LowerCase(name)) continue;
    if (found != nullptr) return nullptr;
    found = &event;
  }
  return found;
}

}  // namespace

Json FindEvent(Api& api, const std::string& name, Naming naming) {
  if (ReadNumber(name, kLargestId)) {
    Json event = FindById(api, name);
    if (!event.is_null()) return event;
    naming = Naming::kWhole;  // a description may be a number; a part of one is none
  }
  if (name.empty()) FailToFind("the event's name is empty; give its id or its description");
  const auto events = api.Events(name).at("events").get<std::vector<Json>>();
  if (const Json* event = WholeMatch(events, name)) return *event;
  if (events.size() == 1 && naming == Naming::kPart) return events.front();
  if (events.empty()) {
    FailToFind("there is no event " + Quoted(name) +
               "; \"vexalink list\" shows those that there are");
  }
  if (naming == Naming::kWhole) {
    FailToFind("no event is called just " + Quoted(name) + "; there is " + Candidates(events) +
               "; give an id or a whole description");
  }
  FailToFind(Quoted(name) + " may mean " + Candidates(events) + "; give the id");
}

CLI::Option* AddEventArgument(CLI::App& command, std::string& event) {
  return command
      .add_option("EVENT", event, "Its id, its description, or a part of that which no other has")
      ->required();
}

CLI::Option* AddEventArguments(CLI::App& command, std::vector<std::string>& events) {
  return command
      .add_option("EVENT", events, "Ids, descriptions, or parts of them which no other has")
      ->required();
}

std::string EventPath(const Json& event, const std::string& more) {
  return "/events/" + event.at("id").dump() + more;
}

}  // namespace controller::cli
