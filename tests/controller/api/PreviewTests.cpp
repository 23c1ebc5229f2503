#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ApiClient.h"
#include "tests/support/TestClock.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class PreviewTest : public testing::Test {
 protected:
  nlohmann::json Preview(const std::string& body) {
    const auto answer = client.Post("/preview", body);
    EXPECT_EQ(answer.status, 200) << answer.text;
    return answer.Json();
  }
  /// Of an event every so often at a clock time.
  nlohmann::json Repeated(const std::string& at, const std::string& repeat,
                          const std::string& start = "2026-11-20") {
    return Preview(R"({"description":"Porch","start":")" + start + R"(","time":{"base":"clock",)" +
                   at + R"(},"repeat":)" + repeat + '}');
  }
  static std::vector<std::string> Codes(const nlohmann::json& preview) {
    std::vector<std::string> codes;
    for (const auto& warning : preview["warnings"]) codes.push_back(warning["code"]);
    return codes;
  }
  static std::string Text(const nlohmann::json& preview, const std::string& code) {
    for (const auto& warning : preview["warnings"]) {
      if (warning["code"] == code) return warning["text"];
    }
    return "";
  }

  const ZoneScope zone{"CET-1CEST,M3.5.0,M10.5.0/3"};
  const TestClock clock{"2026-11-20 12:00:00"};
  FakeHouse house;
  ApiClient client{house};
};

TEST_F(PreviewTest, ShowsTheEventInWordsAndWhenItComes) {
  const auto preview = Preview(R"({"description":"Porch","start":"2026-11-20",
      "time":{"base":"sunset","minutes":-30,"spread":10},
      "repeat":{"unit":"week","every":2,"on":["mon","fri"],"until":"2027-03-31"}})");
  EXPECT_EQ(
      preview["sentence"],
      "every 2 weeks on Monday and Friday, 30 minutes before sunset, give or take 10 minutes, "
      "from 20 November 2026 until 31 March 2027");
  ASSERT_EQ(preview["occurrences"].size(), 10u);
  EXPECT_EQ(preview["occurrences"][0]["date"], "2026-11-20");
  EXPECT_EQ(preview["occurrences"][1]["date"], "2026-11-30");
  EXPECT_EQ(preview["event"]["next"], preview["occurrences"][0]["time"]);
  EXPECT_FALSE(preview["event"].contains("id"));
  EXPECT_THAT(Codes(preview), IsEmpty());
  EXPECT_EQ(house.Scheduler().Request("GET_ALL_EVENTS")->GetFirstChild(), nullptr)
      << "nothing is kept";
}

TEST_F(PreviewTest, AnEventByWeekStartsOnItsWeekday) {
  const auto preview =
      Repeated(R"("at":"07:00")", R"({"unit":"month","nth":{"week":"last","weekday":"mon"}})");
  EXPECT_EQ(preview["event"]["start"], "2026-11-30");
  EXPECT_THAT(preview["sentence"].get<std::string>(), HasSubstr("from 30 November 2026"));
}

TEST_F(PreviewTest, WarnsOfWhatNeverOccurs) {
  const auto once = Repeated(R"("at":"07:00")", "null", "2026-11-19");
  EXPECT_THAT(Codes(once), ElementsAre("never-occurs"));
  EXPECT_THAT(once["occurrences"], IsEmpty());
  EXPECT_EQ(once["event"]["next"], nullptr);
  EXPECT_EQ(Text(Repeated(R"("at":"11:59")", "null"), "never-occurs"), "its time has passed today");
  EXPECT_EQ(
      Text(Repeated(R"("at":"07:00")", R"({"unit":"day","until":"2026-11-19"})", "2026-11-01"),
           "never-occurs"),
      "its last day, 19 November 2026, has passed");
  EXPECT_THAT(
      Text(Repeated(R"("at":"07:00")", R"({"unit":"week","on":["mon"],"until":"2026-11-22"})"),
           "never-occurs"),
      HasSubstr("none of its days lies between 20 November 2026 and"));
  EXPECT_THAT(Text(Repeated(R"("at":"07:00")", R"({"unit":"day"})", "2039-01-01"), "never-occurs"),
              HasSubstr("it ends on 18 January 2038"));
}

TEST_F(PreviewTest, WarnsOfMidnight) {
  EXPECT_THAT(Codes(Repeated(R"("at":"23:50","spread":10)", R"({"unit":"day"})")), IsEmpty())
      << "at midnight itself it still comes";
  EXPECT_THAT(Text(Repeated(R"("at":"23:50","spread":11)", R"({"unit":"day"})"), "past-midnight"),
              HasSubstr("may lie after midnight"));
  EXPECT_THAT(Text(Repeated(R"("minutes":1441)", R"({"unit":"day"})"), "past-midnight"),
              HasSubstr("it comes only where what was missed is caught up"));
  EXPECT_THAT(Codes(Repeated(R"("at":"00:10","spread":10)", R"({"unit":"day"})")), IsEmpty());
  EXPECT_THAT(Text(Repeated(R"("at":"00:10","spread":11)", R"({"unit":"day"})"), "past-midnight"),
              HasSubstr("then comes at midnight instead"));
  EXPECT_THAT(Text(Preview(R"({"description":"Porch","time":{"base":"sunset","minutes":500}})"),
                   "past-midnight"),
              HasSubstr("it comes only where what was missed is caught up"))
      << "sunset is at about 16:04";
}

