#include "RecordedHouse.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <sstream>

#include "RandomSchedule.h"
#include "controller/LocalTimeText.h"
#include "controller/Place.h"
#include "controller/Play.h"
#include "controller/ProjectVariables.h"
#include "controller/firing/DayDraw.h"

namespace controller {

namespace {

constexpr Place kBerlin{52.52, 13.405};

CommandMessage::Params EventText(const EventElement& event) {
  return {{"EVENT_XML", MakeEventElement(event)->ToString()}};
}

}  // namespace

RecordedHouse::RecordedHouse(std::time_t now, const std::filesystem::path& scenario,
                             const std::filesystem::path& transcript)
    : loader_(LoadDriver(VEXALINK_AGENT)), recorder_((Clock::Freeze(now), scenario), transcript) {
  host_.SetRecorder(recorder_);
  host_.SetVariable(kProjectDevice, kLatitudeVariable, DegreesText(kBerlin.latitude));
  host_.SetVariable(kProjectDevice, kLongitudeVariable, DegreesText(kBerlin.longitude));
  Begin(std::nullopt);
}

RecordedHouse::~RecordedHouse() {
  scheduler_.reset();
  Clock::Release();
  vx::SetAssertSink(sinkBefore_);
}

void RecordedHouse::Begin(const std::optional<std::string>& persisted) {
  scheduler_ = std::make_unique<DriverInstance>(*loader_, host_, &recorder_);
  seed_.Seed();
  scheduler_->Initialize(kSchedulerDevice, persisted);
}

void RecordedHouse::Tick(std::time_t now) {
  Clock::Freeze(now);
  host_.ExpireTimers();
}

void RecordedHouse::RunUntil(std::time_t until) {
  for (std::time_t now = Now() + 1; now <= until; ++now) Tick(now);
}

void RecordedHouse::Restart(const std::function<void()>& meanwhile) {
  const auto state = scheduler_->PersistText();
  meanwhile();
  const IDriver* driver = &scheduler_->Driver();
  scheduler_.reset();
  host_.Forget(driver);
  // Others draw in between, and from the same schedule.
  DrawDay(*loader_, kBerlin, *state, Now(), 7);
  Begin(state);
}

void RecordedHouse::Live(std::mt19937& random, int year) {
  const int kind = Between(random, 1, 10);
  if (kind <= 4) return MoveOn(random);
  if (kind <= 7) return ChangeSomething(random, year);
  if (kind <= 9) return AskSomething(random, year);
  if (OneIn(random, 3)) Restart();
  for (int draws = Between(random, 0, 5); draws > 0; --draws) std::rand();
}

void RecordedHouse::MoveOn(std::mt19937& random) {
  switch (Between(random, 1, 8)) {
    case 1:
      return Tick(Now());  // twice within a second
    case 2:
      return Tick(Now() + Between(random, 2, 5));  // seconds without a tick
    case 3:
      return Tick(Now() + Between(random, -7200, 7200));  // the clock was set
    case 4:
      Clock::Freeze(Now() + Between(random, 1, 3));  // time goes on without a tick
      return;
    case 5: {
      // Over midnight.
      const std::time_t midnight = LocalInstant(DaysAfter(LocalDay(Now()), 1), 0, 0);
      Tick(midnight - 3);
      return RunUntil(midnight + Between(random, 0, 90));
    }
    default:
      return RunUntil(Now() + Between(random, 1, 1500));
  }
}

void RecordedHouse::ChangeSomething(std::mt19937& random, int year) {
  EventElement event = RandomEvent(random, year);
  event.description = "Event " + std::to_string(Between(random, 1, 60));
  const unsigned long some = static_cast<unsigned long>(Between(random, 1, 80));
  switch (Between(random, 1, 6)) {
    case 1:
      return scheduler_->Command("DELETE_EVENT", {{"EVENT_ID", std::to_string(some)}});
    case 2:
      event.eventid = some;
      return scheduler_->Command("MODIFY_EVENT", EventText(event));
    case 3:
      return host_.SetVariable(kProjectDevice, kLatitudeVariable,
                               std::to_string(Between(random, -89, 89)));
    default:
      // Within the next minutes, so that something happens.
      event.start = LocalDay(Now());
      event.frequency = static_cast<int>(RepeatKind::kDaily);
      event.rate = 1;
      event.end.reset();
      if (!OneIn(random, 3)) {
        std::tm fields{};
        const std::time_t now = Now();
        localtime_r(&now, &fields);
        event.offset = 0;
        event.offset_minutes = fields.tm_hour * 60 + fields.tm_min + Between(random, 0, 30);
      }
      return scheduler_->Command("ADD_EVENT", EventText(event));
  }
}

void RecordedHouse::AskSomething(std::mt19937& random, int year) {
  const std::string day = std::to_string(Between(random, 1, 28));
  switch (Between(random, 1, 6)) {
    case 6:
      scheduler_->IdOfDescription("Event " + day);
      return;
    case 1:
      scheduler_->Request("GET_ALL_EVENTS");
      return;
    case 2:
      scheduler_->Request("GET_EVENT", {{"EVENT_ID", day}});
      return;
    case 3:
      scheduler_->Request("GET_EVENT_OCCURENCES", {{"FROM_YEAR", std::to_string(year)},
                                                   {"FROM_MONTH", "3"},
                                                   {"FROM_DAY", day},
                                                   {"TO_YEAR", std::to_string(year)},
                                                   {"TO_MONTH", "4"},
                                                   {"TO_DAY", day}});
      return;
    case 4:
      scheduler_->Test("IF_TIME", {{"CONDITIONAL_XML",
                                    "<condition><compare>GT</compare><hour>12</hour>"
                                    "<minute>0</minute></condition>"}});
      return;
    default:
      scheduler_->PersistText();
  }
}

std::string Played(const std::filesystem::path& scenario) {
  std::ostringstream out;
  std::ostringstream err;
  EXPECT_EQ(RunPlay({scenario.string(), VEXALINK_AGENT}, out, err), 0) << err.str();
  return out.str();
}

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

}  // namespace controller
