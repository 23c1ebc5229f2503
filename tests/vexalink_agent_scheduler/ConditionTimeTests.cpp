// Conditions on the time of day: by the clock, by the sun.

#include "tests/vexalink_agent_scheduler/AgentHelp.h"

namespace {

class IfTime : public AgentTest {
 protected:
  IfTime() { Start(); }

  bool Holds(const std::string& now, const std::string& operands) {
    clock.Set(now);
    return Condition("IF_TIME", "<c>" + operands + "</c>");
  }
  // At a time of 6 March 2024.
  bool HoldsAt(const std::string& time, const std::string& operands) {
    return Holds("2024-03-06 " + time, operands);
  }
};

std::string Compare(const std::string& comparator, int minutes) {
  return "<comparator>" + comparator + "</comparator><comp_time>" + std::to_string(minutes) +
         "</comp_time>";
}

std::string Between(int from, int to) {
  return "<comparator>BT</comparator><offset_from>" + std::to_string(from) +
         "</offset_from><offset_to>" + std::to_string(to) + "</offset_to>";
}

TEST_F(IfTime, ComparesWithAClockTime) {
  const struct {
    const char* why;
    const char* now;
    const char* answers;  // EQ, NE, GT, GE, LT, LE with 10:00
  } rows[] = {
      {"a second before", "09:59:59", ".N..LL"},
      {"at it", "10:00:00", "E..G.L"},
      {"equal throughout the minute, greater after its first second", "10:00:01", "E.GG.."},
      {"its last second", "10:00:59", "E.GG.."},
      {"the next minute", "10:01:00", ".NGG.."},
      {"the same minute of another hour", "11:00:00", ".NGG.."},
      {"long before", "00:00:00", ".N..LL"},
  };
  constexpr const char* kComparators[] = {"EQ", "NE", "GT", "GE", "LT", "LE"};
  for (const auto& row : rows) {
    for (int i = 0; i < 6; ++i) {
      EXPECT_EQ(HoldsAt(row.now, Compare(kComparators[i], 600)), row.answers[i] != '.')
          << kComparators[i] << " at " << row.now << ": " << row.why;
    }
  }
}

TEST_F(IfTime, AtMidnightNeverHolds) {
  for (const char* comparator : {"EQ", "NE", "GT", "GE", "LT", "LE"}) {
    for (const int minutes : {0, -1, -600}) {
      EXPECT_FALSE(HoldsAt("00:00:00", Compare(comparator, minutes))) << comparator << minutes;
      EXPECT_FALSE(HoldsAt("12:00:00", Compare(comparator, minutes))) << comparator << minutes;
    }
  }
  EXPECT_TRUE(HoldsAt("00:00:00", Compare("EQ", 1440))) << "the next midnight, by its clock time";
  EXPECT_TRUE(HoldsAt("00:01:00", Compare("EQ", 1))) << "one past midnight does";
}

TEST_F(IfTime, UnknownAndMissingComparatorsAreFalse) {
  for (const char* comparator : {"", "eq", "IS", "BTW"}) {
    EXPECT_FALSE(HoldsAt("10:00:00", Compare(comparator, 600))) << comparator;
  }
  EXPECT_FALSE(HoldsAt("10:00:00", "<comp_time>600</comp_time>"));
  EXPECT_FALSE(HoldsAt("10:00:00", ""));
}

TEST_F(IfTime, BetweenClockTimes) {
  const struct {
    const char* why;
    int from, to;
    const char* now;
    bool holds;
  } rows[] = {
      {"its first second", 600, 660, "10:00:00", true},
      {"a second before", 600, 660, "09:59:59", false},
      {"its last second", 600, 660, "11:00:00", true},
      {"a second after", 600, 660, "11:00:01", false},
      {"one second long", 600, 600, "10:00:00", true},
      {"and no longer", 600, 600, "10:00:01", false},
      {"over midnight, in the evening", 1320, 1560, "23:30:00", true},
      {"over midnight, at its start", 1320, 1560, "22:00:00", true},
      {"over midnight, before its start", 1320, 1560, "21:59:59", false},
      {"over midnight, in the morning", 1320, 1560, "01:59:00", true},
      {"over midnight, at its end", 1320, 1560, "02:00:00", true},
      {"over midnight, after its end", 1320, 1560, "02:00:01", false},
      {"over midnight, at noon", 1320, 1560, "12:00:00", false},
      {"the end before the start: over midnight, too", 1320, 120, "23:30:00", true},
      {"and in the morning", 1320, 120, "01:30:00", true},
      {"and not at noon", 1320, 120, "12:00:00", false},
      {"until 1440 is until the next midnight", 600, 1440, "23:59:59", true},
      {"and not over it", 600, 1440, "00:00:01", false},
      {"1441 is one past midnight", 600, 1441, "00:01:00", true},
      {"and no later", 600, 1441, "00:01:01", false},
      {"only one day is taken off: the end is tomorrow", 600, 2881, "23:00:00", true},
      {"from midnight", 0, 600, "00:00:00", true},
      {"a start before midnight of yesterday", -60, 60, "00:30:00", true},
      {"a whole day", 0, 1440, "12:34:56", true},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(HoldsAt(row.now, Between(row.from, row.to)), row.holds) << row.why;
  }
}

TEST_F(IfTime, FollowsTheClockOnDaysOfAChange) {
  const ZoneScope newYork(zones::kNewYork);
  EXPECT_TRUE(Holds("2024-03-10 12:00:00", Compare("EQ", 720)));
  EXPECT_TRUE(Holds("2024-03-10 12:00:00", Between(720, 721)));
  EXPECT_TRUE(Holds("2024-11-03 12:00:00", Compare("GE", 720)));
  EXPECT_FALSE(Holds("2024-11-03 11:59:59", Compare("GE", 720)));
  clock.Set(1730615400);  // 1:30 the second time: the same minute, an hour after the first
  EXPECT_TRUE(Condition("IF_TIME", "<c>" + Compare("EQ", 90) + "</c>"));
  EXPECT_TRUE(Condition("IF_TIME", "<c>" + Compare("GT", 90) + "</c>"));
}

// At 60 north on the meridian of Greenwich the sun rises on 21 March about 6:00 and sets about
// 18:16 (tables of the Naval Observatory); a quarter of an hour is left to the series.
class IfTimeBySun : public IfTime {
 protected:
  IfTimeBySun() {
    agent->OnVariableChanged(1, 1001, "60");
    agent->OnVariableChanged(1, 1002, "0");
    const auto day = VxTime(Local("2024-03-21"));
    sunrise = Event::CalculateEventTime(day, Scheduler::kSunrise, 0, 60, 0).Seconds();
    sunset = Event::CalculateEventTime(day, Scheduler::kSunset, 0, 60, 0).Seconds();
  }
  bool HoldsAtSecond(std::time_t now, const std::string& operands) {
    clock.Set(now);
    return Condition("IF_TIME", "<c>" + operands + "</c>");
  }
  static std::string Within(const std::string& type, const std::string& side, int minutes) {
    return "<type>Within</type><offset_type>" + type + "</offset_type><offset>" + side +
           "</offset><offset_minutes>" + std::to_string(minutes) + "</offset_minutes>";
  }

