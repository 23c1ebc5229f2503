// Conditions on the date, the month and the year.

#include "tests/vexalink_agent_scheduler/AgentHelp.h"

namespace {

class Conditions : public AgentTest {
 protected:
  Conditions() { Start(); }

  static std::string Xml(const std::string& comparator, const std::string& operands) {
    return "<condition><comparator>" + comparator + "</comparator>" + operands + "</condition>";
  }
};

constexpr const char* kComparators[] = {"EQ", "NE", "GT", "GE", "LT", "LE"};

TEST_F(Conditions, IfMonthBetweenTurnsTheYear) {
  const auto holds = [this](int month, int from, int to) {
    clock.Set("2024-" + std::to_string(month) + "-15 12:00:00");
    return Condition("IF_MONTH", Xml("BT", "<month_between><month_from>" + std::to_string(from) +
                                               "</month_from><month_to>" + std::to_string(to) +
                                               "</month_to></month_between>"));
  };
  for (int month = 1; month <= 12; ++month) {
    EXPECT_EQ(holds(month, 11, 2), month >= 11 || month <= 2) << month << ": November to February";
    EXPECT_EQ(holds(month, 3, 5), month >= 3 && month <= 5) << month << ": March to May";
    EXPECT_EQ(holds(month, 6, 6), month == 6) << month << ": June";
    EXPECT_TRUE(holds(month, 1, 12)) << month;
    EXPECT_FALSE(holds(month, 0, 12)) << month << ": from 0";
    EXPECT_FALSE(holds(month, 11, 0)) << month << ": to 0";
    EXPECT_FALSE(holds(month, -1, 12)) << month << ": negative";
  }
  EXPECT_FALSE(Condition("IF_MONTH", Xml("BT", "")));
}

TEST_F(Conditions, IfYearComparesWithANumber) {
  const struct {
    const char* why;
    int operand;
    const char* answers;  // EQ, NE, GT, GE, LT, LE
  } rows[] = {
      {"this year", 2024, "E..G.L"}, {"last year", 2023, ".NGG.."},
      {"next year", 2025, ".N..LL"}, {"0", 0, ".NGG.."},
      {"negative", -5, ".NGG.."},
  };
  for (const auto& row : rows) {
    const std::string number = std::to_string(row.operand);
    for (int i = 0; i < 6; ++i) {
      EXPECT_EQ(Condition("IF_YEAR", Xml(kComparators[i], "<year_current><year_curr>" + number +
                                                              "</year_curr></year_current>")),
                row.answers[i] != '.')
          << kComparators[i] << ": " << row.why;
      EXPECT_EQ(
          Condition("IF_YEAR", Xml(kComparators[i], "<year_current year_curr='" + number + "'/>")),
          row.answers[i] != '.')
          << kComparators[i] << ", as an attribute: " << row.why;
    }
  }
}

TEST_F(Conditions, IfYearOperands) {
  const struct {
    const char* why;
    const char* comparator;
    const char* operands;
    bool holds;
  } rows[] = {
      {"no element", "NE", "", false},
      {"an element without the number reads 0", "NE", "<year_current/>", true},
      {"so it is greater", "GT", "<year_current/>", true},
      {"its own text is not the number", "EQ", "<year_current>2024</year_current>", false},
      {"the child comes before the attribute", "EQ",
       "<year_current year_curr='1999'><year_curr>2024</year_curr></year_current>", true},
      {"an empty child reads 0", "EQ", "<year_current year_curr='2024'><year_curr/></year_current>",
       false},
      {"no comparator", "", "<year_current><year_curr>2024</year_curr></year_current>", false},
      {"an unknown one", "IS", "<year_current><year_curr>2024</year_curr></year_current>", false},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Condition("IF_YEAR", Xml(row.comparator, row.operands)), row.holds) << row.why;
  }
}

TEST_F(Conditions, IfYearBetween) {
  const struct {
    const char* why;
    int from, to;
    bool holds;
  } rows[] = {
      {"this year", 2024, 2024, true}, {"round it", 2000, 2100, true},
      {"from it", 2024, 2030, true},   {"until it", 2000, 2024, true},
      {"before", 2000, 2023, false},   {"after", 2025, 2100, false},
      {"reversed", 2100, 2000, false}, {"from 0", 0, 2100, false},
      {"to 0", 2000, 0, false},        {"from a negative year", -1, 2100, false},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(
        Condition("IF_YEAR", Xml("BT", "<year_between><year_from>" + std::to_string(row.from) +
                                           "</year_from><year_to>" + std::to_string(row.to) +
                                           "</year_to></year_between>")),
        row.holds)
        << row.why;
  }
}

std::string Date(const std::string& prefix, int year, int month, int day) {
  return "<" + prefix + "_dd>" + std::to_string(day) + "</" + prefix + "_dd><" + prefix + "_mm>" +
         std::to_string(month) + "</" + prefix + "_mm><" + prefix + "_yy>" + std::to_string(year) +
         "</" + prefix + "_yy>";
}

