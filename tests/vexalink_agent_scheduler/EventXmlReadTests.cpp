// Reading an event element: every field, every part that is missing, empty or malformed.

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

}  // namespace
