// /events and what belongs to one event.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ApiClient.h"
#include "tests/support/TestClock.h"

namespace {

using namespace controller;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kPorch =
    R"({"description":"Porch","start":"2026-11-20","time":{"base":"clock","at":"18:00"},
        "repeat":{"unit":"day"}})";

class EventResource : public testing::Test {
 protected:
  std::string Export() { return client.Get("/project/export").text; }
  json Add(const std::string& name) {
    const auto answer =
        client.Post("/events", json{{"description", name}, {"time", {{"base", "sunset"}}}}.dump());
    EXPECT_EQ(answer.status, 201) << answer.text;
    return answer.Json();
  }

  const ZoneScope zone{"CET-1CEST,M3.5.0,M10.5.0/3"};
  const TestClock clock{"2026-11-20 12:00:00"};
  FakeHouse house;
  ApiClient client{house};
};

TEST_F(EventResource, CreatesAnEventAndAnswersIt) {
  const auto answer = client.Post("/events", kPorch);
  EXPECT_EQ(answer.status, 201);
  EXPECT_EQ(answer.headers.at("Location"), "/api/v1/events/1");
  EXPECT_EQ(answer.Json(), json::parse(R"({"id":1,"description":"Porch","start":"2026-11-20",
      "time":{"base":"clock","at":"18:00","minutes":1080,"spread":0},
      "repeat":{"unit":"day","every":1},"next":"2026-11-20T18:00:00+01:00",
      "programming":{"enabled":true,"paused_until":null,"skip_next":false,"actions":0}})"));
  const auto again = client.Get("/events/1");
  EXPECT_EQ(again.status, 200);
  EXPECT_EQ(again.Json(), answer.Json());
  EXPECT_EQ(again.headers.at("ETag"), answer.headers.at("ETag"));
  EXPECT_THAT(house.actors, ElementsAre("local"));
}

TEST_F(EventResource, CreatesAnEventWithWhatItDoes) {
  json body = json::parse(kPorch);
  body["programming"] = {{"enabled", false},
                         {"actions", {{{"command", {{"argv", {"/bin/true"}}}}}}}};
  const auto answer = client.Post("/events", body.dump());
  ASSERT_EQ(answer.status, 201) << answer.text;
  EXPECT_EQ(answer.Json()["programming"]["enabled"], false);
  EXPECT_EQ(answer.Json()["programming"]["actions"], 1);
  EXPECT_EQ(house.programming.at(1).actions.size(), 1u);
}

TEST_F(EventResource, RefusesADescriptionThatIsTaken) {
  Add("Porch");
  const std::string before = Export();
  const auto answer = client.Post("/events", kPorch);
  EXPECT_EQ(answer.status, 409);
  EXPECT_EQ(answer.Problem(), "conflict");
  EXPECT_THAT(answer.Error("/description"), HasSubstr("that of event 1"));
  Add("Gate");
  EXPECT_EQ(client.Ask("PATCH", "/events/2", R"({"description":"Porch"})").Problem(), "conflict");
  EXPECT_EQ(client.Post("/events/2/duplicate", R"({"description":"Porch"})").Problem(), "conflict");
  EXPECT_EQ(json::parse(client.Get("/events").text)["total"], 2);
  EXPECT_NE(Export(), before) << "the gate is there";
}

TEST_F(EventResource, TellsWhereTheSchedulerDoesNotTakeIt) {
  Add("Gate");
  house.takesEvents = false;
  EXPECT_EQ(client.Post("/events", kPorch).Problem(), "invalid");
  EXPECT_EQ(client.Ask("PUT", "/events/1", kPorch).Problem(), "invalid");
  EXPECT_EQ(client.Post("/events/1/duplicate", R"({"description":"Porch"})").Problem(), "invalid");
}

TEST_F(EventResource, SaysSoWhereAChangeIsNotSavedYet) {
  house.savingTrouble = "the disk is full";
  const auto answer = client.Post("/events", kPorch);
  EXPECT_EQ(answer.status, 503);
  EXPECT_EQ(answer.Problem(), "not-saved");
  EXPECT_EQ(answer.Json()["applied"], true);
  EXPECT_THAT(answer.Json()["detail"].get<std::string>(), HasSubstr("the disk is full"));
  EXPECT_EQ(client.Get("/events/1").status, 200) << "it is in effect";
  EXPECT_THAT(Export(), HasSubstr("Porch")) << "what would be saved";
}

