// The calendar of a simulation, and the checker that reads it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

#include "CalendarChecker.h"
#include "controller/simulate/CalendarReport.h"
#include "controller/simulate/CalendarText.h"

namespace controller {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

TEST(CalendarText, FoldsAfter75OctetsAndNotInsideACharacter) {
  EXPECT_EQ(CalendarLine("X", std::string(73, 'a')), "X:" + std::string(73, 'a') + "\r\n");
  EXPECT_EQ(CalendarLine("X", std::string(74, 'a')), "X:" + std::string(73, 'a') + "\r\n a\r\n");
  EXPECT_EQ(CalendarLine("X", std::string(72, 'a') + "ä"),
            "X:" + std::string(72, 'a') + "\r\n ä\r\n");
  EXPECT_EQ(CalendarLine("X", std::string(73 + 74 + 1, 'a')),
            "X:" + std::string(73, 'a') + "\r\n " + std::string(74, 'a') + "\r\n a\r\n");
}

TEST(CalendarText, EscapesWhatWouldEndTheValue) {
  const struct {
    const char* why;
    std::string text;
    const char* value;
  } rows[] = {
      {"plain", "Porch: light", "Porch: light"},
      {"lists and parameters", "a,b;c", "a\\,b\\;c"},
      {"a backslash", "C:\\n", "C:\\\\n"},
      {"a line end", "one\ntwo", "one\\ntwo"},
      {"another line end", "one\r\nEND:VEVENT", "one\xEF\xBF\xBD\\nEND:VEVENT"},
      {"a control character", std::string("a\0b", 3),
       "a\xEF\xBF\xBD"
       "b"},
      {"no UTF-8", "a\xFF", "a\xEF\xBF\xBD"},
  };
  for (const auto& row : rows) EXPECT_EQ(CalendarValue(row.text), row.value) << row.why;
}

TEST(CalendarText, WritesMomentsInUtc) {
  EXPECT_EQ(CalendarMoment(0), "19700101T000000Z");
  EXPECT_EQ(CalendarMoment(1795273440), "20261121T150400Z");
}

class CalendarReportTest : public testing::Test {
 protected:
  CalendarReportTest() { project.house.projectId = "f00"; }

  ReadCalendar Read(const std::vector<SimulatedOccurrence>& occurrences) {
    std::ostringstream out;
    CalendarReport report(out, {project, {}, "", std::nullopt}, /*stamp=*/0);
    for (const SimulatedOccurrence& each : occurrences) report.OnOccurrence(each);
    report.Finish();
    return ReadCalendarText(out.str());
  }

  static SimulatedOccurrence Firing(unsigned long event, const std::string& description) {
    SimulatedOccurrence firing;
    firing.event = event;
    firing.description = description;
    firing.date = {2026, 11, 21};
    firing.at = 1795273440;
    return firing;
  }

  SimulatedProject project;
};

TEST_F(CalendarReportTest, HoldsWhatFires) {
  SimulatedOccurrence held = Firing(8, "held");
  held.outcome = OccurrenceState::kHeld;
  project.name = "Home, sweet; home";
  const ReadCalendar calendar = Read({Firing(7, "Porch"), held});
  EXPECT_THAT(calendar.faults, IsEmpty());
  EXPECT_EQ(calendar.head.at("NAME"), project.name);
  ASSERT_EQ(calendar.events.size(), 1u);
  EXPECT_EQ(calendar.events[0].at("UID"), "7-2026-11-21@f00.vexalink");
  EXPECT_EQ(calendar.events[0].at("DTSTART"), "20261121T150400Z");
  EXPECT_EQ(calendar.events[0].at("SUMMARY"), "Porch");
}

TEST_F(CalendarReportTest, TellsWhatWouldBeDone) {
  SimulatedOccurrence firing = Firing(7, "Porch");
  SimulatedAction action;
  action.action.what = CommandAction{{"/usr/bin/logger", "x"}, 60};
  action.action.delaySeconds = 30;
  firing.actions.push_back(action);
  action.runs = false;
  firing.actions.push_back(action);
  const ReadCalendar calendar = Read({firing});
  EXPECT_THAT(calendar.events[0].at("DESCRIPTION"), HasSubstr("logger, after 30 s"));
  EXPECT_THAT(calendar.events[0].at("DESCRIPTION"), Not(HasSubstr("\n")));
}

TEST_F(CalendarReportTest, StandsWhatTextsMayHold) {
  const std::string nasty = "a\r\nEND:VEVENT\r\nBEGIN:VEVENT;,\\ \x1B[2J \xFF " +
                            std::string(200, 'x') + " ümläüt 日本語 🏠🏠🏠🏠🏠🏠🏠🏠🏠🏠🏠🏠🏠🏠";
  const ReadCalendar calendar = Read({Firing(7, nasty)});
  EXPECT_THAT(calendar.faults, IsEmpty());
  ASSERT_EQ(calendar.events.size(), 1u);
  EXPECT_THAT(calendar.events[0].at("SUMMARY"), HasSubstr("日本語 🏠🏠"));
}

TEST_F(CalendarReportTest, IsACalendarAlsoWhereNothingFires) {
  const ReadCalendar calendar = Read({});
  EXPECT_THAT(calendar.faults, IsEmpty());
  EXPECT_THAT(calendar.events, IsEmpty());
}

TEST(CalendarChecker, SeesWhatIsWrong) {
  const std::string head = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:x\r\n";
  const std::string event =
      "BEGIN:VEVENT\r\nUID:1\r\nDTSTAMP:20261121T150400Z\r\n"
      "DTSTART:20261121T150400Z\r\nEND:VEVENT\r\n";
  const std::string end = "END:VCALENDAR\r\n";
  EXPECT_THAT(ReadCalendarText(head + event + end).faults, IsEmpty());
  EXPECT_THAT(ReadCalendarText(head + event + event + end).faults,
              ElementsAre("a second entry with UID 1"));
  EXPECT_THAT(ReadCalendarText(head + end).faults, ElementsAre("the calendar holds no component"));
  EXPECT_THAT(ReadCalendarText(head + event).faults, Not(IsEmpty()));
  EXPECT_THAT(ReadCalendarText(head + "X:" + std::string(74, 'a') + "\r\n" + event + end).faults,
              ElementsAre("a line of 76 octets"));
  EXPECT_THAT(ReadCalendarText(head + "X:a,b\r\n" + event + end).faults, Not(IsEmpty()));
  EXPECT_THAT(ReadCalendarText(head + "X:\xC3\r\n \xA4\r\n" + event + end).faults, Not(IsEmpty()));
  EXPECT_THAT(ReadCalendarText(head + "BEGIN:VEVENT\r\nEND:VEVENT\r\n" + end).faults,
              Not(IsEmpty()));
}

}  // namespace
}  // namespace controller
