#pragma once

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/support/FakeHost.h"
#include "tests/vexalink_agent_scheduler/EventHelp.h"

/// For tests of what is read from an event element with one of its parts changed.
namespace event_xml {

// An element in which no field has its initial value.
inline const std::string kFull =
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

inline const std::string kEpoch = "1970-01-01 00:00:00";
inline const std::string kNever = "2038-01-18 23:59:59";

inline void ExpectFields(const Event& event, const Fields& expected, const char* why) {
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

inline void Check(const Change& row) {
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

inline Fields With(void (*change)(Fields&)) {
  Fields fields;
  change(fields);
  return fields;
}

inline void NoStart(Fields& f) {
  f.offset = f.minutes = f.weekday = f.randomize = 0;
  f.start = kEpoch;
}

inline void NoStartDate(Fields& f) {
  f.weekday = 0;
  f.start = kEpoch;
}

inline void NoRepeat(Fields& f) {
  f.frequency = f.rate = 0;
  f.daymask = 0;
  f.hasEnd = false;
  f.end = kNever;
}

inline void NoEnd(Fields& f) {
  f.hasEnd = false;
  f.end = kNever;
}

}  // namespace event_xml