TEST_F(EventResource, ListsByIdPartByPart) {
  for (const char* name : {"Porch on", "Gate", "porch off"}) Add(name);
  const auto ids = [this](const std::string& query) {
    std::vector<int> found;
    const auto list = client.Get("/events" + query).Json();
    for (const auto& event : list["events"]) found.push_back(event["id"]);
    found.push_back(list["total"]);
    return found;
  };
  EXPECT_THAT(ids(""), ElementsAre(1, 2, 3, 3));
  EXPECT_THAT(ids("?q=PORCH"), ElementsAre(1, 3, 2));
  EXPECT_THAT(ids("?q=porch&offset=1"), ElementsAre(3, 2));
  EXPECT_THAT(ids("?limit=1&offset=1"), ElementsAre(2, 3));
  EXPECT_THAT(ids("?limit=0"), ElementsAre(3));
  EXPECT_THAT(ids("?offset=9"), ElementsAre(3));
  EXPECT_EQ(client.Get("/events").Json()["events"][0], client.Get("/events/1").Json());
  for (const char* query : {"?limit=-1", "?offset=x", "?limit=", "?sort=id", "?q=a&q=b"}) {
    EXPECT_EQ(client.Get(std::string("/events") + query).Problem(), "malformed") << query;
  }
}

TEST_F(EventResource, ReplacesAllOfAnEvent) {
  Add("Gate");
  const auto answer = client.Ask("PUT", "/events/1", kPorch);
  EXPECT_EQ(answer.status, 200) << answer.text;
  EXPECT_EQ(answer.Json()["description"], "Porch");
  EXPECT_EQ(answer.Json()["time"]["at"], "18:00");
  json other = json::parse(kPorch);
  other["id"] = 2;
  EXPECT_THAT(client.Ask("PUT", "/events/1", other.dump()).Error("/id"), HasSubstr("is 2"));
  other["id"] = 1;
  EXPECT_EQ(client.Ask("PUT", "/events/1", other.dump()).status, 200) << "repeated unchanged";
  other.erase("start");
  EXPECT_EQ(client.Ask("PUT", "/events/1", other.dump()).Problem(), "invalid");
}

TEST_F(EventResource, PatchesPartOfAnEvent) {
  client.Post("/events", kPorch);
  const auto patch = [this](const char* body) { return client.Ask("PATCH", "/events/1", body); };
  EXPECT_EQ(patch(R"({"time":{"at":"19:30"}})").Json()["time"]["minutes"], 1170);
  EXPECT_EQ(patch(R"({"repeat":{"every":3}})").Json()["repeat"]["every"], 3);
  EXPECT_EQ(patch(R"({"time":{"base":"sunset"}})").Json()["time"]["minutes"], 0);
  EXPECT_EQ(patch(R"({"repeat":null})").Json()["repeat"], nullptr);
  EXPECT_EQ(patch("{}").status, 200);
  EXPECT_EQ(patch("[]").Problem(), "invalid");
  EXPECT_THAT(patch(R"({"description":null})").Error("/description"), HasSubstr("is missing"));
  EXPECT_THAT(patch(R"({"colour":"red"})").Error("/colour"), HasSubstr("not known"));
}

TEST_F(EventResource, EveryOtherFieldIsAnotherVersion) {
  std::string tag = client.Post("/events", kPorch).headers.at("ETag");
  for (const char* patch :
       {R"({"description":"Porch "})", R"({"time":{"minutes":1081}})", R"({"time":{"spread":1}})",
        R"({"start":"2026-11-21"})", R"({"repeat":{"every":2}})",
        R"({"repeat":{"unit":"week","on":["mon"]}})", R"({"repeat":{"on":["tue"]}})",
        R"({"repeat":{"until":"2027-01-01"}})", R"({"repeat":null})"}) {
    const auto answer = client.Ask("PATCH", "/events/1", patch);
    EXPECT_EQ(answer.status, 200) << patch << answer.text;
    EXPECT_NE(answer.headers.at("ETag"), tag) << patch;
    tag = answer.headers.at("ETag");
  }
  house.programming[1].enabled = false;
  EXPECT_EQ(client.Get("/events/1").headers.at("ETag"), tag) << "what it does is another resource";
}

TEST_F(EventResource, ObeysIfMatch) {
  const std::string tag = client.Post("/events", kPorch).headers.at("ETag");
  const auto patch = [this](const std::string& wanted) {
    return client.Ask("PATCH", "/events/1", R"({"time":{"spread":5}})", {{"if-match", wanted}});
  };
  EXPECT_EQ(patch("\"0000000000000000\"").status, 412);
  EXPECT_EQ(patch("W/" + tag).status, 412) << "a weak tag promises too little";
  for (const char* wanted : {"abc", "\"abc", "", "x \"abc\"", "\"a\" b"}) {
    EXPECT_EQ(patch(wanted).status, 412) << wanted;
  }
  EXPECT_EQ(client.Get("/events/1").headers.at("ETag"), tag) << "nothing has changed";
  const auto done = patch("\"other\", " + tag);
  EXPECT_EQ(done.status, 200);
  EXPECT_NE(done.headers.at("ETag"), tag);
  EXPECT_EQ(patch("*").status, 200);
  EXPECT_EQ(client.Ask("PUT", "/events/1", kPorch, {{"if-match", tag}}).status, 412);
  EXPECT_EQ(client.Ask("DELETE", "/events/1", "", {{"if-match", tag}}).status, 412);
  EXPECT_EQ(client.Ask("PUT", "/events/1/programming", "{}", {{"if-match", tag}}).status, 412);
}

