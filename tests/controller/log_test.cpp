#include "controller/Log.h"

#include <fcntl.h>
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
