#include "controller/Journal.h"

#include <sstream>

#include "controller/LocalTimeText.h"

namespace controller {

namespace {

constexpr const char* kColumns =
    "id, at, kind, event, description, date, planned, drawn, reason, actor, outcome, text, before, "
    "after";

void BindOptional(SqliteStatement& statement, int index, std::optional<std::int64_t> value) {
  value ? statement.Bind(index, *value) : statement.BindNull(index);
}

JournalRow RowAt(const SqliteStatement& query) {
  JournalRow row;
  row.id = query.NumberAt(0);
  row.at = query.NumberAt(1);
  row.kind = query.TextAt(2);
  row.event = static_cast<unsigned long>(query.NumberAt(3));
  row.description = query.TextAt(4);
  if (!query.IsNullAt(5)) row.date = DayOfNumber(query.NumberAt(5));
  if (!query.IsNullAt(6)) row.planned = query.NumberAt(6);
  if (!query.IsNullAt(7)) row.drawn = query.NumberAt(7);
  row.reason = query.TextAt(8);
  row.actor = query.TextAt(9);
  row.outcome = query.TextAt(10);
  row.text = query.TextAt(11);
  row.before = query.TextAt(12);
  row.after = query.TextAt(13);
  return row;
}

/// The conditions of a query, with "?" for each value, and the values in that order.
class Conditions {
 public:
  void Add(const std::string& sql, std::int64_t value) {
    text_ += " AND " + sql;
    numbers_.emplace_back(++count_, value);
  }
  void Add(const std::string& sql, const std::string& value) {
    text_ += " AND " + sql;
    texts_.emplace_back(++count_, value);
  }
  void AddAny(const std::string& column, const std::vector<std::string>& values) {
    std::string marks;
    for (const std::string& value : values) {
      marks += marks.empty() ? "?" : ", ?";
      texts_.emplace_back(++count_, value);
    }
    text_ += " AND " + column + " IN (" + marks + ")";
  }
  const std::string& Text() const { return text_; }
  void BindTo(SqliteStatement& statement) const {
    for (const auto& [index, value] : numbers_) statement.Bind(index, value);
    for (const auto& [index, value] : texts_) statement.Bind(index, std::string_view(value));
  }

 private:
  int count_ = 0;
  std::string text_;
  std::vector<std::pair<int, std::int64_t>> numbers_;
  std::vector<std::pair<int, std::string>> texts_;
};

Conditions ConditionsOf(const JournalQuery& wanted) {
  Conditions conditions;
  if (!wanted.kinds.empty()) conditions.AddAny("kind", wanted.kinds);
  if (wanted.event) conditions.Add("event = ?", static_cast<std::int64_t>(*wanted.event));
  if (wanted.date) {
    conditions.Add("date = ?", static_cast<std::int64_t>(DayNumber(*wanted.date)));
  }
  if (wanted.from) conditions.Add("at >= ?", static_cast<std::int64_t>(*wanted.from));
  if (wanted.to) conditions.Add("at < ?", static_cast<std::int64_t>(*wanted.to));
  if (wanted.before) conditions.Add("id < ?", *wanted.before);
  if (!wanted.containing.empty()) {
    conditions.Add("instr(lower(description || char(10) || text), lower(?)) > 0",
                   wanted.containing);
  }
  return conditions;
}

}  // namespace

Journal::Journal(ProjectStore& store)
    : last_(store.Database().Number("SELECT coalesce(max(id), 0) FROM journal")) {}

void Journal::Write(ProjectStore& store, const JournalRow& row) {
  static const std::string sql =
      std::string("INSERT OR REPLACE INTO journal (") + kColumns +
      ") VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14)";
  SqliteStatement insert(store.Database(), sql.c_str());
  insert.Bind(1, row.id).Bind(2, static_cast<std::int64_t>(row.at)).Bind(3, row.kind);
  BindOptional(insert, 4,
               row.event == 0 ? std::nullopt : std::optional(static_cast<std::int64_t>(row.event)));
  insert.Bind(5, row.description);
  BindOptional(insert, 6,
               row.date ? std::optional<std::int64_t>(DayNumber(*row.date)) : std::nullopt);
  BindOptional(insert, 7, row.planned);
  BindOptional(insert, 8, row.drawn);
  insert.Bind(9, row.reason).Bind(10, row.actor).Bind(11, row.outcome).Bind(12, row.text);
  insert.Bind(13, row.before).Bind(14, row.after).Step();
}

std::vector<JournalRow> Journal::Read(ProjectStore& store, const JournalQuery& wanted) {
  const Conditions conditions = ConditionsOf(wanted);
  const std::string sql = std::string("SELECT ") + kColumns + " FROM journal WHERE 1" +
                          conditions.Text() + " ORDER BY id DESC LIMIT " +
                          std::to_string(wanted.limit);
  SqliteStatement query(store.Database(), sql.c_str());
  conditions.BindTo(query);
  std::vector<JournalRow> rows;
  while (query.Step()) rows.push_back(RowAt(query));
  return rows;
}

std::optional<std::time_t> Journal::Newest(ProjectStore& store) {
  SqliteStatement query(store.Database(), "SELECT at FROM journal ORDER BY at DESC LIMIT 1");
  if (!query.Step()) return std::nullopt;
  return query.NumberAt(0);
}

void Journal::Prune(ProjectStore& store, std::time_t now) {
  SqliteStatement(store.Database(), "DELETE FROM journal WHERE at < ?1")
      .Bind(1, static_cast<std::int64_t>(now - kKeptDays * 86400L))
      .Step();
  Bound(store);
}

void Journal::Bound(ProjectStore& store) {
  SqliteStatement(store.Database(),
                  "DELETE FROM journal WHERE id <= (SELECT max(id) FROM journal) - ?1")
      .Bind(1, kKeptRows)
      .Step();
}

}  // namespace controller
