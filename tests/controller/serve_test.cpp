// The controller as its users run it.

#include <array>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Program.h"
#include "TempFolder.h"
#include "controller/ProjectStore.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

/// A zone in which a minute begins `seconds` from now, so that no test has to wait for one.
std::string ZoneWithAMinuteIn(int seconds) {
  const auto late = static_cast<int>((std::time(nullptr) + seconds) % 60);
  std::array<char, 32> zone{};
  std::snprintf(zone.data(), zone.size(), "TST-00:00:%02d", (60 - late) % 60);
  return zone.data();
}

class ServeTest : public testing::Test {
 protected:
  std::vector<std::string> Serve(std::vector<std::string> more = {}) {
    more.insert(more.begin(), {"serve", "--project", project});
    return more;
  }
  static Program::Options In(const std::string& zone) { return {{{"TZ", zone}}, "", {}, false}; }

  const TempFolder folder;
  const std::string project = (folder / "project.db").string();
};

TEST_F(ServeTest, SaysWhereItIsWhatItLoadedAndWhatComesNext) {
  Program program(Serve(), In("Asia/Kolkata"));
  ASSERT_TRUE(program.WaitFor("next: event 7 \"Welcome\" at 20")) << program.Err();
  const std::string log = program.Err();
  EXPECT_THAT(log, HasSubstr("vexalink 1."));
  EXPECT_THAT(log, HasSubstr("process " + std::to_string(program.Pid())));
  EXPECT_THAT(log, HasSubstr("project \"" + project + "\", new"));
  EXPECT_THAT(log, HasSubstr("time zone Asia/Kolkata, UTC+05:30 (IST)"));
  EXPECT_THAT(log, HasSubstr("the principal city of the time zone Asia/Kolkata"));
  EXPECT_THAT(log, HasSubstr("vexalink_agent_scheduler.so"));
  EXPECT_THAT(log, HasSubstr("7 events loaded"));
  EXPECT_EQ(program.Stop(), 0);
  EXPECT_THAT(program.Err(), HasSubstr("stopped, everything is saved"));
  EXPECT_FALSE(fs::exists(project + ".lock"));
}

TEST_F(ServeTest, ANewcomerSeesSomethingFireWithinTheFirstMinute) {
  Program program(Serve(), In(ZoneWithAMinuteIn(6)));
  EXPECT_TRUE(program.WaitFor("event 7 \"Welcome\" fired")) << program.Err();
  EXPECT_EQ(program.Stop(), 0);
}

TEST_F(ServeTest, TakesUpWhereItWasLeft) {
  {
    Program first(Serve({"--latitude", "-33.9", "--longitude", "-70.5"}));
    ASSERT_TRUE(first.WaitFor("7 events loaded")) << first.Err();
    EXPECT_THAT(first.Err(), HasSubstr("place -33.9, -70.5: as given"));
    EXPECT_EQ(first.Stop(), 0);
  }
  Program second(Serve());
  ASSERT_TRUE(second.WaitFor("7 events loaded")) << second.Err();
  EXPECT_THAT(second.Err(), HasSubstr("place -33.9, -70.5: kept in the project"));
  EXPECT_THAT(second.Err(), Not(HasSubstr(", new")));
  EXPECT_THAT(second.Err(), Not(HasSubstr("schedule to try things with")));
  EXPECT_EQ(second.Stop(), 0);
}

TEST_F(ServeTest, StartsEmptyWhenAsked) {
  {
    Program program(Serve({"--empty"}));
    ASSERT_TRUE(program.WaitFor("next: nothing")) << program.Err();
    EXPECT_THAT(program.Err(), HasSubstr("0 events loaded"));
    program.Signal(SIGKILL);
    EXPECT_EQ(program.Wait(), 128 + SIGKILL);
  }
  Program again(Serve());
  ASSERT_TRUE(again.WaitFor("next: nothing")) << "it is no new project any more: " << again.Err();
  EXPECT_EQ(again.Stop(), 0);
}

