// Conditions on lists of weekdays, days and months, and on today.

#include "tests/vexalink_agent_scheduler/AgentHelp.h"

namespace {

class OfTheDay : public AgentTest {
 protected:
  OfTheDay() { Start(); }

  static std::string Xml(const std::string& comparator, const std::string& operands) {
    return "<condition><comparator>" + comparator + "</comparator>" + operands + "</condition>";
  }
};

std::string List(const std::string& name, const std::vector<int>& entries) {
  std::string xml = "<" + name + ">";
  for (const int entry : entries) xml += "<x>" + std::to_string(entry) + "</x>";
  return xml + "</" + name + ">";
}

// What the six comparators answer for the current value 4: to each list, a letter for each of EQ,
// NE, GT, GE, LT, LE.
struct ListRow {
  const char* why;
  std::vector<int> entries;
  const char* answers;
};

const ListRow kListRows[] = {
    {"itself", {4}, "E..G.L"},
    {"one below: the current value is greater", {3}, ".NGG.."},
    {"one above: the current value is less", {5}, ".N..LL"},
    {"one of several", {3, 4}, "E.GG.L"},
    {"the last of several", {1, 2, 4}, "E.GG.L"},
    {"below and above", {3, 5}, ".NGGLL"},
    {"none", {}, ".N...."},
    {"beyond any value", {0, 99, -1}, ".NGGLL"},
};

constexpr const char* kComparators[] = {"EQ", "NE", "GT", "GE", "LT", "LE"};

class ListConditions : public OfTheDay {
 protected:
  // `wrap` puts a list into the operands of a kind whose current value is 4.
  void Check(const std::string& kind, const std::string& before, const std::string& list,
             const std::string& after) {
    for (const ListRow& row : kListRows) {
      for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(Condition(kind, Xml(kComparators[i], before + List(list, row.entries) + after)),
                  row.answers[i] != '.')
            << kind << " " << kComparators[i] << ": " << row.why;
      }
    }
    for (const char* other : {"", "BT", "eq", "XX", "EQ "}) {
      EXPECT_FALSE(Condition(kind, Xml(other, before + List(list, {4}) + after))) << other;
    }
  }
};

TEST_F(ListConditions, IfTodayByWeekday) {
  // Wednesday is 4.
  Check("IF_TODAY", "<day_current><day_name>Day</day_name>", "day_names", "</day_current>");
}

TEST_F(ListConditions, IfTodayByDayOfMonth) {
  clock.Set("2024-03-04 07:00:00");
  Check("IF_TODAY", "<day_current><day_name>DayNum</day_name>", "cur_days", "</day_current>");
}

TEST_F(ListConditions, IfMonth) {
  clock.Set("2024-04-30 23:59:59");
  Check("IF_MONTH", "<month_current>", "month_names", "</month_current>");
}

TEST_F(ListConditions, EntriesAreReadLikeAnyNumber) {
  EXPECT_TRUE(Condition("IF_MONTH", Xml("EQ",
                                        "<month_current><month_names><a>x</a><b> 3rd</b>"
                                        "</month_names></month_current>")));
  EXPECT_FALSE(Condition("IF_MONTH", Xml("EQ",
                                         "<month_current><month_names>3</month_names>"
                                         "</month_current>")))
      << "text of the list itself is no entry";
  EXPECT_TRUE(Condition("IF_MONTH", Xml("EQ",
                                        "<month_current><month_names><!-- 1 --><x>3</x>"
                                        "</month_names></month_current>")));
}

TEST_F(ListConditions, AMissingListIsAnEmptyOne) {
  for (const char* comparator : kComparators) {
    const bool ne = std::string(comparator) == "NE";
    EXPECT_EQ(Condition("IF_MONTH", Xml(comparator, "<month_current/>")), ne) << comparator;
    EXPECT_EQ(Condition("IF_TODAY", Xml(comparator,
                                        "<day_current><day_name>Day</day_name>"
                                        "</day_current>")),
              ne)
        << comparator;
    EXPECT_FALSE(Condition("IF_MONTH", Xml(comparator, ""))) << "no month_current: " << comparator;
    EXPECT_FALSE(Condition("IF_TODAY", Xml(comparator, ""))) << "no mode: " << comparator;
  }
}

