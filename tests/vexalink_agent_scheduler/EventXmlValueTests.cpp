// Reading an event element: numbers, texts and dates of any value.

#include <climits>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/support/FakeHost.h"
#include "tests/support/TestClock.h"
#include "tests/vexalink_agent_scheduler/EventHelp.h"
#include "tests/vexalink_agent_scheduler/EventXmlHelp.h"
#include "tests/vexalink_agent_scheduler/Zones.h"

namespace {

using namespace event_xml;  // NOLINT: the tests are about nothing else

TEST(EventFromXml, ValuesAreStoredAsTheyCome) {
  const ZoneScope zone(zones::kUtc);
  const Change rows[] = {
      {"an id beyond 32 bits",
       "<eventid>",
       "</eventid>",
       "<eventid>4294967296</eventid>",
       With([](Fields& f) { f.id = 4294967296UL; }),
       {}},
      {"a negative id",
       "<eventid>",
       "</eventid>",
       "<eventid>-1</eventid>",
       With([](Fields& f) { f.id = ULONG_MAX; }),
       {}},
      {"an id that is no number",
       "<eventid>",
       "</eventid>",
       "<eventid>seven</eventid>",
       With([](Fields& f) { f.id = 0; }),
       {}},
      {"numbers stop at the first letter",
       "<eventid>",
       "</eventid>",
       "<eventid> 12abc</eventid>",
       With([](Fields& f) { f.id = 12; }),
       {}},
      {"a description is not trimmed",
       "<description>",
       "</description>",
       "<description> a &amp; b \n</description>",
       With([](Fields& f) { f.description = " a & b \n"; }),
       {}},
      {"a description of several parts",
       "<description>",
       "</description>",
       "<description>a<!-- - -->b<x>inner</x><![CDATA[<c>]]></description>",
       With([](Fields& f) { f.description = "ab<c>"; }),
       {}},
      {"an unknown base",
       "<offset>",
       "</offset>",
       "<offset>-17</offset>",
       With([](Fields& f) { f.offset = -17; }),
       {}},
      {"minutes of any size",
       "<offset_minutes>",
       "</offset_minutes>",
       "<offset_minutes>2147483647</offset_minutes>",
       With([](Fields& f) { f.minutes = INT_MAX; }),
       {}},
      {"month 13",
       "<start_month>",
       "</start_month>",
       "<start_month>13</start_month>",
       With([](Fields& f) { f.start = "2025-01-06 00:00:00"; }),
       {}},
      {"day 31 of 29",
       "<start_day>6</start_day><start_month>3",
       "</start_month>",
       "<start_day>31</start_day><start_month>2</start_month>",
       With([](Fields& f) { f.start = "2024-03-02 00:00:00"; }),
       {}},
      {"a negative day",
       "<start_day>",
       "</start_day>",
       "<start_day>-1</start_day>",
       With([](Fields& f) { f.start = "2024-02-28 00:00:00"; }),
       {}},
      {"a negative spread",
       "<randomize>",
       "</randomize>",
       "<randomize>-5</randomize>",
       With([](Fields& f) { f.randomize = -5; }),
       {}},
      {"a mask beyond the week",
       "<daymask>",
       "</daymask>",
       "<daymask>4294967295</daymask>",
       With([](Fields& f) { f.daymask = UINT_MAX; }),
       {}},
      {"a negative mask, as strtoul has it",
       "<daymask>",
       "</daymask>",
       "<daymask>-1</daymask>",
       With([](Fields& f) { f.daymask = UINT_MAX; }),
       {}},
      {"an end on day 31 of 30",
       "<end_month>12</end_month><end_day>24",
       "</end_day>",
       "<end_month>11</end_month><end_day>31</end_day>",
       With([](Fields& f) { f.end = "2025-12-01 23:59:59"; }),
       {}},
      {"an end before the start",
       "<end_year>",
       "</end_year>",
       "<end_year>1999</end_year>",
       With([](Fields& f) { f.end = "1999-12-24 23:59:59"; }),
       {}},
      {"an end after 2038",
       "<end_year>",
       "</end_year>",
       "<end_year>2100</end_year>",
       With([](Fields& f) { f.end = "2100-12-24 23:59:59"; }),
       {}},
      {"the first of two counts",
       "<eventid>",
       "</eventid>",
       "<eventid>8</eventid><eventid>9</eventid>",
       With([](Fields& f) { f.id = 8; }),
       {}},
      {"the first of two starts counts, empty or not",
       "<start>",
       "<start>",
       "<start/><start>",
       With(NoStart),
       {}},
      {"an unknown element is passed over",
       "<start>",
       "<start>",
       "<more>1</more><start>",
       Fields(),
       {}},
  };
  for (const Change& row : rows) Check(row);
}

TEST(EventFromXml, RatesAndKinds) {
  const ZoneScope zone(zones::kUtc);
  const struct {
    const char* why;
    int frequency, rate;
    unsigned int daymask;
    std::vector<int> lines;
  } rows[] = {
      {"kind 0 by 0", 0, 0, 0, {}},
      {"kind 0 by 3", 0, 3, 0, {}},
      {"kind 0 by -1", 0, -1, 0, {146}},
      {"daily, whose mask does not count", 1, 1, 0, {}},
      {"daily by 0", 1, 0, 0, {146}},
      {"weekly", 2, 1, 34, {}},
      {"weekly by -5", 2, -5, 34, {146}},
      {"monthly", 3, 1, 0, {}},
      {"yearly", 4, 1, 0, {}},
      {"no kind that exists", 9, 1, 0, {}},
      {"nor by 0", 9, 0, 0, {146}},
      {"a negative kind", -2, 1, 0, {}},
  };
  for (const auto& row : rows) {
    Fields fields;
    fields.frequency = row.frequency;
    fields.rate = row.rate;
    fields.daymask = row.daymask;
    Check({row.why, "<frequency>", "</rate>",
           "<frequency>" + std::to_string(row.frequency) + "</frequency><rate>" +
               std::to_string(row.rate) + "</rate>",
           fields, row.lines});
  }
}

TEST(EventFromXml, AStartByWeekComesFromTheCalendar) {
  const ZoneScope zone(zones::kUtc);
  const struct {
    const char* why;
    const char* date;  // day, month, year, period, weekday
    const char* start;
    int period, weekday;
  } rows[] = {
      {"the last Monday of May, whatever day is written",
       "<start_day>3</start_day><start_month>5</start_month><start_year>2024</start_year>"
       "<start_period>5</start_period><start_weekday>2</start_weekday>",
       "2024-05-27 00:00:00", 5, 2},
      {"no day written",
       "<start_month>2</start_month><start_year>2024</start_year><start_period>4</start_period>"
       "<start_weekday>5</start_weekday>",
       "2024-02-22 00:00:00", 4, 5},
      {"a weekday that never comes: the day of the epoch",
       "<start_day>9</start_day><start_month>5</start_month><start_year>2024</start_year>"
       "<start_period>1</start_period><start_weekday>0</start_weekday>",
       "2024-05-01 00:00:00", 1, 0},
      {"a month that does not exist: the day of the epoch",
       "<start_day>9</start_day><start_month>13</start_month><start_year>2024</start_year>"
       "<start_period>1</start_period><start_weekday>2</start_weekday>",
       "2025-01-01 00:00:00", 1, 2},
      {"a period of 9 is the last",
       "<start_month>5</start_month><start_year>2024</start_year><start_period>9</start_period>"
       "<start_weekday>2</start_weekday>",
       "2024-05-27 00:00:00", 9, 2},
  };
  for (const auto& row : rows) {
    Fields fields;
    fields.start = row.start;
    fields.period = row.period;
    fields.weekday = row.weekday;
    Check({row.why,
           "<start_date>",
           "</start_date>",
           "<start_date>" + std::string(row.date) + "</start_date>",
           fields,
           {}});
  }
  const ZoneScope west(zones::kNewYork);
  const auto event = FromXml(
      "<event><start><start_date><start_month>5</start_month><start_year>2024</start_year>"
      "<start_period>1</start_period></start_date></start></event>");
  EXPECT_EQ(Text(event->start), "2024-05-31 00:00:00") << "the epoch is the 31st in New York";
}

TEST(EventFromXml, AStartByWeekFollowsTheWalkOverTheClockChange) {
  const ZoneScope zone(zones::kNewYork);
  const auto event = FromXml(
      "<event><start><start_date><start_month>11</start_month><start_year>2024</start_year>"
      "<start_period>2</start_period><start_weekday>1</start_weekday></start_date></start>"
      "</event>");
  EXPECT_EQ(Text(event->start), "2024-11-03 00:00:00") << "the second Sunday comes out as the 3rd";
}

TEST(EventFromXml, DatesAreThoseOfTheZoneInForce) {
  for (const char* name : {zones::kNewYork, zones::kLordHowe, zones::kKolkata}) {
    const ZoneScope zone(name);
    ExpectFields(*FromXml(kFull), Fields(), name);
  }
  const ZoneScope zone(zones::kNewYork);
  const AssertLines asserts;
  EXPECT_EQ(Text(FromXml("<event/>")->end_date), "2038-01-17 23:59:59")
      << "west of Greenwich the day before";
}

}  // namespace