TEST_F(ServeTest, WhatWasImportedFiresAndIsExported) {
  const std::string zone = "UTC0";
  Program import({"import", "-", "--project", project},
                 {{{"TZ", zone}},
                  "<events><event><eventid>3</eventid><description>Midnight</description><start>"
                  "<offset>0</offset><offset_minutes>0</offset_minutes><start_date><start_day>1"
                  "</start_day><start_month>1</start_month><start_year>2024</start_year>"
                  "</start_date></start><repeat><frequency>1</frequency><rate>1</rate></repeat>"
                  "</event></events>",
                  {},
                  false});
  ASSERT_EQ(import.Wait(), 0) << import.Err();
  // Midnight comes a few seconds from now: a zone is chosen for it, to the second.
  const auto late = static_cast<int>((std::time(nullptr) + 6) % 86400);
  std::array<char, 32> eastOfUtc{};
  const int east = late == 0 ? 0 : 86400 - late;
  std::snprintf(eastOfUtc.data(), eastOfUtc.size(), "TST-%02d:%02d:%02d", east / 3600,
                east / 60 % 60, east % 60);
  Program serve(Serve(), In(eastOfUtc.data()));
  ASSERT_TRUE(serve.WaitFor("1 event loaded")) << serve.Err();
  Program running({"export", "--project", project});
  EXPECT_EQ(running.Wait(), 0) << "one that is being served can be looked at: " << running.Err();
  EXPECT_THAT(running.Out(), HasSubstr("<description>Midnight</description>"));
  EXPECT_TRUE(serve.WaitFor("event 3 \"Midnight\" fired")) << serve.Err();
  EXPECT_EQ(serve.Stop(), 0);
  Program after({"export", "--project", project});
  EXPECT_EQ(after.Wait(), 0);
  EXPECT_THAT(after.Out(), HasSubstr("<current_id>3</current_id>"));
}

TEST_F(ServeTest, SigintEndsItAndImpatienceDoesNoHarm) {
  Program program(Serve());
  ASSERT_TRUE(program.WaitFor("next: ")) << program.Err();
  for (int i = 0; i < 20; ++i) program.Signal(SIGINT);
  EXPECT_EQ(program.Wait(), 0) << program.Err();
  EXPECT_THAT(program.Err(), HasSubstr("everything is saved"));
}

TEST_F(ServeTest, ASignalDuringTheStartIsAnswered) {
  for (int i = 0; i < 5; ++i) {
    Program program(Serve());
    ASSERT_TRUE(program.WaitFor("project \"")) << program.Err();
    EXPECT_EQ(program.Stop(), 0) << program.Err();
  }
}

TEST_F(ServeTest, SighupReadsTheTimeZoneAgain) {
  for (const char* zone : {"Asia/Kolkata", "America/New_York"}) {
    if (!fs::exists(fs::path("/usr/share/zoneinfo") / zone)) GTEST_SKIP() << "no zone data";
  }
  const fs::path link = folder / "localtime";
  fs::create_symlink("/usr/share/zoneinfo/Asia/Kolkata", link);
  Program program(Serve(), In(":" + link.string()));
  ASSERT_TRUE(program.WaitFor("next: ")) << program.Err();
  EXPECT_THAT(program.Err(), HasSubstr("time zone Asia/Kolkata, UTC+05:30 (IST)"));
  fs::remove(link);
  fs::create_symlink("/usr/share/zoneinfo/America/New_York", link);
  program.Signal(SIGHUP);
  ASSERT_TRUE(program.WaitFor("is now America/New_York, UTC-0")) << program.Err();
  EXPECT_THAT(program.Err(), HasSubstr("time zone was Asia/Kolkata, UTC+05:30 (IST)"));
  EXPECT_THAT(program.Err(), HasSubstr("the principal city of the time zone America/New_York"));
  program.Signal(SIGHUP);
  ASSERT_TRUE(program.WaitFor("as before")) << program.Err();
  EXPECT_EQ(program.Stop(), 0);
  EXPECT_THAT(program.Err(), Not(HasSubstr("error")));
}