TEST_F(PreviewTest, WarnsOfClockChanges) {
  EXPECT_EQ(Text(Repeated(R"("at":"02:30")", R"({"unit":"day"})"), "clock-change").substr(0, 59),
            "on 28 March 2027 there is no 02:30, because the clocks are ");
  EXPECT_THAT(Codes(Repeated(R"("at":"01:59")", R"({"unit":"day"})")), IsEmpty());
  EXPECT_THAT(Codes(Repeated(R"("at":"03:00")", R"({"unit":"day"})")), IsEmpty());
  EXPECT_THAT(Codes(Repeated(R"("at":"02:00")", R"({"unit":"day"})")), ElementsAre("clock-change"));
  EXPECT_THAT(Codes(Repeated(R"("at":"02:30")", R"({"unit":"week","on":["mon"]})")), IsEmpty())
      << "clocks are changed on Sundays";
  EXPECT_EQ(Text(Repeated(R"("at":"02:30")", "null", "2027-10-31"), "clock-change"),
            "on 31 October 2027 02:30 comes twice, because the clocks are put back; it comes the "
            "first time");
  EXPECT_THAT(Text(Repeated(R"("minutes":1590)", "null", "2027-03-27"), "clock-change"),
              HasSubstr("on 28 March 2027 there is no 02:30"))
      << "of the day after";
}

TEST_F(PreviewTest, WarnsOfDaysThatDrift) {
  EXPECT_EQ(Text(Repeated(R"("at":"07:00")", R"({"unit":"day","every":2})"), "drifts"),
            "the scheduler counts days in 24 hours, also where a clock change makes one longer or "
            "shorter: it comes on 29 March 2027 and not on 30 March 2027");
  EXPECT_THAT(Codes(Repeated(R"("at":"07:00")", R"({"unit":"day"})")), IsEmpty());
  EXPECT_THAT(Codes(Repeated(R"("at":"07:00")", R"({"unit":"day","every":2})", "2026-07-01")),
              IsEmpty())
      << "begun in summer: a day's beginning in winter is an hour late, which does not count";
  EXPECT_THAT(
      Codes(Repeated(R"("at":"07:00")", R"({"unit":"day","every":2,"until":"2027-03-27"})")),
      IsEmpty());
  EXPECT_THAT(Codes(Repeated(R"("at":"07:00")", R"({"unit":"week","every":2,"on":["mon"]})")),
              IsEmpty());
  EXPECT_THAT(Codes(Repeated(R"("at":"07:00")", R"({"unit":"week","every":2,"on":["sun"]})")),
              ElementsAre("drifts"));
}

TEST(PreviewDrift, CountsWeekdaysTwiceOnTheDayOfTheChange) {
  const ZoneScope zone("EST5EDT,M3.2.0,M11.1.0");
  const TestClock clock("2024-06-01 12:00:00");
  FakeHouse house;
  ApiClient client(house);
  const auto preview = client
                           .Post("/preview", R"({"description":"x","start":"2024-06-01",
      "time":{"base":"clock","at":"07:00"},
      "repeat":{"unit":"month","nth":{"week":2,"weekday":"sun"}}})")
                           .Json();
  ASSERT_EQ(preview["warnings"].size(), 1u) << preview;
  EXPECT_EQ(preview["warnings"][0]["code"], "drifts");
  EXPECT_THAT(preview["warnings"][0]["text"].get<std::string>(), HasSubstr("November 2024"));
}

TEST_F(PreviewTest, WarnsOfTheEndOfTheCalendar) {
  EXPECT_THAT(Codes(Repeated(R"("at":"07:00")", R"({"unit":"year"})")), IsEmpty());
  const auto preview = Repeated(R"("at":"07:00")", R"({"unit":"year","every":2})");
  EXPECT_THAT(Codes(preview), ElementsAre("ends-2038"));
  EXPECT_THAT(Text(preview, "ends-2038"), HasSubstr("18 January 2038"));
  EXPECT_EQ(preview["occurrences"].size(), 5u) << "2028, 2030 .. 2036";
  EXPECT_THAT(
      Codes(Repeated(R"("at":"07:00")", R"({"unit":"year","every":2,"until":"2099-12-31"})")),
      IsEmpty());
}

TEST_F(PreviewTest, WarnsOfADescriptionThatIsTaken) {
  const std::string porch = R"({"description":"Porch","time":{"base":"sunset"}})";
  ASSERT_EQ(client.Post("/events", porch).status, 201);
  EXPECT_THAT(Codes(Preview(porch)), UnorderedElementsAre("duplicate"));
  EXPECT_THAT(Codes(Preview(R"({"id":1,"description":"Porch","time":{"base":"sunset"}})")),
              IsEmpty())
      << "its own";
  EXPECT_EQ(client.Post("/preview", R"({"id":9,"description":"x","time":{"base":"sunset"}})")
                .Error("/id")
                .substr(0, 4),
            "is 9");
}

TEST_F(PreviewTest, RefusesWhatTheEventsRefuse) {
  EXPECT_EQ(client.Post("/preview", "{").Problem(), "malformed");
  EXPECT_EQ(client.Post("/preview", R"({"description":"x"})").Problem(), "invalid");
  EXPECT_EQ(client.Post("/preview", "").Problem(), "malformed");
}

}  // namespace
