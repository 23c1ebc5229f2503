// What is not about one event: the house, its day, its journal.

#include <cctype>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

#include "ApiClient.h"
#include "controller/ProjectVariables.h"
#include "tests/support/TestClock.h"

namespace {

using namespace controller;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

class HouseResource : public testing::Test {
 protected:
  const ZoneScope zone{"CET-1CEST,M3.5.0,M10.5.0/3"};
  const TestClock clock{"2026-11-20 12:00:00"};
  FakeHouse house;
  ApiClient client{house};
};

TEST_F(HouseResource, TellsWhatTheProjectIs) {
  const json project = client.Get("/project").Json();
  EXPECT_EQ(project["id"].get<std::string>().size(), 32u);
  EXPECT_EQ(project["name"], "Home");
  EXPECT_EQ(project["place"],
            (json{{"latitude", 52.5}, {"longitude", 13.3667}, {"guessed", false}}));
  EXPECT_EQ(project["away_until"], nullptr);
  EXPECT_EQ(project["now"], "2026-11-20T12:00:00+01:00");
  EXPECT_EQ(project["timezone"], (json{{"name", "CET-1CEST,M3.5.0,M10.5.0/3"},
                                       {"abbreviation", "CET"},
                                       {"offset", "+01:00"}}));
  EXPECT_EQ(project["events"], 0);
}

TEST_F(HouseResource, ChangesWhatAPatchNames) {
  const auto patch = [this](const char* body) { return client.Ask("PATCH", "/project", body); };
  EXPECT_EQ(patch(R"({"name":"Summer house"})").Json()["name"], "Summer house");
  EXPECT_EQ(patch(R"({"place":{"latitude":53}})").Json()["place"]["longitude"], 13.3667);
  EXPECT_EQ(house.place.place.latitude, 53);
  EXPECT_EQ(patch(R"({"away_until":"2026-12-24"})").Json()["away_until"], "2026-12-24");
  EXPECT_EQ(patch("{}").Json()["away_until"], "2026-12-24");
  EXPECT_EQ(patch(R"({"away_until":null})").Json()["away_until"], nullptr);
}

TEST_F(HouseResource, RefusesWhatIsNoPlaceOrName) {
  const struct {
    const char* body;
    const char* pointer;
  } rows[] = {
      {R"({"name":""})", "/name"},
      {R"({"name":null})", "/name"},
      {R"({"name":"a\tb"})", "/name"},
      {R"({"place":null})", "/place"},
      {R"({"place":[52,13]})", "/place"},
      {R"({"place":{"latitude":90.1}})", "/place/latitude"},
      {R"({"place":{"latitude":"52"}})", "/place/latitude"},
      {R"({"place":{"longitude":-180.5}})", "/place/longitude"},
      {R"({"place":{"longitude":null}})", "/place/longitude"},
      {R"({"place":{"guessed":true}})", "/place/guessed"},
      {R"({"away_until":"2026-02-30"})", "/away_until"},
      {R"({"away_until":"2026-11-20"})", "/away_until"},
      {R"({"now":"2026-11-20T12:00:00+01:00"})", "/now"},
      {R"({"id":"x"})", "/id"},
  };
  for (const auto& row : rows) {
    const auto answer = client.Ask("PATCH", "/project", row.body);
    EXPECT_EQ(answer.status, 422) << row.body;
    EXPECT_NE(answer.Error(row.pointer), "") << row.body << answer.text;
  }
  EXPECT_EQ(client.Ask("PATCH", "/project", R"({"id":"x"})").Error("/id"),
            "is not known here; there are away_until, name, place");
  EXPECT_FALSE(house.patched);
}

TEST_F(HouseResource, ProjectTagStandsForWhatCanBeChanged) {
  const std::string tag = client.Get("/project").headers.at("ETag");
  const auto patch = [&](const char* name) {
    return client.Ask("PATCH", "/project", std::string(R"({"name":")") + name + "\"}",
                      {{"if-match", tag}});
  };
  EXPECT_EQ(patch("A").status, 200);
  EXPECT_EQ(patch("B").status, 412);
}

TEST_F(HouseResource, WhoMayNotEditMayStillBeAway) {
  client.role = Role::kOperate;
  EXPECT_EQ(client.Ask("PATCH", "/project", R"({"away_until":"2026-12-24"})").status, 200);
  EXPECT_EQ(client.Ask("PATCH", "/project", R"({"name":"x"})").Problem(), "forbidden");
  EXPECT_EQ(client.Ask("PATCH", "/project", R"({"place":{"latitude":1}})").Problem(), "forbidden");
}

TEST_F(HouseResource, KnowsTheCitiesOfTheZoneTable) {
  const json cities = client.Get("/project/cities").Json()["cities"];
  EXPECT_GT(cities.size(), 300u);
  const auto found = std::find_if(cities.begin(), cities.end(),
                                  [](const json& city) { return city["city"] == "Berlin"; });
  ASSERT_NE(found, cities.end());
  EXPECT_EQ((*found)["zone"], "Europe/Berlin");
  EXPECT_EQ((*found)["country"], "Germany");
  EXPECT_NEAR((*found)["latitude"].get<double>(), 52.5, 0.1);
  EXPECT_NE(std::find_if(cities.begin(), cities.end(),
                         [](const json& city) { return city["city"] == "Buenos Aires"; }),
            cities.end());
}

TEST_F(HouseResource, SetsVariables) {
  const auto put = client.Ask("PUT", "/variables/1/2001", R"({"value":"on"})");
  EXPECT_EQ(put.Json(), (json{{"device", 1}, {"variable", 2001}, {"value", "on"}}));
  EXPECT_EQ(client.Get("/variables").Json(),
            (json{{"variables", {{{"device", 1}, {"variable", 2001}, {"value", "on"}}}}}));
  EXPECT_THAT(client.Ask("PUT", "/variables/1/1001", R"({"value":"1"})")
                  .Json()["detail"]
                  .get<std::string>(),
              HasSubstr("place of the house"));
  EXPECT_EQ(client.Ask("PUT", "/variables/1/7", R"({"value":1})").Problem(), "invalid");
  EXPECT_EQ(client.Ask("PUT", "/variables/1/x", R"({"value":"1"})").Problem(), "not-found");
}

TEST_F(HouseResource, TellsWhatOccursToday) {
  PlannedOccurrence fired;
  fired.event = 7;
  fired.description = "Porch";
  fired.planned = Local("2026-11-20 16:04:00");
  fired.due = fired.planned - 3 * 60 + 40;
  fired.base = OffsetBase::kSunset;
  fired.state = OccurrenceState::kHeld;
  fired.reason = "paused";
  fired.journalRow = 12;
  PlannedOccurrence pending;
  pending.event = 8;
  pending.planned = Local("2026-11-20 22:00:00");
  house.today = {fired, pending};
  const json today = client.Get("/today").Json();
  EXPECT_EQ(today["date"], "2026-11-20");
  EXPECT_EQ(today["occurrences"][0], json::parse(R"({"event":7,"description":"Porch",
      "base":"sunset","planned":"2026-11-20T16:04:00+01:00","due":"2026-11-20T16:01:40+01:00",
      "drawn":-3,"state":"held","reason":"paused","journal":12})"));
  EXPECT_EQ(today["occurrences"][1], json::parse(R"({"event":8,"description":"","base":"clock",
      "planned":"2026-11-20T22:00:00+01:00","due":null,"drawn":null,"state":"pending",
      "reason":null,"journal":null})"));
}

TEST_F(HouseResource, TellsWhatHasHappenedPageByPage) {
  JournalRow row;
  row.at = Local("2026-11-20 11:00:00");
  row.kind = "fired";
  row.event = 7;
  row.description = "Porch";
  row.date = DayFields{2026, 11, 20};
  row.planned = row.at - 60;
  row.drawn = -2;
  row.reason = "timer";
  row.after = R"({"b":1,"a":2})";
  for (int id = 5; id >= 1; --id) {
    row.id = id;
    house.rows.push_back(row);
  }
  const json page = client.Get("/journal?limit=2").Json();
  EXPECT_EQ(page["next"], 4);
  ASSERT_EQ(page["rows"].size(), 2u);
  EXPECT_EQ(page["rows"][0], json::parse(R"({"id":5,"at":"2026-11-20T11:00:00+01:00",
      "kind":"fired","event":7,"description":"Porch","date":"2026-11-20",
      "planned":"2026-11-20T10:59:00+01:00","drawn":-2,"reason":"timer","after":{"b":1,"a":2}})"));
  EXPECT_EQ(client.Get("/journal?limit=5").Json()["next"], nullptr);
}

TEST_F(HouseResource, AsksTheJournalForWhatIsWanted) {
  client.Get("/journal?kind=fired&kind=held&event=7&from=2026-11-20&to=2026-11-20&q=por&before=9");
  ASSERT_TRUE(house.asked);
  EXPECT_THAT(house.asked->kinds, ElementsAre("fired", "held"));
  EXPECT_EQ(house.asked->event, 7u);
  EXPECT_EQ(house.asked->from, Local("2026-11-20"));
  EXPECT_EQ(house.asked->to, Local("2026-11-21")) << "that day included";
  EXPECT_EQ(house.asked->containing, "por");
  EXPECT_EQ(house.asked->before, 9);
  client.Get("/journal?from=2026-11-20T11:00:00Z&to=2026-11-20T13:30:00.5+01:00");
  EXPECT_EQ(house.asked->from, Local("2026-11-20 12:00:00"));
  for (const char* query :
       {"kind=x", "event=0", "from=yesterday", "from=2026-11-20T25:00:00Z", "from=2026-11-20T11:00",
        "to=2026-02-30T00:00:00Z", "from=2026-11-20&to=2026-11-18", "before=0", "limit=0",
        "limit=1001", "page=2"}) {
    EXPECT_EQ(client.Get(std::string("/journal?") + query).Problem(), "malformed") << query;
  }
}

TEST_F(HouseResource, TellsHowItIs) {
  client.Post("/events", R"({"description":"Porch","time":{"base":"clock","at":"18:00"}})");
  client.Post("/events", R"({"description":"Gate","time":{"base":"clock","at":"17:00"}})");
  house.counters.fired["timer"] = 3;
  house.counters.clockJumps = 1;
  json status = client.Get("/status").Json();
  EXPECT_EQ(status["now"], "2026-11-20T12:00:00+01:00");
  EXPECT_EQ(status["events"], 2);
  EXPECT_EQ(status["next"],
            (json{{"event", 2}, {"description", "Gate"}, {"time", "2026-11-20T17:00:00+01:00"}}));
  client.Ask("PATCH", "/events/2/programming", R"({"enabled":false})");
  EXPECT_EQ(client.Get("/status").Json()["next"]["event"], 1) << "a disabled one does nothing";
  EXPECT_EQ(status["saving"], (json{{"ok", true}}));
  EXPECT_EQ(status["counts"]["fired"]["timer"], 3);
  EXPECT_EQ(status["clock"]["jumps"], 1);
  house.savingTrouble = "the disk is full";
  status = client.Get("/status").Json();
  EXPECT_EQ(status["saving"], (json{{"ok", false}, {"why", "the disk is full"}}));
}

TEST_F(HouseResource, TriesActionsAndConditions) {
  const json tried =
      client.Post("/actions/test", R"({"action":{"command":{"argv":["/bin/true"]}}})").Json();
  EXPECT_EQ(tried, (json{{"outcome", "done"},
                         {"detail", "200 OK"},
                         {"output", "a\xEF\xBF\xBDz"},
                         {"milliseconds", 12}}));
  EXPECT_EQ(client.Post("/actions/test", R"({"action":{},"event":9})").Problem(), "invalid");
  EXPECT_EQ(client.Post("/actions/test", "{}").Problem(), "invalid");
  const json condition =
      client
          .Post("/conditions/test",
                R"({"condition":{"kind":"time","is":"between","from":"11:00","to":"13:00"}})")
          .Json();
  EXPECT_EQ(condition["result"], true);
  EXPECT_EQ(condition["name"], "IF_TIME");
  EXPECT_THAT(condition["text"].get<std::string>(), HasSubstr("between 11:00 and 13:00"));
  EXPECT_THAT(condition["because"].get<std::string>(), HasSubstr("12:00"));
  EXPECT_THAT(condition["xml"].get<std::string>(), HasSubstr("<comparator>BT</comparator>"));
  EXPECT_EQ(client.Post("/conditions/test", R"({"condition":{"kind":"mood"}})").Problem(),
            "invalid");
  EXPECT_EQ(client.Post("/conditions/test", "{}").Problem(), "invalid");
}

TEST_F(HouseResource, TellsWhatIsUnderWay) {
  RunningAction action;
  action.facts.eventId = 7;
  action.facts.description = "Porch";
  action.facts.journalRow = 3;
  action.text = "POST http://hub.local/light";
  action.state = "retrying";
  action.since = Local("2026-11-20 11:59:00");
  house.running = {action};
  EXPECT_EQ(client.Get("/actions/running").Json(), json::parse(R"({"actions":[{"event":7,
      "description":"Porch","text":"POST http://hub.local/light","state":"retrying",
      "since":"2026-11-20T11:59:00+01:00","journal":3}]})"));
}

/// "get /events/{id}" for each entry of the table that belongs to the API.
std::set<std::string> Operations(House& house) {
  const std::string root = "/api/v1";
  std::set<std::string> operations;
  for (const HttpRoute& route : ApiRoutes(house)) {
    if (!route.path.starts_with(root)) continue;
    std::string method = route.method;
    for (char& letter : method) letter = static_cast<char>(std::tolower(letter));
    operations.insert(method + ' ' + route.path.substr(root.size()));
  }
  return operations;
}

TEST_F(HouseResource, DescribesItself) {
  const json description = client.Get("/openapi.json").Json();
  EXPECT_EQ(description["openapi"], "3.1.0");
  std::set<std::string> described;
  for (const auto& path : description["paths"].items()) {
    // The stream is another's, and these are not below /api/v1.
    if (path.key() == "/stream" || path.value().contains("servers")) continue;
    for (const auto& operation : path.value().items()) {
      if (operation.key() != "parameters") described.insert(operation.key() + ' ' + path.key());
    }
  }
  EXPECT_EQ(described, Operations(house));
}

}  // namespace
