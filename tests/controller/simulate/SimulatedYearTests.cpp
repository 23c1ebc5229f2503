// A year in zones of every kind: what the scheduler lists is what happens, once.

#include <gtest/gtest.h>
#include <map>
#include <string>

#include "SimulatedHouses.h"
#include "TempFolder.h"
#include "controller/LocalTimeText.h"

namespace controller {
namespace {

constexpr std::size_t kEvents = 500;

struct YearCase {
  const char* why;
  const char* zone;
  int year;
  Place place;
  std::size_t clockShifts;
};

std::ostream& operator<<(std::ostream& out, const YearCase& year) { return out << year.why; }

const YearCase kYears[] = {
    {"north", "CET-1CEST,M3.5.0,M10.5.0/3", 2026, {52.52, 13.405}, 2},
    {"south", "AEST-10AEDT,M10.1.0,M4.1.0/3", 2026, {-33.87, 151.2}, 2},
    {"half an hour", "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0", 2026, {-31.55, 159.08}, 2},
    {"three quarters of an hour",
     "<+1245>-12:45<+1345>,M9.5.0/2:45,M4.1.0/3:45",
     2026,
     {-43.95, -176.55},
     2},
    {"two hours", "<+00>0<+02>-2,M3.5.0/1,M10.5.0/3", 2026, {-72.01, 2.53}, 2},
    {"one minute after midnight", "NST3:30NDT,M3.2.0/0:01,M11.2.0/0:01", 2026, {47.57, -52.72}, 2},
    {"no midnight", "CST5CDT,M3.2.0/0,M11.1.0/1", 2026, {23.13, -82.37}, 2},
    {"midnight twice", "<-01>1<+00>,M3.5.0/0,M10.5.0/1", 2026, {37.73, -25.67}, 2},
    {"a month that begins late", "<-04>4<-03>,J91/0,J244/0", 2026, {-25.27, -57.67}, 2},
    {"none", "IST-5:30", 2026, {22.57, 88.37}, 0},
    {"a day left out", "Pacific/Apia", 2011, {-13.83, -171.73}, 3},
    {"winter time in summer", "Africa/Casablanca", 2026, {33.58, -7.61}, 2},
    {"October comes again", "NST3:30NDT,M3.2.0/0:01,M11.1.0/0:01", 2009, {47.57, -52.72}, 2},
    {"October comes again, later", "America/St_Johns", 2009, {47.57, -52.72}, 2},
    {"the rules of another time", "America/St_Johns", 2010, {47.57, -52.72}, 2},
};

class SimulatedYear : public testing::TestWithParam<YearCase> {};

std::string Name(const DayFields& date, unsigned long event) {
  return "event " + std::to_string(event) + " of " + DayText(date);
}

TEST_P(SimulatedYear, BringsWhatIsListedOnceAndNothingElse) {
  const YearCase& year = GetParam();
  const EnvironmentScope zone("TZ", year.zone);
  std::mt19937 random(static_cast<unsigned>(year.year) + std::string(year.zone).size());
  SimulatedHouse house = HouseWith(RandomEvents(random, kEvents, year.year));
  house.place = year.place;
  house.programming = RandomProgramming(random, kEvents, year.year);
  house.awayUntil = DayFields{year.year, 3, 30};
  const DayFields from{year.year, 1, 1};
  const DayFields to{year.year, 12, 31};
  const Listing listing = ListedDays(house, from, to);

  KeptReport report;
  const SimulatedTotals totals = Simulation(Agent(), house, report).Run(from, to);

  EXPECT_EQ(totals.clockShifts, year.clockShifts);
  EXPECT_GT(totals.fired, 5000u);
  EXPECT_GT(totals.held, 1000u);
  EXPECT_GT(totals.missed, 0u);
  std::map<std::pair<DayFields, unsigned long>, int> fired;
  std::map<std::pair<DayFields, unsigned long>, int> told;
  for (const SimulatedOccurrence& each : report.occurrences) {
    const std::pair key(each.date, each.event);
    ++told[key];
    if (each.outcome == OccurrenceState::kFired) ++fired[key];
    const bool heldBack =
        each.outcome == OccurrenceState::kHeld && each.reason == std::string("not-listed");
    EXPECT_EQ(listing.contains(key), !heldBack)
        << Name(each.date, each.event) << ' ' << StateName(each.outcome) << ' ' << each.reason;
    EXPECT_NE(each.reason, "");
  }
  for (const auto& [date, event] : listing) {
    EXPECT_TRUE(told.contains({date, event})) << Name(date, event) << " was lost";
  }
  for (const auto& [key, times] : fired) {
    EXPECT_EQ(times, 1) << Name(key.first, key.second) << " was acted on " << times << " times";
  }
}

INSTANTIATE_TEST_SUITE_P(Zones, SimulatedYear, testing::ValuesIn(kYears),
                         [](const auto& each) { return std::to_string(each.index); });

}  // namespace
}  // namespace controller
