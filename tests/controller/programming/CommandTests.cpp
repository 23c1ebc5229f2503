// How programs are run, and how they end.

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

#include "controller/LocalTimeText.h"
#include "tests/controller/programming/ActionHelp.h"

namespace {

using namespace controller;

/// With pidfds, and without as on an old system.
class Commands : public ActionTest, public testing::WithParamInterface<bool> {
 protected:
  Commands() {
    limits.pidfds = GetParam();
    Restart(limits);
  }
};

INSTANTIATE_TEST_SUITE_P(HoweverTheEndIsSeen, Commands, testing::Bool(),
                         [](const auto& row) { return row.param ? "Pidfd" : "Asking"; });

TEST_P(Commands, KnowWhatHasFired) {
  const ActionOutcome outcome =
      Do(Script("echo $VEXALINK_EVENT; echo $VEXALINK_DESCRIPTION; echo $VEXALINK_PLANNED; "
                "echo $VEXALINK_ACTUAL; echo $VEXALINK_TRIGGER; pwd; cat"));
  EXPECT_EQ(Text(outcome), "done: exit status 0");
  EXPECT_EQ(outcome.output, "7\nPorch\n" + MomentText(facts.planned) + "\n" +
                                MomentText(facts.actual) + "\nevent\n/\n");
}

TEST_P(Commands, GetTheirArgumentsWithoutAShell) {
  facts.description = "$(id); `id` 'x' \"y\" * \n{event}";
  const ActionOutcome outcome =
      Do(Command({"printf", "<%s>", "{description}", "", "{{event}", "a b", "{trigger}"}));
  EXPECT_EQ(outcome.output, "<" + facts.description + "><><{event}><a b><event>");
}

TEST_P(Commands, TellHowTheyEnded) {
  const struct {
    const char* script;
    const char* text;
  } rows[] = {
      {"exit 0", "done: exit status 0"},
      {"exit 3", "failed: exit status 3"},
      {"kill -9 $$", "failed: ended by signal 9 (Killed)"},
      {"kill -TERM $$", "failed: ended by signal 15 (Terminated)"},
  };
  for (const auto& row : rows) EXPECT_EQ(Text(Do(Script(row.script))), row.text);
}

TEST_P(Commands, ThatCannotBeRunSayWhy) {
  const std::string folder = std::filesystem::temp_directory_path() / "vexalink-XXXXXX";
  std::string made = folder;
  ASSERT_NE(mkdtemp(made.data()), nullptr);
  const std::string script = made + "/script";
  std::ofstream(script) << "echo no first line\n";
  EXPECT_EQ(Text(Do(Command({"/nowhere/at-all"}))),
            "failed: cannot run \"/nowhere/at-all\": no such program, or what its first line names "
            "is missing");
  EXPECT_EQ(Text(Do(Command({"no-such-program-anywhere"}))),
            "failed: cannot run \"no-such-program-anywhere\": no such program, or what its first "
            "line names is missing");
  EXPECT_EQ(Text(Do(Command({script}))),
            "failed: cannot run \"" + script + "\": it may not be executed");
  std::filesystem::permissions(script, std::filesystem::perms::owner_all);
  EXPECT_EQ(Text(Do(Command({script}))), "failed: cannot run \"" + script +
                                             "\": it is no program; a script needs a first line "
                                             "such as #!/bin/sh");
  EXPECT_EQ(Text(Do(Command({"/"}))), "failed: cannot run \"/\": it may not be executed");
  std::filesystem::remove_all(made);
}

TEST_P(Commands, FindTheirWorldClean) {
  sigset_t blocked;
  sigset_t before;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &blocked, &before);
  signal(SIGPIPE, SIG_IGN);
  setenv("NOTIFY_SOCKET", "/run/notify", 1);
  setenv("VEXALINK_TOKEN", "secret", 1);
  const ActionOutcome outcome =
      Do(Script("echo \"$NOTIFY_SOCKET$VEXALINK_TOKEN\"; "
                "test $(cut -d' ' -f6 /proc/$$/stat) = $$ && echo its own session; "
                "grep SigBlk /proc/self/status; sed -n 's/SigIgn:.//p' /proc/self/status"));
  unsetenv("VEXALINK_TOKEN");
  unsetenv("NOTIFY_SOCKET");
  signal(SIGPIPE, SIG_DFL);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  const std::string expected = "\nits own session\nSigBlk:\t0000000000000000\n";
  ASSERT_EQ(outcome.output.substr(0, expected.size()), expected);
  // But for the two that the C library keeps to itself.
  const unsigned long ignored = std::stoul(outcome.output.substr(expected.size()), nullptr, 16);
  EXPECT_EQ(ignored & ~0x180000000UL, 0u) << outcome.output;
}

