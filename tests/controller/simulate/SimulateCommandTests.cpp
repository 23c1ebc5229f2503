// `vexalink simulate`, as its users run it.

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

#include "CalendarChecker.h"
#include "Program.h"
#include "SimulatedHouses.h"
#include "TempFolder.h"
#include "controller/ProjectSchema.h"
#include "controller/ProjectStore.h"
#include "controller/ProjectVariables.h"
#include "controller/live/ProgrammingTable.h"

namespace controller {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kBerlin = "CET-1CEST,M3.5.0,M10.5.0/3";

struct Ended {
  int status;
  std::string out;
  std::string err;
};

class SimulateCommand : public testing::Test {
 protected:
  Ended Run(std::vector<std::string> more) {
    std::vector<std::string> arguments = {"simulate", "--project", project};
    arguments.insert(arguments.end(), more.begin(), more.end());
    Program program(arguments, {{{"TZ", kBerlin}}, "", {}, false});
    const int status = program.Wait();
    return {status, program.Out(), program.Err()};
  }

  void Keep(const std::vector<EventElement>& events,
            const std::map<std::string, std::string>& settings = {}) {
    ProjectStore store(project, ProjectStore::Use::kKeep);
    store.SaveState(kSchedulerName, ScheduleOf(events));
    store.SaveSettings({{"latitude", "52.52"}, {"longitude", "13.405"}});
    if (!settings.empty()) store.SaveSettings(settings);
  }

  std::vector<json> Lines(const std::vector<std::string>& more) {
    const Ended ended = Run(more);
    EXPECT_EQ(ended.status, 0) << ended.err;
    std::vector<json> lines;
    std::istringstream in(ended.out);
    for (std::string line; std::getline(in, line);) lines.push_back(json::parse(line));
    return lines;
  }