TEST_F(EventResource, DeletesAndBringsBack) {
  client.Post("/events", kPorch);
  const json event = client.Get("/events/1").Json();
  const auto gone = client.Ask("DELETE", "/events/1");
  EXPECT_EQ(gone.status, 204);
  EXPECT_EQ(gone.text, "");
  EXPECT_EQ(client.Get("/events/1").Problem(), "not-found");
  EXPECT_EQ(client.Ask("DELETE", "/events/1").Problem(), "not-found");
  const auto back = client.Post("/events/1/restore");
  EXPECT_EQ(back.status, 200);
  EXPECT_EQ(back.Json(), event);
  house.restored = House::Restored::kNothingToRestore;
  EXPECT_EQ(client.Post("/events/1/restore").status, 404);
  house.restored = House::Restored::kIdTaken;
  EXPECT_EQ(client.Post("/events/1/restore").status, 409);
  house.restored = House::Restored::kDescriptionTaken;
  EXPECT_EQ(client.Post("/events/1/restore").status, 409);
}

TEST_F(EventResource, CopiesAnEventWithWhatItDoes) {
  client.Post("/events", kPorch);
  house.programming[1].skipNext = true;
  const auto copy = client.Post("/events/1/duplicate", R"({"description":"Porch 2"})");
  ASSERT_EQ(copy.status, 201) << copy.text;
  EXPECT_EQ(copy.Json()["id"], 2);
  EXPECT_EQ(copy.Json()["description"], "Porch 2");
  EXPECT_EQ(copy.Json()["time"], client.Get("/events/1").Json()["time"]);
  EXPECT_TRUE(house.programming.at(2).skipNext);
  EXPECT_EQ(client.Post("/events/1/duplicate", "{}").Problem(), "invalid");
  EXPECT_EQ(client.Post("/events/1/duplicate", "").Problem(), "malformed");
  EXPECT_EQ(client.Post("/events/9/duplicate", R"({"description":"x"})").Problem(), "not-found");
}

TEST_F(EventResource, WorksByHand) {
  client.Post("/events", kPorch);
  const auto run = client.Post("/events/1/run");
  EXPECT_EQ(run.status, 202);
  EXPECT_EQ(run.Json(), (json{{"journal", 812}}));
  EXPECT_THAT(house.worked, ElementsAre(Trigger::kEvent, Trigger::kPush, Trigger::kClick));
  EXPECT_EQ(client.Post("/events/1/press").status, 202);
  EXPECT_THAT(house.worked, ElementsAre(Trigger::kPush, Trigger::kClick));
  EXPECT_EQ(client.Post("/events/1/press", R"({"button":"click"})").status, 202);
  EXPECT_THAT(house.worked, ElementsAre(Trigger::kClick));
  EXPECT_EQ(client.Post("/events/1/press", R"({"button":"pull"})").Problem(), "invalid");
  EXPECT_EQ(client.Post("/events/1/run", "{}").Problem(), "malformed") << "there is no body";
  EXPECT_EQ(client.Post("/events/9/run").Problem(), "not-found");
}

TEST_F(EventResource, AnIdIsANumberAsItIsWritten) {
  client.Post("/events", kPorch);
  for (const char* id : {"0", "-1", "01", "+1", "1.0", "1x", "x", "99999999999999999999"}) {
    EXPECT_EQ(client.Get(std::string("/events/") + id).Problem(), "not-found") << id;
  }
}

TEST_F(EventResource, AnswersWhatAnImportHasLeft) {
  const std::string xml =
      "<events><event><eventid>3</eventid><description>Odd</description><start><offset>7</offset>"
      "<offset_minutes>5</offset_minutes><start_date><start_day>1</start_day><start_month>1"
      "</start_month><start_year>2026</start_year></start_date></start><repeat><frequency>9"
      "</frequency><rate>1</rate></repeat></event></events>";
  ASSERT_EQ(client.Post("/project/import", xml).status, 200);
  const json event = client.Get("/events/3").Json();
  EXPECT_EQ(event["odd"], true);
  EXPECT_EQ(event["time"]["base"], nullptr);
  EXPECT_EQ(event["time"]["minutes"], 5);
  EXPECT_EQ(event["repeat"]["unit"], nullptr);
  EXPECT_EQ(event["next"], nullptr);
  EXPECT_EQ(client.Ask("PATCH", "/events/3", R"({"description":"x"})").Problem(), "invalid");
  EXPECT_EQ(client.Get("/occurrences?event=3").status, 200);
  EXPECT_EQ(client.Ask("PUT", "/events/3", kPorch).status, 200);
  EXPECT_EQ(client.Ask("DELETE", "/events/3").status, 204);
}