TEST_P(Commands, GetNoDescriptorOfOurs) {
  const int leak = open("/dev/null", O_RDONLY);  // not closed to programs
  // The fourth is the folder that is being listed.
  EXPECT_EQ(Do(Command({"ls", "/proc/self/fd"})).output, "0\n1\n2\n3\n");
  close(leak);
}

TEST_P(Commands, MayWriteMoreThanIsKept) {
  const ActionOutcome outcome = Do(Script("yes x | tr -d '\\n' | head -c 5000000; echo end >&2"));
  EXPECT_EQ(Text(outcome), "done: exit status 0");
  EXPECT_EQ(outcome.output, std::string(4096, 'x'));
  EXPECT_EQ(Do(Script("echo out; echo err >&2")).output, "out\nerr\n");
}

TEST_P(Commands, AreEndedWithAllTheyHaveStartedWhenTheirTimeIsUp) {
  const ActionOutcome outcome =
      Do(Script("sleep 100 & echo $!; echo $$; exec sleep 100", /*timeoutSeconds=*/1));
  EXPECT_EQ(Text(outcome), "timed-out: not done within 1 s; ended");
  EXPECT_GE(outcome.milliseconds, 990);
  EXPECT_LT(outcome.milliseconds, 10'000);
  long child = 0;
  long parent = 0;
  ASSERT_EQ(std::sscanf(outcome.output.c_str(), "%ld %ld", &child, &parent), 2) << outcome.output;
  EXPECT_TRUE(RunUntil([&] { return !IsAlive(child) && !IsAlive(parent); }));
}

TEST_P(Commands, ThatDoNotObeyAreKilled) {
  const ActionOutcome outcome =
      Do(Script("trap '' TERM; sleep 100 & echo $!; echo $$; while :; do sleep 100; done", 1));
  EXPECT_EQ(Text(outcome), "timed-out: not done within 1 s; ended");
  long child = 0;
  long parent = 0;
  ASSERT_EQ(std::sscanf(outcome.output.c_str(), "%ld %ld", &child, &parent), 2) << outcome.output;
  EXPECT_TRUE(RunUntil([&] { return !IsAlive(child) && !IsAlive(parent); }));
}

TEST_P(Commands, LeaveNobodyBehindThatDoesNotObey) {
  // The shell obeys, what it has started does not.
  const ActionOutcome outcome =
      Do(Script("(trap '' TERM; exec sleep 100) & echo $!; sleep 100", 1));
  EXPECT_EQ(Text(outcome), "timed-out: not done within 1 s; ended");
  EXPECT_TRUE(RunUntil([&] { return !IsAlive(std::stol(outcome.output)); }));
}

TEST_P(Commands, MayLeaveSomethingRunningThatHoldsTheirOutput) {
  const ActionOutcome outcome = Do(Script("sleep 100 & echo $!"));
  EXPECT_EQ(Text(outcome), "done: exit status 0");
  EXPECT_LT(outcome.milliseconds, 10'000);
  const long left = std::stol(outcome.output);
  EXPECT_TRUE(IsAlive(left));
  kill(static_cast<pid_t>(left), SIGKILL);
}

TEST_P(Commands, MayCloseTheirOutputAndGoOn) {
  EXPECT_EQ(Text(Do(Script("exec >&- 2>&-; sleep 0.1; exit 4"))), "failed: exit status 4");
}

TEST_P(Commands, LeaveNoDescriptorOpen) {
  Do(Script("exit 0"));
  const std::size_t before = OpenDescriptors();
  for (int i = 0; i < 5; ++i) {
    Do(Script("echo x"));
    Do(Command({"/nowhere"}));
  }
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST_P(Commands, EndAlsoWhereNobodyWantedToKnow) {
  signal(SIGCHLD, SIG_IGN);  // as inherited from who started us
  EXPECT_EQ(Text(Do(Script("exit 3"))), "failed: exit status 3");
  signal(SIGCHLD, SIG_DFL);
}

}  // namespace
