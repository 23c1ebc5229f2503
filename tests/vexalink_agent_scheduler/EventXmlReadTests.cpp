// Reading an event element: every field, every part that is missing, empty or malformed.

#include <climits>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/support/FakeHost.h"
#include "tests/support/TestClock.h"
#include "tests/vexalink_agent_scheduler/EventHelp.h"
#include "tests/vexalink_agent_scheduler/Zones.h"

namespace {

// An element in which no field has its initial value.
const std::string kFull =
    "<event><eventid>7</eventid><buttonbindingid>99</buttonbindingid>"
    "<description>Porch</description>"
    "<start><offset>2</offset><offset_minutes>-30</offset_minutes>"
    "<start_date><start_day>6</start_day><start_month>3</start_month><start_year>2024</start_year>"
    "<start_period>0</start_period><start_weekday>4</start_weekday></start_date>"
    "<randomize>5</randomize></start>"
    "<repeat><frequency>2</frequency><rate>3</rate><daymask>34</daymask>"
    "<end_date><end_month>12</end_month><end_day>24</end_day><end_year>2025</end_year></end_date>"
    "</repeat></event>";

// What is read from it.
struct Fields {
  unsigned long id = 7;
  std::string description = "Porch";
  int offset = 2;
  int minutes = -30;
  std::string start = "2024-03-06 00:00:00";
  int period = 0;
  int weekday = 4;
  int randomize = 5;
  int frequency = 2;
  int rate = 3;
  unsigned int daymask = 34;
  bool hasEnd = true;
  std::string end = "2025-12-24 23:59:59";
};

const std::string kEpoch = "1970-01-01 00:00:00";
const std::string kNever = "2038-01-18 23:59:59";

void ExpectFields(const Event& event, const Fields& expected, const char* why) {
  EXPECT_EQ(event.eventid, expected.id) << why;
  EXPECT_EQ(event.description, expected.description) << why;
  EXPECT_EQ(static_cast<int>(event.offset), expected.offset) << why;
  EXPECT_EQ(event.offset_minutes, expected.minutes) << why;
  EXPECT_EQ(Text(event.start), expected.start) << why;
  EXPECT_EQ(static_cast<int>(event.start_period), expected.period) << why;
  EXPECT_EQ(event.start_weekday, expected.weekday) << why;
  EXPECT_EQ(event.randomize, expected.randomize) << why;
  EXPECT_EQ(event.frequency, expected.frequency) << why;
  EXPECT_EQ(event.rate, expected.rate) << why;
  EXPECT_EQ(event.daymask, expected.daymask) << why;
  EXPECT_EQ(event.hasEndDate, expected.hasEnd) << why;
  EXPECT_EQ(Text(event.end_date), expected.end) << why;
}

// kFull with one part replaced; from `begin` to the end of `end`.
struct Change {
  const char* why;
  std::string begin;
  std::string end;
  std::string by;
  Fields fields;
  std::vector<int> lines;
};

void Check(const Change& row) {
  std::string xml = kFull;
  const std::size_t from = xml.find(row.begin);
  const std::size_t to = xml.find(row.end, from);
  ASSERT_NE(from, std::string::npos) << row.why;
  ASSERT_NE(to, std::string::npos) << row.why;
  xml.replace(from, to + row.end.size() - from, row.by);
  const AssertLines asserts;
  ExpectFields(*FromXml(xml), row.fields, row.why);
  EXPECT_EQ(asserts.lines, row.lines) << row.why;
}

Fields With(void (*change)(Fields&)) {
  Fields fields;
  change(fields);
  return fields;
}

void NoStart(Fields& f) {
  f.offset = f.minutes = f.weekday = f.randomize = 0;
  f.start = kEpoch;
}

void NoStartDate(Fields& f) {
  f.weekday = 0;
  f.start = kEpoch;
}

void NoRepeat(Fields& f) {
  f.frequency = f.rate = 0;
  f.daymask = 0;
  f.hasEnd = false;
  f.end = kNever;
}

void NoEnd(Fields& f) {
  f.hasEnd = false;
  f.end = kNever;
}

TEST(EventFromXml, ReadsEveryField) {
  const ZoneScope zone(zones::kUtc);
  const AssertLines asserts;
  ExpectFields(*FromXml(kFull), Fields(), "the whole element");
  EXPECT_TRUE(asserts.lines.empty());
}

TEST(EventFromXml, KeepsTheSiteItWasGiven) {
  const AssertLines asserts;
  const auto document = VxXML::CreateXmlDocument("<event/>");
  const Event event(document.get(), 51.5, -0.1);
  EXPECT_EQ(event.latitude, 51.5);
  EXPECT_EQ(event.longitude, -0.1);
}

TEST(EventFromXml, MissingLeavesAreZeroOrEmpty) {
  const ZoneScope zone(zones::kUtc);
  const Change rows[] = {
      {"eventid", "<eventid>", "</eventid>", "", With([](Fields& f) { f.id = 0; }), {}},
      {"description",
       "<description>",
       "</description>",
       "",
       With([](Fields& f) { f.description = ""; }),
       {}},
      {"offset", "<offset>", "</offset>", "", With([](Fields& f) { f.offset = 0; }), {}},
      {"offset_minutes",
       "<offset_minutes>",
       "</offset_minutes>",
       "",
       With([](Fields& f) { f.minutes = 0; }),
       {}},
      {"start_day 0 is the last of the month before",
       "<start_day>",
       "</start_day>",
       "",
       With([](Fields& f) { f.start = "2024-02-29 00:00:00"; }),
       {}},
      {"start_month 0 is December of the year before",
       "<start_month>",
       "</start_month>",
       "",
       With([](Fields& f) { f.start = "2023-12-06 00:00:00"; }),
       {}},
      {"start_year 0",
       "<start_year>",
       "</start_year>",
       "",
       With([](Fields& f) { f.start = "0-03-06 00:00:00"; }),
       {}},
      {"start_period", "<start_period>", "</start_period>", "", Fields(), {}},
      {"start_weekday",
       "<start_weekday>",
       "</start_weekday>",
       "",
       With([](Fields& f) { f.weekday = 0; }),
       {}},
      {"randomize",
       "<randomize>",
       "</randomize>",
       "",
       With([](Fields& f) { f.randomize = 0; }),
       {}},
      {"frequency, so a rate of a single event, and no mask",
       "<frequency>",
       "</frequency>",
       "",
       With([](Fields& f) {
         f.frequency = 0;
         f.daymask = 0;
       }),
       {}},
      {"rate", "<rate>", "</rate>", "", With([](Fields& f) { f.rate = 0; }), {146}},
      {"daymask", "<daymask>", "</daymask>", "", With([](Fields& f) { f.daymask = 0; }), {}},
      {"end_day 0",
       "<end_day>",
       "</end_day>",
       "",
       With([](Fields& f) { f.end = "2025-11-30 23:59:59"; }),
       {}},
      {"end_month 0",
       "<end_month>",
       "</end_month>",
       "",
       With([](Fields& f) { f.end = "2024-12-24 23:59:59"; }),
       {}},
      {"end_year 0",
       "<end_year>",
       "</end_year>",
       "",
       With([](Fields& f) { f.end = "0-12-24 23:59:59"; }),
       {}},
  };
  for (const Change& row : rows) Check(row);
}

TEST(EventFromXml, MissingAndEmptyElements) {
  const ZoneScope zone(zones::kUtc);
  const Change rows[] = {
      {"no start", "<start>", "</start>", "", With(NoStart), {66}},
      {"an empty start", "<start>", "</start>", "<start/>", With(NoStart), {}},
      {"a start of white space", "<start>", "</start>", "<start> \n </start>", With(NoStart), {}},
      {"a start of a comment",
       "<start>",
       "</start>",
       "<start><!-- x --></start>",
       With(NoStart),
       {}},
      {"a start of text", "<start>", "</start>", "<start>soon</start>", With(NoStart), {74}},
      {"no start_date", "<start_date>", "</start_date>", "", With(NoStartDate), {74}},
      {"an empty start_date",
       "<start_date>",
       "</start_date>",
       "<start_date/>",
       With(NoStartDate),
       {}},
      {"a start_date of white space",
       "<start_date>",
       "</start_date>",
       "<start_date> </start_date>",
       With(NoStartDate),
       {}},
      {"a start_date of text: 30 November of year -1",
       "<start_date>",
       "</start_date>",
       "<start_date>x</start_date>",
       With([](Fields& f) {
         f.weekday = 0;
         f.start = "-1-11-30 00:00:00";
       }),
       {}},
      {"no repeat", "<repeat>", "</repeat>", "", With(NoRepeat), {}},
      {"an empty repeat", "<repeat>", "</repeat>", "<repeat/>", With(NoRepeat), {}},
      {"a repeat of white space",
       "<repeat>",
       "</repeat>",
       "<repeat>\t</repeat>",
       With(NoRepeat),
       {}},
      {"a repeat of text: kind 0 by 0",
       "<repeat>",
       "</repeat>",
       "<repeat>x</repeat>",
       With(NoRepeat),
       {}},
      {"no end_date", "<end_date>", "</end_date>", "", With(NoEnd), {}},
      {"an empty end_date", "<end_date>", "</end_date>", "<end_date/>", With(NoEnd), {}},
      {"an end_date of white space",
       "<end_date>",
       "</end_date>",
       "<end_date> </end_date>",
       With(NoEnd),
       {}},
      {"an end_date of text: day 0 of month 0 of year 0",
       "<end_date>",
       "</end_date>",
       "<end_date>x</end_date>",
       With([](Fields& f) { f.end = "-1-11-30 23:59:59"; }),
       {}},
      {"all of them: in the order in which they are read",
       "<start>",
       "</repeat>",
       "<repeat><frequency>1</frequency></repeat>",
       With([](Fields& f) {
         NoStart(f);
         NoRepeat(f);
         f.frequency = 1;
       }),
       {66, 146}},
      {"no start_date and a rate below 1",
       "<start_date>",
       "</rate>",
       "</start><repeat><frequency>2</frequency><rate>-1</rate>",
       With([](Fields& f) {
         NoStartDate(f);
         f.randomize = 0;
         f.rate = -1;
       }),
       {74, 146}},
  };
  for (const Change& row : rows) Check(row);
}

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

TEST(EventFromXml, ARootOfAnotherNameIsRecordedAndNotRead) {
  const ZoneScope zone(zones::kUtc);
  for (const char* name : {"Event", "events", "event_data", "e"}) {
    const AssertLines asserts;
    const auto event = FromXml("<" + std::string(name) + "><eventid>7</eventid></" + name + ">");
    EXPECT_EQ(event->eventid, 0U) << name;
    EXPECT_EQ(event->end_date, VxTime()) << "not even an end is set";
    EXPECT_EQ(asserts.lines, std::vector<int>{55}) << name;
  }
}

// A host's document without a root element.
class NoRoot final : public VxXML::IDocument {
 public:
  void AddRef() override {}
  void Release() override {}
  VxXML::INode* GetRoot() const override { return nullptr; }
};

TEST(EventFromXml, ADocumentWithoutARootIsRecordedAndNotRead) {
  NoRoot document;
  const AssertLines asserts;
  const Event event(&document, 1, 2);
  EXPECT_EQ(event.eventid, 0U);
  ASSERT_FALSE(asserts.lines.empty());
  EXPECT_EQ(asserts.lines.front(), 54);
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
