#include "controller/live/ProgrammingTable.h"

#include <utility>
#include <variant>

#include "controller/Failure.h"
#include "controller/Log.h"
#include "controller/json/StrictJson.h"
#include "controller/programming/ProgrammingJson.h"

namespace controller {

std::string ProgrammingText(const Programming& programming) {
  return ProgrammingJson(programming).dump();
}

Programming ReadProgrammingText(const std::string& text) {
  const auto parsed = ParseStrictJson(text);
  if (const auto* fault = std::get_if<JsonFault>(&parsed)) throw Failure(fault->text);
  FieldErrors errors;
  Programming programming = ReadProgramming(std::get<nlohmann::json>(parsed), "", errors);
  if (!errors.empty()) throw Failure(ErrorText(errors));
  return programming;
}

ProgrammingTable::ProgrammingTable(ProjectStore& store) {
  SqliteStatement query(store.Database(), "SELECT event, body FROM programming");
  while (query.Step()) {
    const auto event = static_cast<unsigned long>(query.NumberAt(0));
    try {
      known_[event] = ReadProgrammingText(query.TextAt(1));
    } catch (const Failure& failure) {
      Log::Error("what event " + std::to_string(event) +
                 " does cannot be read, so it does nothing: " + failure.what());
      known_[event].enabled = false;
    }
  }
}

const Programming& ProgrammingTable::Of(unsigned long eventId) const {
  static const Programming plain;
  const auto found = known_.find(eventId);
  return found == known_.end() ? plain : found->second;
}

void ProgrammingTable::Set(unsigned long eventId, Programming programming) {
  if (programming.IsPlain()) return Drop(eventId);
  known_.insert_or_assign(eventId, std::move(programming));
}

void ProgrammingTable::Write(ProjectStore& store, unsigned long eventId,
                             const Programming& programming) {
  if (programming.IsPlain()) return Erase(store, eventId);
  SqliteStatement(store.Database(),
                  "INSERT INTO programming (event, body) VALUES (?1, ?2) "
                  "ON CONFLICT (event) DO UPDATE SET body = excluded.body")
      .Bind(1, static_cast<std::int64_t>(eventId))
      .Bind(2, ProgrammingText(programming))
      .Step();
}

void ProgrammingTable::Erase(ProjectStore& store, unsigned long eventId) {
  SqliteStatement(store.Database(), "DELETE FROM programming WHERE event = ?1")
      .Bind(1, static_cast<std::int64_t>(eventId))
      .Step();
}

}  // namespace controller