class IfToday : public OfTheDay {};

TEST_F(IfToday, ListOfSundayAndSaturday) {
  const std::string xml = Xml(
      "EQ", "<day_current><day_name>Day</day_name>" + List("day_names", {1, 7}) + "</day_current>");
  for (int day = 3; day <= 9; ++day) {  // 3 March 2024 is a Sunday
    clock.Set("2024-03-0" + std::to_string(day) + " 12:00:00");
    EXPECT_EQ(Condition("IF_TODAY", xml), day == 3 || day == 9) << day;
  }
}

TEST_F(IfToday, NeedsOneOfItsModes) {
  for (const char* mode : {"", "day", "DAY", "Days", "daynum", " Day"}) {
    const std::string name = "<day_name>" + std::string(mode) + "</day_name>";
    EXPECT_FALSE(Condition("IF_TODAY", Xml("EQ", "<day_current>" + name + List("day_names", {4}) +
                                                     List("cur_days", {6}) + "</day_current>")))
        << mode;
    EXPECT_FALSE(Condition("IF_TODAY", Xml("NE", "<day_current>" + name + "</day_current>")))
        << mode;
    EXPECT_FALSE(Condition(
        "IF_TODAY",
        Xml("BT", "<day_between>" + name +
                      "<dayname_from>1</dayname_from>"
                      "<dayname_to>7</dayname_to><day_from>1</day_from><day_to>31</day_to>"
                      "</day_between>")))
        << mode;
  }
}

TEST_F(IfToday, TakesItsModeFromTheElementOfTheComparator) {
  const std::string between =
      "<day_between><day_name>Day</day_name><dayname_from>4</dayname_from>"
      "<dayname_to>4</dayname_to></day_between>";
  const std::string current =
      "<day_current><day_name>Day</day_name>" + List("day_names", {4}) + "</day_current>";
  EXPECT_TRUE(Condition("IF_TODAY", Xml("BT", between)));
  EXPECT_FALSE(Condition("IF_TODAY", Xml("BT", current)));
  EXPECT_TRUE(Condition("IF_TODAY", Xml("EQ", current)));
  EXPECT_FALSE(Condition("IF_TODAY", Xml("EQ", between)));
}

TEST_F(IfToday, BetweenDoesNotWrap) {
  const struct {
    const char* why;
    const char* mode;
    const char* prefix;
    int from, to;
    bool holds;
  } rows[] = {
      {"at it", "Day", "dayname", 4, 4, true},
      {"Monday to Friday", "Day", "dayname", 2, 6, true},
      {"until it", "Day", "dayname", 1, 4, true},
      {"below", "Day", "dayname", 1, 3, false},
      {"above", "Day", "dayname", 5, 7, false},
      {"Friday to Monday", "Day", "dayname", 6, 2, false},
      {"Saturday to Wednesday", "Day", "dayname", 7, 4, false},
      {"bounds need not be positive", "Day", "dayname", -5, 99, true},
      {"day of month, at it", "DayNum", "day", 6, 6, true},
      {"day of month, below", "DayNum", "day", 1, 5, false},
      {"day of month, above", "DayNum", "day", 7, 31, false},
      {"day of month, reversed", "DayNum", "day", 28, 6, false},
      {"from 0", "DayNum", "day", 0, 31, true},
  };
  for (const auto& row : rows) {
    const std::string prefix = row.prefix;
    EXPECT_EQ(
        Condition(
            "IF_TODAY",
            Xml("BT", "<day_between><day_name>" + std::string(row.mode) + "</day_name><" + prefix +
                          "_from>" + std::to_string(row.from) + "</" + prefix + "_from><" + prefix +
                          "_to>" + std::to_string(row.to) + "</" + prefix + "_to></day_between>")),
        row.holds)
        << row.why;
  }
  EXPECT_FALSE(Condition("IF_TODAY", Xml("BT",
                                         "<day_between><day_name>Day</day_name>"
                                         "</day_between>")))
      << "0 to 0";
}

}  // namespace