TEST_F(EventResource, TwoImportedEventsOfOneNameCanBeChanged) {
  const auto event = [](const char* id) {
    return std::string("<event><eventid>") + id +
           "</eventid><description>Twin</description><start><offset>2</offset><start_date>"
           "<start_day>1</start_day><start_month>1</start_month><start_year>2026</start_year>"
           "</start_date></start></event>";
  };
  ASSERT_EQ(
      client.Post("/project/import", "<events>" + event("1") + event("2") + "</events>").status,
      200);
  EXPECT_EQ(client.Ask("PATCH", "/events/2", R"({"time":{"minutes":5}})").status, 200);
  EXPECT_EQ(client.Ask("PATCH", "/events/2", R"({"description":"Other"})").status, 200);
  EXPECT_EQ(client.Ask("PATCH", "/events/2", R"({"description":"Twin"})").status, 409);
}

TEST_F(EventResource, WhatItDoesIsReadReplacedAndPatched) {
  client.Post("/events", kPorch);
  const auto plain = client.Get("/events/1/programming");
  EXPECT_EQ(plain.status, 200);
  EXPECT_EQ(plain.Json()["enabled"], true);
  const auto put =
      client.Ask("PUT", "/events/1/programming",
                 R"({"skip_next":true,"actions":[{"command":{"argv":["/bin/true"]}}]})");
  EXPECT_EQ(put.status, 200) << put.text;
  EXPECT_EQ(put.Json()["skip_next"], true);
  EXPECT_EQ(put.Json()["actions"][0]["command"]["timeout"], 60);
  EXPECT_EQ(client.Get("/events/1/programming").headers.at("ETag"), put.headers.at("ETag"));
  EXPECT_NE(plain.headers.at("ETag"), put.headers.at("ETag"));
  const auto patched =
      client.Ask("PATCH", "/events/1/programming", R"({"paused_until":"2026-12-24"})");
  EXPECT_EQ(patched.Json()["paused_until"], "2026-12-24");
  EXPECT_EQ(patched.Json()["actions"].size(), 1u);
  EXPECT_EQ(client.Get("/events/1").Json()["programming"]["paused_until"], "2026-12-24");
  EXPECT_EQ(client.Ask("PUT", "/events/1/programming", R"({"enabled":1})").Problem(), "invalid");
  EXPECT_EQ(client.Ask("PATCH", "/events/1/programming", "7").Problem(), "invalid");
  EXPECT_EQ(client.Get("/events/9/programming").Problem(), "not-found");
}

TEST_F(EventResource, WhoMayNotEditMayStillHoldItBack) {
  client.Post("/events", kPorch);
  client.role = Role::kOperate;
  const auto patch = [this](const char* body) {
    return client.Ask("PATCH", "/events/1/programming", body);
  };
  EXPECT_EQ(patch(R"({"enabled":false,"skip_next":true,"paused_until":null})").status, 200);
  EXPECT_EQ(patch(R"({"actions":[]})").Problem(), "forbidden");
  EXPECT_EQ(patch(R"({"enabled":true,"catch_up":null})").Problem(), "forbidden");
  EXPECT_FALSE(house.programming.at(1).enabled);
}

TEST_F(EventResource, WhoMayNotEditMayTestOnlyWhatItDoesAnyway) {
  client.Post("/events", kPorch);
  const std::string command = R"({"command":{"argv":["/bin/true"]}})";
  client.Ask("PUT", "/events/1/programming", R"({"actions":[)" + command + "]}");
  const std::string known = R"({"event":1,"action":)" + command + '}';
  const std::string other = R"({"event":1,"action":{"command":{"argv":["/bin/false"]}}})";
  client.role = Role::kOperate;
  EXPECT_EQ(client.Post("/actions/test", known).status, 200);
  EXPECT_EQ(client.Post("/actions/test", other).Problem(), "forbidden");
  EXPECT_EQ(client.Post("/actions/test", R"({"action":)" + command + '}').Problem(), "forbidden");
  client.role = Role::kEdit;
  EXPECT_EQ(client.Post("/actions/test", other).status, 200);
}

}  // namespace