TEST_F(Conditions, IfDateComparesDays) {
  const struct {
    const char* why;
    int year, month, day;
    const char* answers;
  } rows[] = {
      {"today, whatever the time", 2024, 3, 6, "E..G.L"},
      {"yesterday", 2024, 3, 5, ".NGG.."},
      {"tomorrow", 2024, 3, 7, ".N..LL"},
      {"an earlier month, a later day", 2024, 2, 28, ".NGG.."},
      {"next year, an earlier month", 2025, 1, 1, ".N..LL"},
      {"35 February is 6 March", 2024, 2, 35, "E..G.L"},
      {"month 15 of last year", 2023, 15, 6, "E..G.L"},
      {"day 0", 2024, 3, 0, "......"},
      {"month 0", 2024, 0, 6, "......"},
      {"year 0", 0, 3, 6, "......"},
      {"a negative day", 2024, 3, -6, "......"},
  };
  for (const char* now : {"2024-03-06 00:00:00", "2024-03-06 23:59:59"}) {
    clock.Set(now);
    for (const auto& row : rows) {
      for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(Condition("IF_DATE",
                            Xml(kComparators[i],
                                "<date_current>" + Date("date_curr", row.year, row.month, row.day) +
                                    "</date_current>")),
                  row.answers[i] != '.')
            << kComparators[i] << " at " << now << ": " << row.why;
      }
    }
  }
  EXPECT_FALSE(Condition("IF_DATE", Xml("NE", "")));
  EXPECT_FALSE(Condition(
      "IF_DATE", Xml("", "<date_current>" + Date("date_curr", 2024, 3, 6) + "</date_current>")));
}

TEST_F(Conditions, IfDateBetween) {
  const struct {
    const char* why;
    std::string from, to;
    bool holds;
  } rows[] = {
      {"today", Date("date_from", 2024, 3, 6), Date("date_to", 2024, 3, 6), true},
      {"until today", Date("date_from", 2024, 1, 1), Date("date_to", 2024, 3, 6), true},
      {"from today", Date("date_from", 2024, 3, 6), Date("date_to", 2024, 12, 31), true},
      {"past", Date("date_from", 2024, 1, 1), Date("date_to", 2024, 3, 5), false},
      {"to come", Date("date_from", 2024, 3, 7), Date("date_to", 2024, 12, 31), false},
      {"reversed", Date("date_from", 2024, 12, 31), Date("date_to", 2024, 1, 1), false},
      {"over years", Date("date_from", 2023, 12, 31), Date("date_to", 2025, 1, 1), true},
      {"bounds need not be positive", Date("date_from", 0, 0, 0), Date("date_to", 2024, 4, -5),
       true},
      {"no bounds: long ago", "", "", false},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(
        Condition("IF_DATE", Xml("BT", "<date_between>" + row.from + row.to + "</date_between>")),
        row.holds)
        << row.why;
  }
}

TEST_F(Conditions, IfLeapLooksAtTheYearAlone) {
  const struct {
    const char* now;
    bool leap;
  } rows[] = {{"2024-03-06 07:00:00", true},
              {"2023-03-06 07:00:00", false},
              {"2000-03-06 07:00:00", true},
              {"2100-03-06 07:00:00", false}};
  for (const auto& row : rows) {
    clock.Set(row.now);
    EXPECT_EQ(Condition("IF_LEAP", "<anything/>"), row.leap) << row.now;
  }
  clock.Set("2024-03-06 07:00:00");
  EXPECT_FALSE(Condition("IF_LEAP", "nothing that parses"));
}

TEST_F(Conditions, UnknownOnesAreFalse) {
  for (const char* name : {"", "IF_DAY", "if_leap", "IF_LEAP ", "IF_TIMES"}) {
    EXPECT_FALSE(Condition(name, Xml("EQ", ""))) << name;
  }
  EXPECT_TRUE(host.TakeCalls().empty()) << "nothing is logged";
}

TEST_F(Conditions, TheNameOfTheRootDoesNotCount) {
  EXPECT_TRUE(Condition("IF_YEAR",
                        "<x><comparator>EQ</comparator><year_current>"
                        "<year_curr>2024</year_curr></year_current></x>"));
}

TEST_F(Conditions, ATextThatDoesNotParseIsLoggedAndFalse) {
  host.TakeCalls();
  for (const char* name :
       {"IF_TIME", "IF_TODAY", "IF_DATE", "IF_MONTH", "IF_YEAR", "IF_LEAP", "IF_NOTHING"}) {
    EXPECT_FALSE(Condition(name, "<a>\n<b>")) << name;
    EXPECT_EQ(host.TakeCalls(),
              Lines{"LogMessage 7 Unable to parse conditional in scheduler: <a>\n<b>"})
        << name;
  }
}

TEST_F(Conditions, TheOlderParameterIsReadWhereTheNewerIsEmpty) {
  const std::string yes = Xml("EQ", "<year_current><year_curr>2024</year_curr></year_current>");
  const std::string no = Xml("NE", "<year_current><year_curr>2024</year_curr></year_current>");
  const auto holds = [this](const Params& params) {
    return agent->TestCondition(TestConditionMessage("IF_YEAR", params), nullptr);
  };
  EXPECT_TRUE(holds({{"TIME_XML", yes}}));
  EXPECT_TRUE(holds({{"CONDITIONAL_XML", ""}, {"TIME_XML", yes}}));
  EXPECT_TRUE(holds({{"CONDITIONAL_XML", yes}, {"TIME_XML", no}}));
  host.TakeCalls();
  EXPECT_FALSE(holds({{"CONDITIONAL_XML", " "}, {"TIME_XML", yes}})) << "a blank is not empty";
  EXPECT_EQ(host.TakeCalls(), Lines{"LogMessage 7 Unable to parse conditional in scheduler:  "});
  EXPECT_FALSE(holds({}));
  EXPECT_EQ(host.TakeCalls(), Lines{"LogMessage 7 Unable to parse conditional in scheduler: "});
}

TEST_F(Conditions, ThePointerIsNeitherReadNorWritten) {
  unsigned long reserved = 77;
  agent->TestCondition(TestConditionMessage("IF_LEAP", {{"CONDITIONAL_XML", "<a/>"}}), &reserved);
  EXPECT_EQ(reserved, 77U);
}

}  // namespace
