// `vexalink serve --record`, and what `vexalink play` makes of it.

#include <array>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "Program.h"
#include "RecordedHouse.h"
#include "TempFolder.h"

namespace controller {
namespace {

using testing::AllOf;
using testing::HasSubstr;

/// A zone in which a day begins `seconds` from now.
std::string ZoneWithAMidnightIn(int seconds) {
  const long late = (std::time(nullptr) + seconds) % 86400;
  const long east = late > 43200 ? 86400 - late : -late;
  const long size = east < 0 ? -east : east;
  std::array<char, 32> zone{};
  std::snprintf(zone.data(), zone.size(), "TST%c%02ld:%02ld:%02ld", east < 0 ? '+' : '-',
                size / 3600, size / 60 % 60, size % 60);
  return zone.data();
}

class ServeRecord : public testing::Test {
 protected:
  static Program::Options In(const std::string& zone) { return {{{"TZ", zone}}, "", {}, false}; }

  std::vector<std::string> Serve() const {
    return {"serve",    "--project", project.string(),      "--listen",         "127.0.0.1:0",
            "--record", scenario,    "--record-transcript", transcript.string()};
  }

  static std::string UrlOf(const Program& serve) {
    const std::string log = serve.Err();
    const auto at = log.find("http://127.0.0.1:");
    return log.substr(at, log.find('/', at + 7) - at);
  }

  void Do(std::vector<std::string> command, int status = 0) {
    Program program(command, {{{"TZ", zone}, {"VEXALINK_URL", url}}, "", {}, false});
    EXPECT_EQ(program.Wait(), status) << command[0] << ": " << program.Err();
  }

  void ExpectPlaysAgain(const std::string& in) {
    Program play({"play", scenario}, In(in));
    EXPECT_EQ(play.Wait(), 0) << play.Err();
    EXPECT_EQ(LinesOf(play.Out()), LinesOf(ReadFile(transcript)));
  }

  const TempFolder folder;
  const std::filesystem::path project = folder / "project.db";
  const std::string scenario = (folder / "day.jsonl").string();
  const std::filesystem::path transcript = folder / "day.transcript";
  std::string zone;
  std::string url;
};

TEST_F(ServeRecord, ABusyMidnightPlaysAgain) {
  zone = ZoneWithAMidnightIn(20);
  Program serve(Serve(), In(zone));
  ASSERT_TRUE(serve.WaitFor("api http://127.0.0.1:")) << serve.Err();
  url = UrlOf(serve);
  Do({"add", "Soon", "--at", "midnight", "--every", "day"});
  Do({"add", "Dusk", "--at", "sunset-20", "--every", "2 days", "--spread", "90"});
  for (int i = 0; i < 8; ++i) {
    Do({"add", "Any " + std::to_string(i), "--at", "00:01", "--every", "day", "--spread", "200",
        "--catch-up", "always"});
  }
  Do({"modify", "Any 3", "--at", "12:00"});
  Do({"delete", "Any 4"});
  Do({"test", "year eq 1999"}, /*status=*/10);
  Do({"list"});
  Do({"next"});
  serve.Signal(SIGHUP);
  ASSERT_TRUE(serve.WaitFor("time zone read again")) << serve.Err();
  Do({"restore", "14"});
  Do({"skip", "Any 5"});
  Do({"run", "Dusk"});
  ASSERT_TRUE(serve.WaitFor("\"Soon\" fired")) << serve.Err();
  Do({"add", "After midnight", "--at", "23:00", "--every", "day", "--spread", "30"});
  EXPECT_EQ(serve.Stop(), 0);
  const std::string recorded = ReadFile(scenario);
  EXPECT_THAT(recorded,
              AllOf(HasSubstr("ADD_EVENT"), HasSubstr("MODIFY_EVENT"), HasSubstr("DELETE_EVENT"),
                    HasSubstr("\"condition\""), HasSubstr("\"interface\""),
                    HasSubstr("\"destroy\""), HasSubstr("\"seed\":")));
  EXPECT_THAT(ReadFile(transcript), AllOf(HasSubstr("SCHEDULE_TRACE"), HasSubstr("\"FireEvent\"")));
  ExpectPlaysAgain(zone);
}

TEST_F(ServeRecord, WhatWasRecordedUntilACrashPlaysToo) {
  Program serve(Serve(), In("UTC0"));
  ASSERT_TRUE(serve.WaitFor("api http://")) << serve.Err();
  const std::string begun = ReadFile(scenario);
  EXPECT_THAT(begun, HasSubstr("{\"do\":\"initialize\""));
  ::usleep(2500000);
  serve.Signal(SIGKILL);
  EXPECT_EQ(serve.Wait(), 128 + SIGKILL);
  EXPECT_THAT(ReadFile(scenario), HasSubstr("{\"do\":\"run\",\"until\":"));
  Program play({"play", scenario}, In("UTC0"));
  EXPECT_EQ(play.Wait(), 0) << play.Err();
  EXPECT_TRUE(play.Out().starts_with(ReadFile(transcript)));
  Program again(Serve(), In("UTC0"));
  ASSERT_TRUE(again.WaitFor("api http://")) << again.Err();
  EXPECT_EQ(again.Stop(), 0);
  EXPECT_TRUE(std::filesystem::exists(scenario + ".1")) << "the recording before is kept";
  ExpectPlaysAgain("UTC0");
}

TEST_F(ServeRecord, DoesNotBeginWhereItCannotRecord) {
  WriteFile(scenario, "dear diary\n");
  Program serve(Serve(), In("UTC0"));
  EXPECT_EQ(serve.Wait(), 2);
  EXPECT_THAT(serve.Err(), HasSubstr("is there already and no earlier recording"));
  EXPECT_EQ(ReadFile(scenario), "dear diary\n");
}

}  // namespace
}  // namespace controller