  std::time_t sunrise = 0;
  std::time_t sunset = 0;
};

TEST_F(IfTimeBySun, StandsWhereTheTablesSay) {
  EXPECT_NEAR(static_cast<double>(sunrise), static_cast<double>(Local("2024-03-21 06:00:00")), 600);
  EXPECT_NEAR(static_cast<double>(sunset), static_cast<double>(Local("2024-03-21 18:16:00")), 600);
}

TEST_F(IfTimeBySun, DayAndNightShareNoSecond) {
  const struct {
    const char* why;
    std::time_t now;
    bool day;
  } rows[] = {
      {"midnight", Local("2024-03-21"), false},
      {"a second before sunrise", sunrise - 1, false},
      {"sunrise", sunrise, true},
      {"noon", Local("2024-03-21 12:00:00"), true},
      {"sunset", sunset, true},
      {"a second after sunset", sunset + 1, false},
      {"the last second", Local("2024-03-21 23:59:59"), false},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(HoldsAtSecond(row.now, "<type>Day</type>"), row.day) << row.why;
    EXPECT_EQ(HoldsAtSecond(row.now, "<comparator/><type>Night</type>"), !row.day) << row.why;
    EXPECT_FALSE(HoldsAtSecond(row.now, "<type>day</type>")) << row.why;
    EXPECT_FALSE(HoldsAtSecond(row.now, "<type></type>")) << row.why;
  }
}

TEST_F(IfTimeBySun, WithinMinutesOfTheSun) {
  const struct {
    const char* why;
    std::string operands;
    std::time_t from, to;  // both included
  } rows[] = {
      {"before sunset", Within("2", "Before", 30), sunset - 1800, sunset},
      {"after sunset", Within("2", "After", 30), sunset, sunset + 1800},
      {"before sunrise", Within("1", "Before", 30), sunrise - 1800, sunrise},
      {"after sunrise", Within("1", "After", 30), sunrise, sunrise + 1800},
      {"any other type is sunset", Within("sunrise", "Before", 30), sunset - 1800, sunset},
      {"any other side is after", Within("1", "before", 30), sunrise, sunrise + 1800},
      {"a negative number turns it round", Within("2", "Before", -30), sunset, sunset + 1800},
      {"0 minutes is the second itself", Within("2", "After", 0), sunset, sunset},
      {"no side is the second itself",
       "<type>Within</type><offset_type>1</offset_type><offset_minutes>30</offset_minutes>",
       sunrise, sunrise},
      {"an empty side counts as none", Within("1", "", 30), sunrise, sunrise},
  };
  for (const auto& row : rows) {
    EXPECT_FALSE(HoldsAtSecond(row.from - 1, row.operands)) << row.why;
    EXPECT_TRUE(HoldsAtSecond(row.from, row.operands)) << row.why;
    EXPECT_TRUE(HoldsAtSecond(row.to, row.operands)) << row.why;
    EXPECT_FALSE(HoldsAtSecond(row.to + 1, row.operands)) << row.why;
  }
}

TEST_F(IfTimeBySun, WithinNeedsItsType) {
  for (const char* type : {"", "<offset_type/>", "<offset_type></offset_type>"}) {
    EXPECT_FALSE(HoldsAtSecond(sunset, "<type>Within</type>" + std::string(type) +
                                           "<offset>After</offset>"
                                           "<offset_minutes>600</offset_minutes>"))
        << type;
  }
}

TEST_F(IfTimeBySun, AnyMinutesAreTaken) {
  for (const char* minutes : {"2147483647", "-2147483648", "99999999999999999999"}) {
    const std::string operands =
        "<type>Within</type><offset_type>2</offset_type>"
        "<offset>Before</offset><offset_minutes>" +
        std::string(minutes) + "</offset_minutes>";
    EXPECT_TRUE(HoldsAtSecond(sunset, operands)) << minutes;
  }
}

TEST_F(IfTimeBySun, TheSunAddsToTheClockAndTakesNothingAway) {
  const std::time_t noon = Local("2024-03-21 12:00:00");
  EXPECT_TRUE(HoldsAtSecond(noon, Compare("EQ", 720) + "<type>Night</type>"));
  EXPECT_TRUE(HoldsAtSecond(noon, Compare("EQ", 60) + "<type>Day</type>"));
  EXPECT_TRUE(HoldsAtSecond(noon, Between(700, 740) + "<type>Night</type>"));
  EXPECT_FALSE(HoldsAtSecond(noon, Compare("EQ", 60) + "<type>Night</type>"));
  EXPECT_FALSE(HoldsAtSecond(noon, Compare("EQ", 60) + Within("2", "Before", 30)));
  EXPECT_TRUE(HoldsAtSecond(noon, Compare("EQ", 720) + Within("2", "Before", 30)));
}

TEST_F(IfTimeBySun, ChangesNothingAndLogsNothing) {
  const std::string state = State();
  host.TakeCalls();
  HoldsAtSecond(sunset, Compare("EQ", 720) + Within("2", "Before", 30));
  EXPECT_TRUE(host.TakeCalls().empty());
  EXPECT_EQ(State(), state);
}

}  // namespace
