// /journal: what has happened.

#include <algorithm>
#include <limits>

#include "controller/LocalTimeText.h"
#include "controller/Printable.h"
#include "controller/api/ApiContext.h"
#include "controller/api/JsonText.h"
#include "controller/api/Moments.h"
#include "controller/json/ObjectReader.h"

namespace controller {

namespace {

constexpr long kMostRows = 1000;
constexpr long kUsualRows = 100;
const std::vector<std::string> kKinds = {"fired",  "held",  "missed",    "action",
                                         "change", "clock", "controller"};

/// A date or a moment. A date means the beginning of that day, or its end.
std::optional<std::time_t> ReadMoment(QueryReader& query, const char* name, bool end) {
  const auto text = query.Text(name);
  if (!text) return std::nullopt;
  if (const auto day = ReadDay(*text)) return LocalInstant(end ? DaysAfter(*day, 1) : *day, 0, 0);
  if (const auto moment = ParseMoment(*text)) return moment;
  QueryReader::Refuse(name, *text,
                      "a date such as 2026-11-21 or a moment such as 2026-11-21T16:04:00+01:00 "
                      "(in a URL a + is written %2B)");
}

JournalQuery ReadQuery(const HttpRequest& request) {
  QueryReader query(request);
  JournalQuery wanted;
  wanted.kinds = query.Texts("kind");
  for (const std::string& kind : wanted.kinds) {
    if (std::find(kKinds.begin(), kKinds.end(), kind) != kKinds.end()) continue;
    std::string names;
    for (const std::string& name : kKinds) names += (names.empty() ? "" : ", ") + name;
    QueryReader::Refuse("kind", kind, "one of " + names);
  }
  if (const auto id = query.Whole("event", 1, std::numeric_limits<long>::max())) {
    wanted.event = static_cast<unsigned long>(*id);
  }
  wanted.from = ReadMoment(query, "from", /*end=*/false);
  wanted.to = ReadMoment(query, "to", /*end=*/true);
  if (wanted.from && wanted.to && *wanted.to <= *wanted.from) {
    QueryReader::Refuse("to", *query.Text("to"), "a day or a time that is not before \"from\"");
  }
  wanted.containing = query.Text("q").value_or("");
  wanted.before = query.Whole("before", 1, std::numeric_limits<long>::max());
  wanted.limit = static_cast<std::size_t>(query.Whole("limit", 1, kMostRows).value_or(kUsualRows));
  query.NoOthers();
  return wanted;
}

void GetJournal(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  JournalQuery wanted = ReadQuery(request);
  const std::size_t limit = wanted.limit++;  // one more tells whether there is another page
  std::vector<JournalRow> rows = api.house.Rows(wanted);
  const bool more = rows.size() > limit;
  if (more) rows.resize(limit);
  auto list = nlohmann::ordered_json::array();
  for (const JournalRow& row : rows) list.push_back(JournalRowJson(row));
  nlohmann::ordered_json body;
  body["rows"] = std::move(list);
  body["next"] = more ? nlohmann::ordered_json(rows.back().id) : nlohmann::ordered_json(nullptr);
  respond(JsonAnswer(body));
}

void AddText(nlohmann::ordered_json& json, const char* name, const std::string& text) {
  if (!text.empty()) json[name] = ValidUtf8(text);
}

/// JSON that is kept as text.
void AddDocument(nlohmann::ordered_json& json, const char* name, const std::string& text) {
  if (text.empty()) return;
  auto document = nlohmann::ordered_json::parse(text, nullptr, /*allow_exceptions=*/false);
  json[name] =
      document.is_discarded() ? nlohmann::ordered_json(ValidUtf8(text)) : std::move(document);
}

}  // namespace

nlohmann::ordered_json JournalRowJson(const JournalRow& row) {
  nlohmann::ordered_json json;
  json["id"] = row.id;
  json["at"] = MomentJson(row.at);
  json["kind"] = row.kind;
  if (row.event != 0) json["event"] = row.event;
  AddText(json, "description", row.description);
  if (row.date) json["date"] = DayText(*row.date);
  if (row.planned) json["planned"] = MomentJson(row.planned);
  if (row.drawn) json["drawn"] = *row.drawn;
  AddText(json, "reason", row.reason);
  AddText(json, "actor", row.actor);
  AddText(json, "outcome", row.outcome);
  AddText(json, "text", row.text);
  AddDocument(json, "before", row.before);
  AddDocument(json, "after", row.after);
  return json;
}

void AddJournalRoutes(Routes& routes, const SharedContext& api) {
  AddRoute(routes, "GET", "/journal", Role::kView, BodyKind::kNone, Handle(api, GetJournal));
}

}  // namespace controller
