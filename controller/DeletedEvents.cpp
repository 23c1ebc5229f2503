#include "controller/DeletedEvents.h"

#include <ctime>

namespace controller {

namespace {

constexpr std::int64_t kKept = 1000;

DeletedEvent RowOf(SqliteStatement& query) {
  return {static_cast<unsigned long>(query.NumberAt(0)), query.TextAt(1), query.TextAt(2)};
}

}  // namespace

void DeletedEvents::Write(ProjectStore& store, const DeletedEvent& deleted) {
  SqliteStatement(store.Database(),
                  "INSERT OR REPLACE INTO deleted_event (event, at, xml, programming) "
                  "VALUES (?1, ?2, ?3, ?4)")
      .Bind(1, static_cast<std::int64_t>(deleted.event))
      .Bind(2, static_cast<std::int64_t>(std::time(nullptr)))
      .Bind(3, deleted.xml)
      .Bind(4, deleted.programming)
      .Step();
  SqliteStatement(store.Database(),
                  "DELETE FROM deleted_event WHERE event NOT IN "
                  "(SELECT event FROM deleted_event ORDER BY at DESC, event DESC LIMIT ?1)")
      .Bind(1, kKept)
      .Step();
}

std::optional<DeletedEvent> DeletedEvents::Find(ProjectStore& store, unsigned long event) {
  SqliteStatement query(store.Database(),
                        "SELECT event, xml, programming FROM deleted_event WHERE event = ?1");
  if (!query.Bind(1, static_cast<std::int64_t>(event)).Step()) return std::nullopt;
  return RowOf(query);
}

std::vector<DeletedEvent> DeletedEvents::All(ProjectStore& store) {
  SqliteStatement query(store.Database(), "SELECT event, xml, programming FROM deleted_event");
  std::vector<DeletedEvent> all;
  while (query.Step()) all.push_back(RowOf(query));
  return all;
}

void DeletedEvents::Erase(ProjectStore& store, unsigned long event) {
  SqliteStatement(store.Database(), "DELETE FROM deleted_event WHERE event = ?1")
      .Bind(1, static_cast<std::int64_t>(event))
      .Step();
}

}  // namespace controller
