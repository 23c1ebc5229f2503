// What is written as JSON means to the scheduler what a plain reading of it says.

#include <algorithm>
#include <array>
#include <cstdio>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/controller/programming/ConditionAgent.h"

namespace {

using nlohmann::json;

constexpr const char* kComparators[] = {"eq", "ne", "gt", "ge", "lt", "le"};
const std::vector<std::string> kWeekdays = {"sun", "mon", "tue", "wed", "thu", "fri", "sat"};

// Ends and beginnings of days, weeks, months, years and leap years, both clock changes, and the
// seconds round the times that the conditions name.
const std::vector<std::string> kMoments = {
    "2024-02-28T23:59:59", "2024-02-29T00:00:00", "2024-03-01T06:59:59", "2024-03-01T07:00:00",
    "2024-03-01T07:00:01", "2024-03-01T07:00:59", "2024-03-01T07:01:00", "2024-03-02T21:59:59",
    "2024-03-03T22:00:00", "2024-03-04T22:00:01", "2024-03-05T01:59:59", "2024-03-06T02:00:00",
    "2024-03-07T02:00:01", "2024-03-31T12:00:00", "2024-06-15T12:00:00", "2024-10-27T12:00:00",
    "2024-11-30T23:00:00", "2024-12-31T23:59:59", "2025-01-01T00:00:00", "2025-07-31T00:01:00",
    "2100-02-28T15:00:00", "2000-02-29T15:00:00"};

bool Compare(const std::string& is, long now, long given) {
  if (is == "eq") return now == given;
  if (is == "ne") return now != given;
  if (is == "gt") return now > given;
  if (is == "ge") return now >= given;
  if (is == "lt") return now < given;
  return now <= given;
}

// "With a list, eq holds if any of it does, ne if none does, gt if now is beyond any of it."
bool CompareAny(const std::string& is, long now, const std::vector<long>& list) {
  if (is == "ne") return std::count(list.begin(), list.end(), now) == 0;
  return std::any_of(list.begin(), list.end(), [&](long given) { return Compare(is, now, given); });
}

long NumberOfDate(int year, int month, int day) { return (year * 100L + month) * 100 + day; }

long SecondOf(const std::string& clock) {
  return std::stol(clock.substr(0, 2)) * 3600 + std::stol(clock.substr(3, 2)) * 60;
}

class ConditionsAtMoments : public testing::Test {
 protected:
  // At every moment, the scheduler's answer against what `expected` says of the local time.
  template <typename Expected>
  void Check(const json& condition, const Expected& expected) {
    const controller::Condition read = ConditionFrom(condition.dump());
    for (const std::string& text : kMoments) {
      const std::time_t moment = time_.Set(text);
      std::tm local{};
      localtime_r(&moment, &local);
      EXPECT_EQ(agent_.Holds(read), expected(local)) << condition << " at " << text;
    }
  }

