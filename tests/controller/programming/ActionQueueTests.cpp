// The order of actions, their delays, how many there may be, and how they are given up.

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <unistd.h>

#include "tests/controller/programming/ActionHelp.h"
#include "tests/controller/programming/HttpReceiver.h"

namespace {

using namespace controller;

class Actions : public ActionTest {
 protected:
  static Action Delayed(Action action, int seconds) {
    action.delaySeconds = seconds;
    return action;
  }
  static Action On(Trigger trigger, Action action) {
    action.on = trigger;
    return action;
  }
};

TEST_F(Actions, SetVariablesAtOnceAndInOrder) {
  facts.description = "Porch {event}";
  Start({SetTo("1"), SetTo("{description}"), SetTo("{{x} {event}")});
  ASSERT_EQ(house.set.size(), 3u);
  EXPECT_EQ(house.set[0].value, "1");
  EXPECT_EQ(house.set[1].value, "Porch {event}");
  EXPECT_EQ(house.set[2].value, "{x} 7");
  EXPECT_TRUE(house.ended.empty()) << "told from the loop only";
  ASSERT_TRUE(RunUntilEnded(3));
  EXPECT_EQ(Text(house.ended[1].outcome),
            "done: sets variable 2001 of device 1 to \"Porch {event}\"");
  EXPECT_EQ(house.ended[0].facts.eventId, 7u);
  EXPECT_EQ(std::get<VariableAction>(house.ended[1].action.what).value, "{description}");
}

TEST_F(Actions, AreThoseOfTheTriggerOnly) {
  const std::vector<Action> actions = {SetTo("event"), On(Trigger::kPush, SetTo("{trigger}")),
                                       On(Trigger::kClick, SetTo("{trigger}"))};
  Start(actions, Trigger::kPush);
  Start(actions, Trigger::kClick);
  ASSERT_EQ(house.set.size(), 2u);
  EXPECT_EQ(house.set[0].value, "push");
  EXPECT_EQ(house.set[1].value, "click");
}

TEST_F(Actions, WaitForTheirDelayAndLetTheNextGoAhead) {
  Start({Delayed(SetTo("late"), 1), SetTo("now")});
  EXPECT_EQ(StateOf(0), "delayed");
  ASSERT_TRUE(RunUntilEnded(2));
  ASSERT_EQ(house.set.size(), 2u);
  EXPECT_EQ(house.set[0].value, "now");
  EXPECT_EQ(house.set[1].value, "late");
  EXPECT_TRUE(runner->Running().empty());
}

TEST_F(Actions, AreNotDoneWhereTheirConditionDoesNotHold) {
  Action action = Delayed(SetTo("1"), 86400);
  action.condition =
      Condition{"IF_YEAR", "<condition/>", R"({"kind":"year","is":"lt","year":1971})"};
  house.conditionsHold = false;
  Start({action});
  ASSERT_TRUE(RunUntilEnded(1));
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  EXPECT_EQ(Text(house.ended[0].outcome), "condition: only if the year is before 1971; it is " +
                                              std::to_string(local.tm_year + 1900));
  EXPECT_EQ(house.tested, std::vector<std::string>{"IF_YEAR"});
  EXPECT_TRUE(house.set.empty());
}

TEST_F(Actions, TestConditionsBeforeTheDelay) {
  Action action = Delayed(SetTo("1"), 1);
  action.condition = Condition{"IF_LEAP", "<condition/>", R"({"kind":"leap"})"};
  Start({action});
  EXPECT_EQ(house.tested.size(), 1u);
  house.conditionsHold = false;
  ASSERT_TRUE(RunUntilEnded(1));
  EXPECT_EQ(house.set.size(), 1u);
}

TEST_F(Actions, OfOneKindAreBegunInOrder) {
  limits.commands = 1;
  Restart(limits);
  for (const char* word : {"one", "two", "three", "four"}) {
    Start({Script(std::string("echo ") + word)});
  }
  ASSERT_TRUE(RunUntilEnded(4));
  std::string all;
  for (const auto& ended : house.ended) all += ended.outcome.output;
  EXPECT_EQ(all, "one\ntwo\nthree\nfour\n");
}

TEST_F(Actions, AreUnderWayInALimitedNumber) {
  limits.commands = 2;
  limits.hooks = 1;
  Restart(limits);
  HttpReceiver server([](const ReceivedRequest&, int) {
    return HttpReceiver::Reply{"", /*hangs=*/true};
  });
  const Action sleep = Command({"sleep", "100"});
  Start({sleep, Hook(server.Url()), sleep, sleep, Hook(server.Url())});
  EXPECT_EQ(StateOf(0), "waiting") << "begun from the loop only";
  ASSERT_TRUE(RunUntil([&] { return server.Requests().size() == 1; }));
  const auto running = runner->Running();
  ASSERT_EQ(running.size(), 5u);
  const char* const states[] = {"running", "running", "running", "waiting", "waiting"};
  for (std::size_t i = 0; i < 5; ++i) EXPECT_EQ(running[i].state, states[i]) << i;
  EXPECT_EQ(running[0].text, "runs sleep");
  EXPECT_EQ(running[0].facts.eventId, 7u);
  EXPECT_NE(running[0].since, 0);
}

TEST_F(Actions, BeyondTheMostThatMayWaitFailAtOnce) {
  limits.waiting = 3;
  Restart(limits);
  for (int i = 0; i < 5; ++i) Start({Delayed(SetTo("late"), 1000)});
  ASSERT_TRUE(RunUntilEnded(2));
  EXPECT_EQ(Text(house.ended[0].outcome),
            "failed: 3 actions are waiting already; this one was left out");
  EXPECT_EQ(runner->Running().size(), 3u);
}

TEST_F(Actions, AreGivenUpWithTheirEvent) {
  limits.commands = 1;
  limits.firstPauseMilliseconds = 60'000;
  Restart(limits);
  HttpReceiver hanging([](const ReceivedRequest&, int) {
    return HttpReceiver::Reply{"", /*hangs=*/true};
  });
  HttpReceiver failing(
      [](const ReceivedRequest&, int) { return HttpReceiver::Plain("500 Broken"); });
  Start({Command({"sleep", "100"}), Command({"sleep", "100"}), Hook(hanging.Url()),
         Hook(failing.Url(), 3), Delayed(SetTo("late"), 1000)});
  facts.eventId = 8;
  Start({Delayed(SetTo("another event's"), 1000)});
  ASSERT_TRUE(RunUntil([&] {
    return hanging.Requests().size() == 1 && StateOf(0) == "running" && StateOf(3) == "retrying";
  }));
  runner->Cancel(7);
  EXPECT_TRUE(house.ended.empty()) << "told from the loop only";
  ASSERT_TRUE(RunUntilEnded(5));
  for (const auto& ended : house.ended) {
    EXPECT_EQ(Text(ended.outcome), "cancelled: its event has gone");
  }
  ASSERT_EQ(runner->Running().size(), 1u);
  EXPECT_EQ(runner->Running()[0].facts.eventId, 8u);
  EXPECT_EQ(Text(Do(Script("exit 0"))), "done: exit status 0") << "the place is free again";
}

TEST_F(Actions, EndWithTheRunner) {
  limits.firstPauseMilliseconds = 60'000;
  Restart(limits);
  HttpReceiver hanging([](const ReceivedRequest&, int) {
    return HttpReceiver::Reply{"", /*hangs=*/true};
  });
  HttpReceiver failing(
      [](const ReceivedRequest&, int) { return HttpReceiver::Plain("500 Broken"); });
  char path[] = "/tmp/vexalink-XXXXXX";
  close(mkstemp(path));
  const std::string file = path;
  Start({Script("trap '' TERM; echo $$ > " + file + "; while :; do sleep 100; done"),
         Hook(hanging.Url()), Hook(failing.Url(), 3), Hook("http://other.slow.test/"),
         Delayed(SetTo("late"), 1000)});
  std::string told;
  runner->Try(Command({"sleep", "100"}), facts,
              [&](const ActionOutcome& outcome) { told = Text(outcome); });
  long pid = 0;
  ASSERT_TRUE(RunUntil([&] {
    std::FILE* const read = std::fopen(path, "r");
    const bool known = std::fscanf(read, "%ld", &pid) == 1;
    std::fclose(read);
    return known && hanging.Requests().size() == 1 && StateOf(2) == "retrying";
  }));
  runner.reset();
  EXPECT_EQ(house.ended.size(), 5u);
  for (const auto& ended : house.ended) {
    EXPECT_EQ(Text(ended.outcome), "cancelled: the controller has ended");
  }
  EXPECT_EQ(told, "cancelled: the controller has ended");
  EXPECT_FALSE(IsAlive(pid));
  std::remove(path);
}

TEST_F(Actions, StartedAndEndedBeforeTheLoopTurnsAreToldToo) {
  Start({SetTo("1"), Script("exit 0"), Hook("http://127.0.0.1:1/")});
  runner.reset();
  ASSERT_EQ(house.ended.size(), 3u);
  EXPECT_EQ(Text(house.ended[0].outcome), "done: sets variable 2001 of device 1 to \"1\"");
  EXPECT_EQ(Text(house.ended[2].outcome), "cancelled: the controller has ended");
}

class Tries : public ActionTest {
 protected:
  std::string TextOfTry(const Action& action) {
    std::string text;
    runner->Try(action, facts, [&](const ActionOutcome& outcome) { text = Text(outcome); });
    EXPECT_EQ(text, "") << "told from the loop only";
    RunUntil([&] { return !text.empty(); });
    return text;
  }
};

TEST_F(Tries, AreDoneNowAndToldToWhoAsked) {
  HttpReceiver server([](const ReceivedRequest&, int) { return HttpReceiver::Plain("200 OK"); });
  Action late = SetTo("x");
  late.delaySeconds = 86400;
  late.on = Trigger::kPush;
  EXPECT_EQ(TextOfTry(late), "done: sets variable 2001 of device 1 to \"x\"");
  EXPECT_EQ(TextOfTry(Script("exit 2")), "failed: exit status 2");
  EXPECT_EQ(TextOfTry(Hook(server.Url())), "done: 200 OK");
  EXPECT_EQ(TextOfTry(Command({"/nowhere"})).substr(0, 26), "failed: cannot run \"/nowhe");
  EXPECT_TRUE(house.ended.empty());
}

TEST_F(Tries, TestTheCondition) {
  Action action = SetTo("x");
  action.condition = Condition{"IF_LEAP", "<condition/>", R"({"kind":"leap"})"};
  EXPECT_EQ(TextOfTry(action), "done: sets variable 2001 of device 1 to \"x\"");
  house.conditionsHold = false;
  EXPECT_EQ(TextOfTry(action).substr(0, 40), "condition: only if it is a leap year; it");
}

}  // namespace
