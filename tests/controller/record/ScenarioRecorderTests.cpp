// What was recorded of a live run plays again, line by line.

#include <algorithm>
#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include "RandomSchedule.h"
#include "RecordedHouse.h"
#include "TempFolder.h"
#include "controller/Failure.h"
#include "controller/LocalTimeText.h"

namespace controller {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

constexpr const char* kBerlin = "CET-1CEST,M3.5.0,M10.5.0/3";

class ScenarioRecorderTest : public testing::Test {
 protected:
  std::time_t At(const char* text) { return *ParseLocalTime(text); }
  void ExpectPlaysAgain() {
    const auto live = LinesOf(ReadFile(transcript));
    const auto played = LinesOf(Played(scenario));
    ASSERT_EQ(live.size(), played.size());
    for (std::size_t line = 0; line < live.size(); ++line) {
      ASSERT_EQ(live[line], played[line]) << "line " << line + 1;
    }
  }

  const EnvironmentScope zone{"TZ", kBerlin};
  const TempFolder folder;
  const std::filesystem::path scenario = folder / "day.jsonl";
  const std::filesystem::path transcript = folder / "day.transcript";
};

TEST_F(ScenarioRecorderTest, ABusyLifePlaysAgainLineByLine) {
  for (unsigned seed = 1; seed <= 6; ++seed) {
    SCOPED_TRACE(seed);
    int fired = 0;
    int asserted = 0;
    {
      std::mt19937 random(seed);
      RecordedHouse house(At("2026-03-28T06:00:00"), scenario, transcript);
      for (int i = 0; i < 400; ++i) house.Live(random, 2026);
      fired = house.fired;
      asserted = house.asserted;
    }
    EXPECT_GT(fired, 100);
    const auto told = LinesOf(ReadFile(transcript));
    EXPECT_EQ(std::count_if(told.begin(), told.end(),
                            [](const std::string& line) {
                              return line.find("\"AssertWrite\"") != std::string::npos;
                            }),
              asserted);
    ExpectPlaysAgain();
  }
  EXPECT_TRUE(std::filesystem::exists(folder / "day.jsonl.5")) << "the earlier ones are kept";
}

TEST_F(ScenarioRecorderTest, AnIdleDayIsALine) {
  {
    RecordedHouse house(At("2026-03-28T00:00:00"), scenario, transcript);
    house.RunUntil(At("2026-03-28T23:59:59"));
  }
  const auto lines = LinesOf(ReadFile(scenario));
  EXPECT_THAT(lines, SizeIs(8));
  EXPECT_THAT(lines[0], StartsWith("# Recorded by vexalink"));
  EXPECT_THAT(lines[6], StartsWith("{\"do\":\"run\",\"until\":"));
  ExpectPlaysAgain();
}

TEST_F(ScenarioRecorderTest, WhatHasHappenedIsInTheFileAtOnce) {
  RecordedHouse house(At("2026-03-28T06:00:00"), scenario, transcript);
  for (const char* until : {"2026-03-28T06:00:01", "2026-03-28T06:00:02", "2026-03-28T07:00:00"}) {
    house.RunUntil(At(until));
    const std::string recorded = ReadFile(scenario);
    EXPECT_THAT(recorded,
                HasSubstr("{\"do\":\"run\",\"until\":" + std::to_string(At(until)) + "}\n"));
    EXPECT_THAT(LinesOf(recorded), SizeIs(7));
  }
}

TEST_F(ScenarioRecorderTest, SecondsWithoutATickAndTicksWithinASecondAreKept) {
  const std::time_t start = At("2026-03-28T06:00:00");
  {
    RecordedHouse house(start, scenario, transcript);
    for (const int second : {1, 2, 2, 5, 6, 4}) house.Tick(start + second);
  }
  std::vector<std::string> ticks;
  for (const std::string& line : LinesOf(ReadFile(scenario))) {
    if (line.find("\"run\"") != std::string::npos) ticks.push_back(line);
  }
  const auto run = [&](int second) {
    return "{\"do\":\"run\",\"until\":" + std::to_string(start + second) + "}";
  };
  EXPECT_THAT(ticks, ElementsAre(run(2), run(2), run(6), run(4)));
  ExpectPlaysAgain();
}

TEST_F(ScenarioRecorderTest, RandomPartsAreThoseOfTheDayAlsoAfterARestart) {
  {
    RecordedHouse house(At("2026-03-28T06:00:00"), scenario, transcript);
    for (int i = 1; i <= 20; ++i) {
      EventElement event;
      event.description = "Event " + std::to_string(i);
      event.offset_minutes = 600 + i;
      event.randomize = 200;
      event.frequency = static_cast<int>(RepeatKind::kDaily);
      event.rate = 1;
      event.start = {2026, 3, 1};
      house.Scheduler().Command("ADD_EVENT", {{"EVENT_XML", MakeEventElement(event)->ToString()}});
    }
    house.RunUntil(At("2026-03-28T09:00:00"));
    house.Restart();
    house.RunUntil(At("2026-03-29T09:00:00"));
    house.Restart();
    house.RunUntil(At("2026-03-29T20:00:00"));
    EXPECT_GT(house.fired, 30);
  }
  ExpectPlaysAgain();
}

TEST_F(ScenarioRecorderTest, AnotherTimeZoneIsAnotherFile) {
  std::mt19937 random(3);
  {
    RecordedHouse house(At("2026-03-28T06:00:00"), scenario, transcript);
    for (int i = 0; i < 50; ++i) house.Live(random, 2026);
    house.Restart();
    EXPECT_FALSE(std::filesystem::exists(folder / "day.jsonl.1")) << "the zone is the same";
    std::optional<EnvironmentScope> elsewhere;
    house.Restart([&] { elsewhere.emplace("TZ", "EST5EDT,M3.2.0,M11.1.0"); });
    for (int i = 0; i < 50; ++i) house.Live(random, 2026);
  }
  EXPECT_EQ(ReadFile(folder / "day.transcript.1"), Played(folder / "day.jsonl.1"));
  const EnvironmentScope elsewhere("TZ", "EST5EDT,M3.2.0,M11.1.0");
  EXPECT_THAT(ReadFile(scenario), HasSubstr("EST5EDT"));
  ExpectPlaysAgain();
}

TEST_F(ScenarioRecorderTest, AFullDiskEndsTheRecordingAndNothingElse) {
  ::signal(SIGXFSZ, SIG_IGN);
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  int fired = 0;
  testing::internal::CaptureStderr();
  {
    RecordedHouse house(At("2026-03-28T06:00:00"), scenario, transcript);
    const rlimit small{20000, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    std::mt19937 random(1);
    for (int i = 0; i < 300; ++i) house.Live(random, 2026);
    fired = house.fired;
    setrlimit(RLIMIT_FSIZE, &before);
  }
  const std::string log = testing::internal::GetCapturedStderr();
  ::signal(SIGXFSZ, SIG_DFL);
  EXPECT_GT(fired, 50) << "the house goes on";
  EXPECT_THAT(log, HasSubstr("the recording to \"" + scenario.string() +
                             "\" has ended: File too large; what it holds until then can be "
                             "played. The controller goes on without it"));
  EXPECT_LE(std::filesystem::file_size(scenario), 20000u);
  const std::string played = Played(scenario);
  const std::string told = ReadFile(transcript);
  EXPECT_TRUE(played.starts_with(told) || told.starts_with(played)) << "as far as both go";
  EXPECT_GT(told.size(), 10000u);
}

TEST_F(ScenarioRecorderTest, AnyOtherFileIsLeftAlone) {
  WriteFile(scenario, "dear diary\n");
  try {
    ScenarioRecorder recorder(scenario, std::nullopt);
    FAIL() << "recorded over it";
  } catch (const Failure& failure) {
    EXPECT_THAT(failure.what(), HasSubstr("is there already and no earlier recording"));
    EXPECT_EQ(failure.Status(), ExitStatus::kBadInput);
  }
  EXPECT_EQ(ReadFile(scenario), "dear diary\n");
  EXPECT_THROW(ScenarioRecorder(folder / "no" / "such", std::nullopt), Failure);
  EXPECT_THROW(ScenarioRecorder(folder.Path(), std::nullopt), Failure);
}

}  // namespace
}  // namespace controller