  BerlinTime time_;
  ConditionAgent agent_;
};

long SecondOfDay(const std::tm& local) {
  return local.tm_hour * 3600L + local.tm_min * 60L + local.tm_sec;
}

TEST_F(ConditionsAtMoments, TimeComparesBySecondsAndEqualsByTheMinute) {
  for (const char* given : {"00:01", "02:00", "07:00", "12:00", "22:00", "23:59"}) {
    for (const std::string is : kComparators) {
      Check({{"kind", "time"}, {"is", is}, {"time", given}}, [&](const std::tm& local) {
        const bool byMinute = is == "eq" || is == "ne";
        const long now = byMinute ? SecondOfDay(local) / 60 * 60 : SecondOfDay(local);
        return Compare(is, now, SecondOf(given));
      });
    }
  }
}

TEST_F(ConditionsAtMoments, TimeBetweenMayLeadOverMidnight) {
  const struct {
    const char* from;
    const char* to;
  } rows[] = {{"07:00", "22:00"}, {"22:00", "02:00"}, {"00:00", "23:59"}, {"07:00", "07:00"},
              {"22:00", "00:00"}, {"23:59", "00:00"}, {"00:00", "00:01"}};
  for (const auto& row : rows) {
    const json condition = {
        {"kind", "time"}, {"is", "between"}, {"from", row.from}, {"to", row.to}};
    Check(condition, [&](const std::tm& local) {
      const long now = SecondOfDay(local);
      const long from = SecondOf(row.from);
      const long to = SecondOf(row.to);
      return from <= to ? from <= now && now <= to : now >= from || now <= to;
    });
  }
}

TEST_F(ConditionsAtMoments, WeekdaysCountFromSunday) {
  const std::vector<std::vector<long>> lists = {{1, 7}, {6}, {3, 2}, {1, 2, 3, 4, 5, 6, 7}};
  for (const auto& list : lists) {
    json days = json::array();
    for (const long day : list) days.push_back(kWeekdays[static_cast<std::size_t>(day - 1)]);
    for (const std::string is : kComparators) {
      Check({{"kind", "weekday"}, {"is", is}, {"days", days}},
            [&](const std::tm& local) { return CompareAny(is, local.tm_wday + 1, list); });
    }
  }
  for (std::size_t from = 0; from < 7; ++from) {
    for (std::size_t to = from; to < 7; ++to) {
      Check({{"kind", "weekday"},
             {"is", "between"},
             {"from", kWeekdays[from]},
             {"to", kWeekdays[to]}},
            [&](const std::tm& local) {
              const auto now = static_cast<std::size_t>(local.tm_wday);
              return from <= now && now <= to;
            });
    }
  }
}

TEST_F(ConditionsAtMoments, DaysOfTheMonth) {
  const std::vector<std::vector<long>> lists = {{1}, {31, 1}, {15, 29}, {2, 3, 4}};
  for (const auto& list : lists) {
    for (const std::string is : kComparators) {
      Check({{"kind", "day"}, {"is", is}, {"days", list}},
            [&](const std::tm& local) { return CompareAny(is, local.tm_mday, list); });
    }
  }
  const int spans[][2] = {{1, 31}, {1, 1}, {28, 29}, {31, 31}};
  for (const auto& span : spans) {
    Check(
        {{"kind", "day"}, {"is", "between"}, {"from", span[0]}, {"to", span[1]}},
        [&](const std::tm& local) { return span[0] <= local.tm_mday && local.tm_mday <= span[1]; });
  }
}

TEST_F(ConditionsAtMoments, Months) {
  const std::vector<std::vector<long>> lists = {{2}, {12, 1}, {6, 7, 8}};
  for (const auto& list : lists) {
    for (const std::string is : kComparators) {
      Check({{"kind", "month"}, {"is", is}, {"months", list}},
            [&](const std::tm& local) { return CompareAny(is, local.tm_mon + 1, list); });
    }
  }
  for (int from = 1; from <= 12; ++from) {
    for (int to = 1; to <= 12; ++to) {
      Check({{"kind", "month"}, {"is", "between"}, {"from", from}, {"to", to}},
            [&](const std::tm& local) {
              const int now = local.tm_mon + 1;
              return from <= to ? from <= now && now <= to : now >= from || now <= to;
            });
    }
  }
}

TEST_F(ConditionsAtMoments, Dates) {
  const int dates[][3] = {{2024, 2, 29}, {2024, 12, 31}, {1970, 1, 1}, {9999, 12, 31}};
  const auto text = [](const int* date) {
    std::array<char, 40> made{};
    std::snprintf(made.data(), made.size(), "%04d-%02d-%02d", date[0], date[1], date[2]);
    return std::string(made.data());
  };
  const auto now = [](const std::tm& local) {
    return NumberOfDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
  };
  for (const auto& date : dates) {
    const long given = NumberOfDate(date[0], date[1], date[2]);
    for (const std::string is : kComparators) {
      Check({{"kind", "date"}, {"is", is}, {"date", text(date)}},
            [&](const std::tm& local) { return Compare(is, now(local), given); });
    }
    for (const auto& end : dates) {
      const long to = NumberOfDate(end[0], end[1], end[2]);
      if (to < given) continue;
      Check({{"kind", "date"}, {"is", "between"}, {"from", text(date)}, {"to", text(end)}},
            [&](const std::tm& local) { return given <= now(local) && now(local) <= to; });
    }
  }
}

TEST_F(ConditionsAtMoments, YearsAndLeapYears) {
  const int years[] = {1970, 2000, 2024, 2025, 9999};
  for (const int year : years) {
    for (const std::string is : kComparators) {
      Check({{"kind", "year"}, {"is", is}, {"year", year}},
            [&](const std::tm& local) { return Compare(is, local.tm_year + 1900, year); });
    }
    for (const int to : years) {
      if (to < year) continue;
      Check({{"kind", "year"}, {"is", "between"}, {"from", year}, {"to", to}},
            [&](const std::tm& local) {
              return year <= local.tm_year + 1900 && local.tm_year + 1900 <= to;
            });
    }
  }
  Check({{"kind", "leap"}}, [](const std::tm& local) {
    const int year = local.tm_year + 1900;
    return year == 2024 || year == 2000;  // of those among the moments; 2100 is none
  });
}

// Berlin, 20 March 2024, by the almanac: sunrise 06:11, sunset 18:20.
TEST_F(ConditionsAtMoments, TheSun) {
  const struct {
    const char* why;
    const char* at;
    const char* condition;
    bool holds;
  } rows[] = {
      {"day", "12:00", R"({"kind": "time", "is": "day"})", true},
      {"day, soon after sunrise", "06:20", R"({"kind": "time", "is": "day"})", true},
      {"not before it", "06:00", R"({"kind": "time", "is": "day"})", false},
      {"night before sunrise", "06:00", R"({"kind": "time", "is": "night"})", true},
      {"night after sunset", "18:30", R"({"kind": "time", "is": "night"})", true},
      {"no night at noon", "12:00", R"({"kind": "time", "is": "night"})", false},
      {"half an hour before sunset", "18:00",
       R"({"kind": "time", "is": "within", "minutes": 30, "side": "before", "of": "sunset"})",
       true},
      {"too early for it", "17:40",
       R"({"kind": "time", "is": "within", "minutes": 30, "side": "before", "of": "sunset"})",
       false},
      {"too late for it", "18:30",
       R"({"kind": "time", "is": "within", "minutes": 30, "side": "before", "of": "sunset"})",
       false},
      {"an hour after sunset", "19:10",
       R"({"kind": "time", "is": "within", "minutes": 60, "side": "after", "of": "sunset"})", true},
      {"before sunset is not after it", "18:10",
       R"({"kind": "time", "is": "within", "minutes": 60, "side": "after", "of": "sunset"})",
       false},
      {"after sunrise", "06:30",
       R"({"kind": "time", "is": "within", "minutes": 60, "side": "after", "of": "sunrise"})",
       true},
      {"not after sunset", "18:30",
       R"({"kind": "time", "is": "within", "minutes": 60, "side": "after", "of": "sunrise"})",
       false},
      {"before sunrise", "05:30",
       R"({"kind": "time", "is": "within", "minutes": 60, "side": "before", "of": "sunrise"})",
       true},
      {"a whole day before sunset", "00:10",
       R"({"kind": "time", "is": "within", "minutes": 1440, "side": "before", "of": "sunset"})",
       true},
      {"no minutes: only the second of sunset", "18:30",
       R"({"kind": "time", "is": "within", "minutes": 0, "side": "after", "of": "sunset"})", false},
  };
  for (const auto& row : rows) {
    time_.Set("2024-03-20T" + std::string(row.at) + ":00");
    EXPECT_EQ(agent_.Holds(ConditionFrom(row.condition)), row.holds) << row.why;
  }
}

}  // namespace
