// Writing an event element, and reading it again.

#include <climits>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "framework/XmlText.h"
#include "tests/support/FakeHost.h"
#include "tests/support/TestClock.h"
#include "tests/vexalink_agent_scheduler/EventHelp.h"
#include "tests/vexalink_agent_scheduler/Zones.h"

namespace {

std::string Xml(const Event& event) {
  return vx::WriteXml(*event.toXml(), vx::XmlStyle::kTranscript);
}

TEST(EventToXml, WritesEveryElementInItsOrder) {
  const ZoneScope zone(zones::kNewYork);
  const TestClock clock("2024-03-08 11:00:00");
  Event event = Weekly("2024-03-06", 2, kMonday | kFriday);
  event.eventid = 7;
  event.description = "Porch & <garden>";
  event.start_weekday = 4;
  event.randomize = 5;
  EndOn(event, "2025-12-24");
  EXPECT_EQ(Xml(event),
            "<event><eventid>7</eventid><buttonbindingid>7</buttonbindingid>"
            "<description>Porch &amp; &lt;garden&gt;</description>"
            "<start><offset>0</offset><offset_minutes>720</offset_minutes>"
            "<start_date><start_day>6</start_day><start_month>3</start_month>"
            "<start_year>2024</start_year><start_period>0</start_period>"
            "<start_weekday>4</start_weekday></start_date><randomize>5</randomize></start>"
            "<next_occurence><year>2024</year><month>3</month><day>8</day><hour>12</hour>"
            "<min>0</min><timezone>EST</timezone></next_occurence>"
            "<repeat><frequency>2</frequency><rate>2</rate><daymask>34</daymask>"
            "<end_date><end_month>12</end_month><end_day>24</end_day><end_year>2025</end_year>"
            "</end_date></repeat></event>");
}

TEST(EventToXml, OfASingleEventHasNoRepeat) {
  const ZoneScope zone(zones::kUtc);
  const TestClock clock("2024-03-08 11:00:00");
  Event event = Once("2024-03-06");
  EndOn(event, "2025-12-24");  // not written either
  EXPECT_EQ(Xml(event),
            "<event><eventid>1</eventid><buttonbindingid>1</buttonbindingid>"
            "<description>test</description>"
            "<start><offset>0</offset><offset_minutes>720</offset_minutes>"
            "<start_date><start_day>6</start_day><start_month>3</start_month>"
            "<start_year>2024</start_year><start_period>0</start_period>"
            "<start_weekday>0</start_weekday></start_date><randomize>0</randomize></start>"
            "</event>");
}

TEST(EventToXml, WritesTheMaskOfEveryRepeatingEvent) {
  const ZoneScope zone(zones::kUtc);
  const TestClock clock("2024-03-08 11:00:00");
  const AssertLines asserts;
  const auto event = FromXml(
      "<event><eventid>1</eventid><repeat><frequency>1</frequency><rate>1</rate>"
      "<daymask>34</daymask></repeat></event>");
  EXPECT_NE(Xml(*event).find("<daymask>0</daymask>"), std::string::npos) << Xml(*event);
  Event other = Yearly("2024-03-06", 1);
  other.daymask = UINT_MAX;
  EXPECT_NE(Xml(other).find("<daymask>4294967295</daymask>"), std::string::npos) << Xml(other);
}

TEST(EventToXml, WritesARepeatOfAKindThatDoesNotExist) {
  const ZoneScope zone(zones::kUtc);
  const TestClock clock("2024-03-08 11:00:00");
  Event event = Daily("2024-03-06", 1);
  event.frequency = -9;
  event.rate = INT_MIN;
  EXPECT_NE(Xml(event).find("<repeat><frequency>-9</frequency><rate>-2147483648</rate>"),
            std::string::npos)
      << Xml(event);
}

TEST(EventToXml, NamesTheZoneOfThePresentMoment) {
  const struct {
    const char* why;
    const char* zone;
    const char* now;
    const char* name;
  } rows[] = {
      {"winter", zones::kNewYork, "2024-03-08 11:00:00", "EST"},
      {"summer", zones::kNewYork, "2024-07-08 11:00:00", "EDT"},
      {"its occurrence may be in the other season", zones::kNewYork, "2024-11-02 13:00:00", "EDT"},
      {"and the other way round", zones::kNewYork, "2024-03-09 13:00:00", "EST"},
      {"a zone without summer time", zones::kKolkata, "2024-07-08 11:00:00", "IST"},
      {"names of numbers", zones::kLordHowe, "2024-01-08 11:00:00", "+11"},
  };
  for (const auto& row : rows) {
    const ZoneScope zone(row.zone);
    const TestClock clock(row.now);
    const auto xml = Daily("2024-01-01", 1).toXml();
    const VxXML::INode* const next = xml->GetChild("next_occurence");
    ASSERT_NE(next, nullptr) << row.why;
    EXPECT_EQ(next->GetText("timezone"), row.name) << row.why;
  }
}

TEST(EventToXml, LeavesOutANextOccurrenceThatDoesNotExist) {
  const ZoneScope zone(zones::kUtc);
  const TestClock clock("2024-03-08 13:00:00");
  EXPECT_EQ(Once("2024-03-08").toXml()->GetChild("next_occurence"), nullptr);
  EXPECT_NE(Once("2024-03-09").toXml()->GetChild("next_occurence"), nullptr);
  EXPECT_EQ(Daily("2024-03-08", -1).toXml()->GetChild("next_occurence"), nullptr);
}

TEST(EventToXml, RecordsWhatItsNextOccurrenceRecords) {
  const ZoneScope zone(zones::kUtc);
  const TestClock clock("2024-03-08 13:00:00");
  const AssertLines asserts;
  Xml(Daily("2024-03-08", 0));
  Event event = Once("2024-03-06");
  event.offset = static_cast<Scheduler::OFFSET_TYPE>(3);
  Xml(event);
  EXPECT_EQ(asserts.lines, (std::vector<int>{363, 233}));
}

TEST(EventToXml, DatesThatCannotBeConvertedAreZero) {
  const ZoneScope zone(zones::kUtc);
  const TestClock clock("2024-03-08 13:00:00");
  Event event = Daily("2024-03-08", 1);
  event.start = VxTime(LONG_MAX);
  event.hasEndDate = true;
  event.end_date = VxTime(LONG_MAX);
  const std::string xml = Xml(event);
  EXPECT_NE(xml.find("<start_day>0</start_day><start_month>0</start_month>"
                     "<start_year>0</start_year>"),
            std::string::npos)
      << xml;
  EXPECT_NE(xml.find("<end_month>0</end_month><end_day>0</end_day><end_year>0</end_year>"),
            std::string::npos)
      << xml;
}

TEST(EventXml, WhatIsWrittenIsReadAgain) {
  const ZoneScope zone(zones::kNewYork);
  const TestClock clock("2024-03-08 13:00:00");
  Event event = MonthlyBy("2024-05-27", 2, Scheduler::kLast, 2);
  event.eventid = 4294967296UL;
  event.description = " <a> & \"b\"\r\n\t";
  event.offset = Scheduler::kSunset;
  event.offset_minutes = -45;
  event.randomize = 15;
  EndOn(event, "2026-11-01");
  const auto again = FromXml(event.toXml()->ToString());
  EXPECT_EQ(again->eventid, event.eventid);
  EXPECT_EQ(again->description, event.description);
  EXPECT_EQ(again->offset, event.offset);
  EXPECT_EQ(again->offset_minutes, event.offset_minutes);
  EXPECT_EQ(again->start, event.start);
  EXPECT_EQ(again->start_period, event.start_period);
  EXPECT_EQ(again->start_weekday, event.start_weekday);
  EXPECT_EQ(again->randomize, event.randomize);
  EXPECT_EQ(again->frequency, event.frequency);
  EXPECT_EQ(again->rate, event.rate);
  EXPECT_EQ(again->hasEndDate, event.hasEndDate);
  EXPECT_EQ(again->end_date, event.end_date);
  EXPECT_EQ(Xml(*again), Xml(event));
}

// Any numbers at all: after one round nothing changes any more.
TEST(EventXml, SettlesAfterOneRound) {
  const TestClock clock(1709900000);
  std::mt19937 random(20240308);
  const auto any = [&random]() {
    constexpr int kNumbers[] = {0,  1,  2,  3,  4,  5,    6,    7,       12,
                                13, 31, 32, -1, -7, 1440, 2024, INT_MAX, INT_MIN};
    return std::to_string(kNumbers[random() % std::size(kNumbers)]);
  };
  for (const char* name : {zones::kUtc, zones::kNewYork, zones::kMidnight}) {
    const ZoneScope zone(name);
    for (int i = 0; i < 1000; ++i) {
      const std::string xml =
          "<event><eventid>" + any() + "</eventid><start><offset>" + any() +
          "</offset><offset_minutes>" + any() + "</offset_minutes><start_date><start_day>" + any() +
          "</start_day><start_month>" + any() + "</start_month><start_year>" + any() +
          "</start_year><start_period>" + any() + "</start_period><start_weekday>" + any() +
          "</start_weekday></start_date><randomize>" + any() +
          "</randomize></start><repeat><frequency>" + any() + "</frequency><rate>" + any() +
          "</rate><daymask>" + any() + "</daymask><end_date><end_month>" + any() +
          "</end_month><end_day>" + any() + "</end_day><end_year>" + any() +
          "</end_year></end_date></repeat></event>";
      const AssertLines asserts;
      const std::string first = FromXml(xml)->toXml()->ToString();
      const std::string second = FromXml(first)->toXml()->ToString();
      const std::string third = FromXml(second)->toXml()->ToString();
      EXPECT_EQ(second, third) << name << "\n" << xml;
    }
  }
}

}  // namespace
