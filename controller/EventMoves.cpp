#include "controller/EventMoves.h"

#include <cstdint>
#include <utility>
#include <vector>

#include "controller/DeletedEvents.h"
#include "controller/ScheduleReview.h"
#include "controller/ScheduleSummary.h"

namespace controller {

namespace {

std::map<std::string, unsigned long> ByDescription(
    const std::map<unsigned long, EventElement>& events) {
  std::map<std::string, unsigned long> numbers;
  for (const auto& [id, event] : events) numbers.emplace(event.description, id);
  return numbers;
}

void WriteProgramming(ProjectStore& store, unsigned long event, const std::string& body) {
  SqliteStatement(store.Database(),
                  "INSERT OR IGNORE INTO programming (event, body) VALUES (?1, ?2)")
      .Bind(1, static_cast<std::int64_t>(event))
      .Bind(2, body)
      .Step();
}

}  // namespace

std::map<unsigned long, EventElement> EventsIn(const std::string& state) {
  std::map<unsigned long, EventElement> found;
  const auto document = ParseXml(state, "the schedule");
  const VxXML::INode* events = EventsOf(*document->GetRoot());
  const VxXML::INode* event = events == nullptr ? nullptr : events->GetFirstChild();
  for (; event != nullptr; event = event->GetNextSibling()) {
    EventElement read = ReadEventElement(*event);
    const unsigned long id = read.eventid;
    found.emplace(id, std::move(read));
  }
  return found;
}

EventMoves MovesBetween(const std::map<unsigned long, EventElement>& before,
                        const std::map<unsigned long, EventElement>& after) {
  const std::map<std::string, unsigned long> numbers = ByDescription(after);
  EventMoves moves;
  for (const auto& [id, event] : before) {
    const auto same = after.find(id);
    if (same != after.end() && same->second.description == event.description) continue;
    const auto now = numbers.find(event.description);
    if (now != numbers.end()) {
      moves[id] = now->second;
    } else if (same != after.end()) {
      moves[id] = 0;
    }
  }
  return moves;
}

void MoveDecisions(ProjectStore& store, const EventMoves& moves) {
  // By way of numbers that no event has: one may move to where another has not moved away yet.
  for (const auto& [from, to] : moves) {
    if (to == 0) {
      SqliteStatement(store.Database(), "DELETE FROM decision WHERE event = ?1")
          .Bind(1, static_cast<std::int64_t>(from))
          .Step();
    } else {
      SqliteStatement(store.Database(),
                      "UPDATE OR REPLACE decision SET event = ?2 WHERE event = ?1")
          .Bind(1, static_cast<std::int64_t>(from))
          .Bind(2, -static_cast<std::int64_t>(to))
          .Step();
    }
  }
  SqliteStatement(store.Database(), "UPDATE OR REPLACE decision SET event = -event WHERE event < 0")
      .Step();
}

void MoveKeptProgramming(ProjectStore& store, const std::map<unsigned long, EventElement>& before,
                         const std::map<unsigned long, EventElement>& after) {
  const std::vector<DeletedEvent> deleted = DeletedEvents::All(store);
  std::map<unsigned long, std::string> kept;
  SqliteStatement query(store.Database(), "SELECT event, body FROM programming");
  while (query.Step()) kept[static_cast<unsigned long>(query.NumberAt(0))] = query.TextAt(1);
  SqliteStatement(store.Database(), "DELETE FROM programming").Step();
  const std::map<std::string, unsigned long> numbers = ByDescription(after);
  for (const auto& [id, body] : kept) {
    const auto event = before.find(id);
    if (event == before.end()) continue;
    const auto same = after.find(id);
    const auto now = numbers.find(event->second.description);
    if (same != after.end() && same->second.description == event->second.description) {
      WriteProgramming(store, id, body);
    } else if (now != numbers.end()) {
      WriteProgramming(store, now->second, body);
    } else {
      DeletedEvents::Write(store, {id, MakeEventElement(event->second)->ToString(), body});
    }
  }
  for (const DeletedEvent& each : deleted) {
    const auto event = after.find(each.event);
    if (event == after.end()) continue;
    const auto document = ParseXml(each.xml, "the deleted event");
    if (document->GetRoot()->GetText("description") != event->second.description) continue;
    WriteProgramming(store, each.event, each.programming);
    DeletedEvents::Erase(store, each.event);
  }
}

}  // namespace controller