TEST_F(ServeTest, ASecondOneIsRefusedAndToldOfTheFirst) {
  Program first(Serve());
  ASSERT_TRUE(first.WaitFor("next: ")) << first.Err();
  Program second(Serve());
  EXPECT_EQ(second.Wait(), 1);
  EXPECT_THAT(second.Err(), HasSubstr("is in use by \"vexalink serve\", process " +
                                      std::to_string(first.Pid()) + ", since 20"));
  Program import({"import", "-", "--project", project}, {{}, "<events/>", {}, false});
  EXPECT_EQ(import.Wait(), 1);
  EXPECT_THAT(import.Err(), HasSubstr("process " + std::to_string(first.Pid())));
  EXPECT_EQ(first.Stop(), 0);
}

TEST_F(ServeTest, OneThatWasKilledStopsNobody) {
  {
    Program first(Serve());
    ASSERT_TRUE(first.WaitFor("next: ")) << first.Err();
    first.Signal(SIGKILL);
    EXPECT_EQ(first.Wait(), 128 + SIGKILL);
  }
  EXPECT_TRUE(fs::exists(project + ".lock"));
  Program second(Serve());
  ASSERT_TRUE(second.WaitFor("7 events loaded")) << second.Err();
  EXPECT_EQ(second.Stop(), 0);
}

TEST_F(ServeTest, LogsAtTheLevelThatWasAskedFor) {
  Program quiet(Serve({"--log-level", "error"}));
  while (!fs::exists(project + ".lock")) {
  }
  EXPECT_EQ(quiet.Stop(), 0);
  EXPECT_EQ(quiet.Err(), "");
  Program debug(Serve({"--log-level", "debug"}));
  EXPECT_TRUE(debug.WaitFor("next: ")) << debug.Err();
  EXPECT_EQ(debug.Stop(), 0);
  EXPECT_THAT(debug.Err(), HasSubstr("debug   saved"));
}

TEST_F(ServeTest, DescriptionsCannotForgeLines) {
  Program import({"import", "-", "--project", project},
                 {{},
                  "<events><event><eventid>1</eventid><description>x&#10;&lt;0&gt;fire&#13;"
                  "\xC2\x9B"
                  "2J</description><start><offset>0</offset><start_date><start_day>1"
                  "</start_day><start_month>1</start_month><start_year>2024</start_year>"
                  "</start_date></start><repeat><frequency>1</frequency><rate>1</rate></repeat>"
                  "</event></events>",
                  {},
                  false});
  ASSERT_EQ(import.Wait(), 0) << import.Err();
  Program program(Serve());
  ASSERT_TRUE(program.WaitFor("next: ")) << program.Err();
  EXPECT_EQ(program.Stop(), 0);
  EXPECT_THAT(program.Err(), HasSubstr("\"x\\n<0>fire\\r\\x9b2J\""));
  EXPECT_THAT(program.Err(), Not(HasSubstr("\n<0>")));
}

TEST_F(ServeTest, SpeaksTheJournalsForm) {
  Program::Options options;
  options.journal = true;
  Program program(Serve(), std::move(options));
  ASSERT_TRUE(program.WaitFor("<6>next: ")) << program.Err();
  EXPECT_EQ(program.Stop(), 0);
  EXPECT_THAT(program.Err(), testing::StartsWith("<6>vexalink "));
  EXPECT_THAT(program.Err(), HasSubstr("\n<6>7 events loaded\n"));
}

TEST_F(ServeTest, TellsWhichSavedEventsWereNotLoadedAndKeepsThem) {
  const std::string saved =
      "<event_data><current_id>9</current_id><events><event><eventid>4</eventid><description>A"
      "</description></event><event><eventid>4</eventid><description>B</description></event>"
      "</events></event_data>";
  controller::ProjectStore(project, controller::ProjectStore::Use::kKeep)
      .SaveState("scheduler", saved);
  Program program(Serve());
  ASSERT_TRUE(program.WaitFor("1 event loaded")) << program.Err();
  EXPECT_EQ(program.Stop(), 0);
  EXPECT_THAT(program.Err(), HasSubstr("not loaded: child 2 of the saved schedule, event 4 \"B\": "
                                       "eventid 4 is that of child 1 already"));
  EXPECT_THAT(program.Err(), HasSubstr("1 event not loaded; the schedule as it was is kept"));
  Program backup({"export", "--project", project, "--backup", "1"});
  EXPECT_EQ(backup.Wait(), 0);
  EXPECT_EQ(backup.Out(), saved + "\n");
}

}  // namespace