  const TempFolder folder;
  const std::string project = (folder / "project.db").string();
};

TEST_F(SimulateCommand, ShowsPeopleADayByItsTimes) {
  Keep({Daily(7, 420)});
  const Ended ended = Run({"--from", "2026-03-29", "--to", "2026-03-30"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(ended.out,
            "2026-03-29 to 2026-03-30, 2 days, time zone CET-1CEST,M3.5.0,M10.5.0/3, place 52.52, "
            "13.405\n"
            "1 event\n"
            "\n"
            "Sun 2026-03-29, a day of 23 h\n"
            "  03:00:00 CEST  the clocks go forward by 1 h, from UTC+01:00 to UTC+02:00\n"
            "  07:00:00 CEST  fired  7    Event 7\n"
            "  1 fired\n"
            "\n"
            "Mon 2026-03-30\n"
            "  07:00:00  fired  7    Event 7\n"
            "  1 fired\n"
            "\n"
            "in all: 2 fired, 1 clock change\n");
}

TEST_F(SimulateCommand, WritesALineOfJsonForEachThing) {
  Keep({Daily(7, 420), Daily(8, 420, 30)}, {{"name", "Home"}});
  const auto lines = Lines({"--from", "2026-03-06", "--to", "2026-03-06", "--json"});
  ASSERT_EQ(lines.size(), 5u);
  EXPECT_EQ(lines[0]["kind"], "simulation");
  EXPECT_EQ(lines[0]["name"], "Home");
  EXPECT_EQ(lines[0]["place"]["latitude"], 52.52);
  for (const json& line : {lines[1], lines[2]}) {
    EXPECT_EQ(line["kind"], "fired");
    EXPECT_EQ(line["date"], "2026-03-06");
    EXPECT_EQ(line["planned"], "2026-03-06T07:00:00+01:00");
    EXPECT_EQ(line["drawn"].is_null(), line["event"] == 7);
  }
  EXPECT_EQ(lines[3]["kind"], "day");
  EXPECT_EQ(lines[3]["seconds"], 86400);
  EXPECT_EQ(lines[4]["kind"], "total");
  EXPECT_EQ(lines[4]["fired"], 2);
}

TEST_F(SimulateCommand, WritesACalendar) {
  Keep({Daily(7, 420), Daily(8, 421)});
  const Ended ended = Run({"--from", "2026-03-06", "--to", "2026-03-07", "--ics"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  const ReadCalendar calendar = ReadCalendarText(ended.out);
  EXPECT_THAT(calendar.faults, IsEmpty());
  ASSERT_EQ(calendar.events.size(), 4u);
  EXPECT_EQ(calendar.events[0].at("DTSTART"), "20260306T060000Z");
  EXPECT_EQ(calendar.events[3].at("SUMMARY"), "Event 8");
  const ReadCalendar again =
      ReadCalendarText(Run({"--from", "2026-03-05", "--to", "2026-03-06", "--ics"}).out);
  EXPECT_EQ(again.events[2].at("UID"), calendar.events[0].at("UID"));
}

TEST_F(SimulateCommand, KnowsWhatEventsDoAndWhetherTheyMay) {
  Keep({Daily(7, 420), Daily(8, 480)}, {{"away_until", "2026-03-07"}});
  {
    ProjectStore store(project, ProjectStore::Use::kKeep);
    Programming programming;
    Action action;
    action.what = CommandAction{{"/usr/bin/logger", "{description} at {actual}"}, 60};
    programming.actions.push_back(action);
    ProgrammingTable::Write(store, 7, programming);
  }
  const Ended ended = Run({"--from", "2026-03-06", "--to", "2026-03-07"});
  EXPECT_THAT(ended.out, HasSubstr("held   7    Event 7                         away\n"));
  EXPECT_THAT(ended.out, HasSubstr("event: runs logger Event 7 at "
                                   "2026-03-07T07:00:00+01:00\n"));
  EXPECT_THAT(ended.out, HasSubstr("in all: 2 fired, 2 held back, 1 action\n"));
}

TEST_F(SimulateCommand, TakesAnotherPlace) {
  EventElement dusk = Daily(7, 0);
  dusk.offset = static_cast<int>(OffsetBase::kSunset);
  Keep({dusk});
  const std::vector<std::string> day = {"--from", "2026-03-06", "--to", "2026-03-06", "--json"};
  const auto here = Lines(day);
  auto there = day;
  there.insert(there.end(), {"--at", "-33.9,18.4"});
  const auto moved = Lines(there);
  EXPECT_EQ(here[1]["base"], "sunset");
  EXPECT_NE(here[1]["at"], moved[1]["at"]);
  EXPECT_EQ(moved[0]["place"]["longitude"], 18.4);
}

TEST_F(SimulateCommand, ChangesNothingAndMayLookIntoAProjectInUse) {
  Keep({Daily(7, 420)});
  const std::string before = ReadFile(project);
  Program serve({"serve", "--project", project}, {{{"TZ", kBerlin}}, "", {}, false});
  ASSERT_TRUE(serve.WaitFor("1 event loaded")) << serve.Err();
  EXPECT_EQ(Run({}).status, 0);
  EXPECT_EQ(serve.Stop(), 0);
  const std::string after = ReadFile(project);
  EXPECT_EQ(Run({"--from", "2026-03-06"}).status, 0);
  EXPECT_EQ(ReadFile(project), after);
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder / "")) {
    files.push_back(entry.path().filename().string());
  }
  EXPECT_THAT(files, ElementsAre("project.db"));
}

TEST_F(SimulateCommand, ReadsProjectsOfTheFirstVersion) {
  {
    SqliteDatabase database(project, SqliteDatabase::Mode::kCreate, 1000);
    database.Execute(kProjectSchema1);
    database.Execute("INSERT INTO setting VALUES ('project_id', 'old'), ('created', '0')");
    SqliteStatement(database, "INSERT INTO driver_state VALUES ('scheduler', ?1, 0)")
        .Bind(1, ScheduleOf({Daily(7, 420)}))
        .Step();
  }
  const std::string before = ReadFile(project);
  const Ended ended = Run({"--from", "2026-03-06", "--to", "2026-03-06"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_THAT(ended.out, HasSubstr("07:00:00  fired  7"));
  EXPECT_EQ(ReadFile(project), before);
}

TEST_F(SimulateCommand, ShowsNothingThatATerminalWouldObey) {
  EventElement nasty = Daily(7, 420);
  nasty.description = "Porch\x7F\nall: 99 fired \xE2\x80\xAE";
  Keep({nasty}, {{"name", "\x1B[2J"}});
  const Ended ended = Run({"--from", "2026-03-06", "--to", "2026-03-06"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_THAT(ended.out, AllOf(HasSubstr("Porch\\x7f\\nall: 99"), HasSubstr("\\x1b[2J: 1 event"),
                               Not(HasSubstr("\x1B")), Not(HasSubstr("\x7F"))));
}

TEST_F(SimulateCommand, SaysWhatIsWrongWithItsOptions) {
  Keep({Daily(7, 420)});
  const struct {
    std::vector<std::string> options;
    const char* message;
  } rows[] = {
      {{"--from", "2026-02-30"}, "--from is \"2026-02-30\"; give a day that the calendar has"},
      {{"--from", "tomorrow\x1B"}, "--from is \"tomorrow\\x1b\"; give a day"},
      {{"--to", "2026-13-01"}, "--to is \"2026-13-01\""},
      {{"--from", "1970-01-01"}, "give a day from 1970-01-02 to 9999-12-25"},
      {{"--from", "2026-03-02", "--to", "2026-03-01"},
       "--to is 2026-03-01, which is before --from, 2026-03-02"},
      {{"--from", "2026-03-02", "--to", "2426-03-01"}, "is 146097 days; give 10 years at most"},
      {{"--from", "2026-03-02", "--to", "2036-03-02"}, "give 10 years at most"},
      {{"--at", "Berlin"}, "--at is \"Berlin\"; give degrees north and east"},
      {{"--at", "91,0"}, "--at is \"91,0\""},
      {{"--event", "8"}, "--event is 8, and the schedule has no such event"},
      {{"--json", "--ics"}, "--json excludes --ics"},
  };
  for (const auto& row : rows) {
    const Ended ended = Run(row.options);
    EXPECT_EQ(ended.status, 2) << row.message;
    EXPECT_THAT(ended.err, HasSubstr(row.message));
    EXPECT_EQ(ended.out, "") << row.message;
  }
}

TEST_F(SimulateCommand, SaysWhereAProjectIsMissing) {
  const Ended ended = Run({});
  EXPECT_EQ(ended.status, 1);
  EXPECT_THAT(ended.err, HasSubstr("project.db"));
  EXPECT_FALSE(std::filesystem::exists(project));
}

TEST_F(SimulateCommand, TenYearsAreTheMost) {
  Keep({Daily(7, 420)});
  const auto lines = Lines({"--from", "2026-03-02", "--to", "2036-03-01", "--json"});
  EXPECT_EQ(lines.back()["days"], 3653);
  EXPECT_EQ(lines.back()["fired"], 3653);
}

}  // namespace
}  // namespace controller
