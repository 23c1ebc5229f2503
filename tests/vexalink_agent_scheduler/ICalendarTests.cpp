// Recurrence against libical, an implementation of RFC 5545, on the kinds that an RRULE can
// express, over years, in a zone without clock changes.

#include <cstdio>
#include <ctime>
#include <gtest/gtest.h>
#include <libical/ical.h>
#include <string>
#include <vector>

#include "tests/support/TestClock.h"
#include "tests/vexalink_agent_scheduler/EventHelp.h"
#include "tests/vexalink_agent_scheduler/Zones.h"

namespace {

using DayList = std::vector<std::string>;

// The days of a rule from its start ("2024-03-06") to `last`, both included.
DayList RuleDays(const std::string& rule, const std::string& start, const std::string& last) {
  const icalrecurrencetype recurrence = icalrecurrencetype_from_string(rule.c_str());
  std::string compact = start;
  std::erase(compact, '-');
  icalrecur_iterator* const iterator =
      icalrecur_iterator_new(recurrence, icaltime_from_string(compact.c_str()));
  DayList days;
  if (iterator == nullptr) {
    ADD_FAILURE() << rule;
    return days;
  }
  while (true) {
    const icaltimetype day = icalrecur_iterator_next(iterator);
    if (icaltime_is_null_time(day)) break;
    char text[16];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d", day.year % 10000, day.month % 100,
                  day.day % 100);
    if (text > last) break;
    days.emplace_back(text);
  }
  icalrecur_iterator_free(iterator);
  return days;
}

std::string Number(int value) { return std::to_string(value); }

constexpr const char* kDayNames[] = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};

std::string DaysOfMask(unsigned int mask) {
  std::string names;
  for (unsigned int day = 0; day < 7; ++day) {
    if ((mask >> day & 1U) == 0) continue;
    if (!names.empty()) names += ',';
    names += kDayNames[day];
  }
  return names;
}

const DayList kStarts = {"2019-12-29", "2020-01-31", "2020-02-29", "2020-03-01", "2021-08-30",
                         "2021-12-31", "2022-06-15", "2023-04-05", "2023-10-07", "2024-02-28"};

// The same of an event. In a zone without clock changes noon follows noon after 86400 seconds.
DayList EventDays(const Event& event, const std::string& start, const std::string& last) {
  DayList days;
  const std::time_t end = Noon(last).Seconds();
  for (std::time_t noon = Noon(start).Seconds(); noon <= end; noon += 86400) {
    if (event.OccursOnDate(VxTime(noon))) days.push_back(Text(VxTime(noon)).substr(0, 10));
  }
  return days;
}

class ICalendar : public testing::Test {
 protected:
  // From the start to the end of 2031, or to `last`.
  static void Compare(const Event& event, const std::string& rule, const std::string& start,
                      const std::string& last = "2031-12-31") {
    EXPECT_EQ(EventDays(event, start, last), RuleDays(rule, start, last))
        << rule << " from " << start;
  }

  ZoneScope zone{zones::kUtc};
};

TEST_F(ICalendar, AgreesOnEventsEveryNthDay) {
  for (const std::string& start : kStarts) {
    for (const int rate : {1, 2, 3, 7, 10, 30, 365, 1000}) {
      Compare(Daily(start, rate), "FREQ=DAILY;INTERVAL=" + Number(rate), start);
    }
  }
}

TEST_F(ICalendar, AgreesOnWeekdaysEveryNthWeekFromSunday) {
  for (const std::string& start : kStarts) {
    for (const int rate : {1, 2, 3, 5, 52}) {
      for (const unsigned int mask : {0x01U, 0x40U, 0x41U, 0x22U, 0x3EU, 0x7FU, 0x54U}) {
        Compare(Weekly(start, rate, mask),
                "FREQ=WEEKLY;WKST=SU;INTERVAL=" + Number(rate) + ";BYDAY=" + DaysOfMask(mask),
                start);
      }
    }
  }
}

TEST_F(ICalendar, AgreesOnADayOfEveryNthMonth) {
  for (const std::string& start : kStarts) {
    for (const int rate : {1, 2, 3, 5, 12, 18}) {
      Compare(Monthly(start, rate),
              "FREQ=MONTHLY;INTERVAL=" + Number(rate) + ";BYMONTHDAY=" + start.substr(8), start);
    }
  }
}

TEST_F(ICalendar, AgreesOnWeekdaysOfEveryNthMonth) {
  for (const std::string& start : kStarts) {
    for (const int rate : {1, 2, 7, 12}) {
      for (int period = 1; period <= 5; ++period) {
        for (int weekday = 1; weekday <= 7; ++weekday) {
          const std::string day = Number(period == 5 ? -1 : period) + kDayNames[weekday - 1];
          Compare(MonthlyBy(start, rate, static_cast<Scheduler::PERIOD>(period), weekday),
                  "FREQ=MONTHLY;INTERVAL=" + Number(rate) + ";BYDAY=" + day, start, "2027-12-31");
        }
      }
    }
  }
}

TEST_F(ICalendar, AgreesOnADayOfEveryNthYear) {
  for (const std::string& start : kStarts) {
    for (const int rate : {1, 2, 3, 4}) {
      Compare(Yearly(start, rate),
              "FREQ=YEARLY;INTERVAL=" + Number(rate) + ";BYMONTH=" + start.substr(5, 2) +
                  ";BYMONTHDAY=" + start.substr(8),
              start);
    }
  }
}

TEST_F(ICalendar, AgreesOnWeekdaysOfAMonthOfEveryNthYear) {
  for (const std::string& start : kStarts) {
    for (const int rate : {1, 3}) {
      for (int period = 1; period <= 5; ++period) {
        for (int weekday = 1; weekday <= 7; ++weekday) {
          const std::string day = Number(period == 5 ? -1 : period) + kDayNames[weekday - 1];
          Compare(YearlyBy(start, rate, static_cast<Scheduler::PERIOD>(period), weekday),
                  "FREQ=YEARLY;INTERVAL=" + Number(rate) + ";BYMONTH=" + start.substr(5, 2) +
                      ";BYDAY=" + day,
                  start, "2030-12-31");
        }
      }
    }
  }
}

TEST_F(ICalendar, AgreesOnTheLastDay) {
  const struct {
    const char* why;
    const char* end;
    const char* until;
  } rows[] = {
      {"a day on which it happens", "2023-04-15", "20230415"},
      {"a day between", "2023-04-16", "20230416"},
      {"the start itself", "2023-04-05", "20230405"},
      {"before the start", "2023-04-04", "20230404"},
      {"years later", "2029-12-31", "20291231"},
  };
  for (const auto& row : rows) {
    Event daily = Daily("2023-04-05", 10);
    EndOn(daily, row.end);
    Compare(daily, std::string("FREQ=DAILY;INTERVAL=10;UNTIL=") + row.until, "2023-04-05");
    Event weekly = Weekly("2023-04-05", 2, kWednesday | kSaturday);
    EndOn(weekly, row.end);
    Compare(weekly, std::string("FREQ=WEEKLY;WKST=SU;INTERVAL=2;BYDAY=WE,SA;UNTIL=") + row.until,
            "2023-04-05");
    Event monthly = Monthly("2023-04-05", 1);
    EndOn(monthly, row.end);
    Compare(monthly, std::string("FREQ=MONTHLY;BYMONTHDAY=5;UNTIL=") + row.until, "2023-04-05");
  }
}

}  // namespace
