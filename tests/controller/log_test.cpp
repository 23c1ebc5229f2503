#include "controller/Log.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "TempFolder.h"

namespace controller {
namespace {

constexpr timespec kMoment{1709708400, 7000000};  // 2024-03-06 07:00:00 UTC and 7 ms

TEST(LogLine, HasTimeAndLevelForPeople) {
  const EnvironmentScope zone("TZ", "<+0530>-5:30");
  EXPECT_EQ(FormatLogLine(LogLevel::kInfo, "all is well", false, kMoment),
            "2024-03-06T12:30:00.007+05:30 info    all is well\n");
  EXPECT_EQ(FormatLogLine(LogLevel::kWarning, "", false, kMoment),
            "2024-03-06T12:30:00.007+05:30 warning \n");
}

TEST(LogLine, HasOnlyTheLevelForTheJournal) {
  EXPECT_EQ(FormatLogLine(LogLevel::kError, "broken", true, kMoment), "<3>broken\n");
  EXPECT_EQ(FormatLogLine(LogLevel::kDebug, "detail", true, kMoment), "<7>detail\n");
}

TEST(LogLine, CannotBeForgedByWhatItReports) {
  const std::string line =
      FormatLogLine(LogLevel::kInfo, "event 1 \"\n<0>the house burns\x1b[2J\"", true, kMoment);
  EXPECT_EQ(line, "<6>event 1 \"\\n<0>the house burns\\x1b[2J\"\n");
}

TEST(LogLine, OfAMegabyteIsCut) {
  EXPECT_LT(FormatLogLine(LogLevel::kInfo, std::string(1 << 20, 'x'), true, kMoment).size(), 9000u);
}

// A pipe that nobody reads is full after 64 kB.
TEST(Log, AReaderThatHasStoppedDoesNotStopTheHouse) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const int before = dup(STDERR_FILENO);
  dup2(ends[1], STDERR_FILENO);
  for (int line = 0; line < 100; ++line) Log::Info(std::string(2000, 'x'));
  fcntl(ends[0], F_SETFL, O_NONBLOCK);
  std::string read;
  std::array<char, 65536> bytes;
  const auto take = [&] {
    for (ssize_t got; (got = ::read(ends[0], bytes.data(), bytes.size())) > 0;) {
      read.append(bytes.data(), static_cast<std::size_t>(got));
    }
  };
  take();
  Log::Info("goes on");
  take();
  dup2(before, STDERR_FILENO);
  for (const int fd : {before, ends[0], ends[1]}) close(fd);
  const auto written = static_cast<std::size_t>(std::count(read.begin(), read.end(), '\n')) - 2;
  EXPECT_GT(written, 20u);
  EXPECT_THAT(read, testing::HasSubstr(std::to_string(100 - written) +
                                       " lines are missing here: nobody read the log\n"));
  EXPECT_THAT(read, testing::EndsWith("goes on\n"));
}

TEST(LogTime, ShowsTheOffsetWithItsSign) {
  const struct {
    const char* zone;
    const char* offset;
  } rows[] = {{"UTC0", "+00:00"}, {"<-0330>3:30", "-03:30"}, {"<+1030>-10:30", "+10:30"}};
  for (const auto& row : rows) {
    const EnvironmentScope zone("TZ", row.zone);
    EXPECT_EQ(OffsetText(kMoment.tv_sec), row.offset) << row.zone;
  }
}

TEST(JournalStream, IsKnownByDeviceAndInode) {
  const TempFolder folder;
  WriteFile(folder / "stream", "");
  const int fd = ::open((folder / "stream").c_str(), O_RDONLY);
  ASSERT_GE(fd, 0);
  struct stat file {};
  ASSERT_EQ(::fstat(fd, &file), 0);
  const std::string device = std::to_string(file.st_dev);
  const std::string inode = std::to_string(file.st_ino);
  EXPECT_TRUE(IsJournalStream(fd, (device + ':' + inode).c_str()));
  EXPECT_FALSE(IsJournalStream(fd, (device + ":1").c_str()));
  EXPECT_FALSE(IsJournalStream(fd, "nonsense"));
  EXPECT_FALSE(IsJournalStream(fd, ""));
  EXPECT_FALSE(IsJournalStream(fd, nullptr));
  ::close(fd);
  EXPECT_FALSE(IsJournalStream(fd, (device + ':' + inode).c_str()));
}

}  // namespace
}  // namespace controller
