// The schedule as a whole: given, taken, put aside.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ApiClient.h"
#include "tests/support/TestClock.h"

namespace {

using namespace controller;
using nlohmann::json;
using testing::HasSubstr;

class ScheduleResource : public testing::Test {
 protected:
  static std::string Xml(const std::string& id, const std::string& description) {
    return "<event><eventid>" + id + "</eventid><description>" + description +
           "</description><start><offset>2</offset><offset_minutes>0</offset_minutes><start_date>"
           "<start_day>1</start_day><start_month>1</start_month><start_year>2026</start_year>"
           "</start_date></start></event>";
  }

  const ZoneScope zone{"CET-1CEST,M3.5.0,M10.5.0/3"};
  const TestClock clock{"2026-11-20 12:00:00"};
  FakeHouse house;
  ApiClient client{house};
};

TEST_F(ScheduleResource, GivesTheScheduleAndTakesItBack) {
  ASSERT_EQ(client.Post("/project/import", "<events>" + Xml("7", "B &amp; C") + "</events>").status,
            200);
  const auto exported = client.Get("/project/export");
  EXPECT_EQ(exported.type, "application/xml");
  EXPECT_THAT(exported.text, HasSubstr("<description>B &amp; C</description>"));
  const json again = client.Post("/project/import", exported.text).Json();
  EXPECT_EQ(again["imported"], true);
  EXPECT_EQ(again["kept"], 1);
  EXPECT_EQ(again["changed"], 0);
  EXPECT_EQ(client.Get("/project/export").text, exported.text);
}

TEST_F(ScheduleResource, ImportsNothingThatWouldLoseSomething) {
  client.Post("/project/import", "<events>" + Xml("7", "Porch") + "</events>");
  const std::string before = client.Get("/project/export").text;
  const std::string twice = "<events>" + Xml("1", "A") + Xml("1", "B") + "</events>";
  const json preview = client.Post("/project/import/preview", twice).Json();
  EXPECT_EQ(preview["imported"], false);
  EXPECT_EQ(preview["events"], 2);
  EXPECT_EQ(preview["kept"], 1);
  EXPECT_EQ(preview["dropped"], 1);
  ASSERT_EQ(preview["findings"].size(), 1u);
  EXPECT_EQ(preview["findings"][0]["position"], 2);
  EXPECT_EQ(preview["findings"][0]["findings"][0]["kind"], "dropped");
  const auto refused = client.Post("/project/import", twice);
  EXPECT_EQ(refused.Problem(), "invalid");
  EXPECT_THAT(refused.Error("/events/1"), HasSubstr("would be dropped: eventid 1"));
  EXPECT_EQ(client.Get("/project/export").text, before);
  EXPECT_EQ(client.Post("/project/import?force=1", twice).Json()["imported"], true);
  EXPECT_EQ(client.Get("/events").Json()["total"], 1);
}

TEST_F(ScheduleResource, RefusesXmlThatIsNoSchedule) {
  const std::string before = client.Get("/project/export").text;
  for (const char* body :
       {"<events>", "no XML", "<song/>", "<!DOCTYPE a [<!ENTITY b \"c\">]><events>&b;</events>",
        "<events>\xFF</events>"}) {
    for (const char* target : {"/project/import", "/project/import/preview"}) {
      EXPECT_EQ(client.Post(target, body).Problem(), "malformed") << target << body;
    }
  }
  EXPECT_EQ(client.Post("/project/import?force=yes", "<events/>").Problem(), "malformed");
  EXPECT_EQ(client.Get("/project/export").text, before);
}

TEST_F(ScheduleResource, PutsSchedulesAside) {
  EXPECT_EQ(client.Get("/project/backups").Json()["backups"], json::array());
  EXPECT_EQ(client.Get("/project/backups/1").Problem(), "not-found");
  client.Post("/project/import", "<events>" + Xml("7", "Porch") + "</events>");
  const auto made = client.Post("/project/backups");
  EXPECT_EQ(made.status, 201);
  ASSERT_EQ(made.Json()["backups"].size(), 2u);
  EXPECT_EQ(made.Json()["backups"][0]["number"], 1);
  EXPECT_EQ(made.Json()["backups"][0]["reason"], "put aside by hand");
  EXPECT_THAT(client.Get("/project/backups/1").text, HasSubstr("Porch"));
  EXPECT_EQ(client.Ask("DELETE", "/events/7").status, 204);
  EXPECT_EQ(client.Post("/project/backups/1/restore").status, 204);
  EXPECT_EQ(client.Get("/events").Json()["total"], 1);
  EXPECT_EQ(client.Post("/project/backups/9/restore").Problem(), "not-found");
  EXPECT_EQ(client.Post("/project/backups/0/restore").Problem(), "not-found");
}

}  // namespace
