#include <chrono>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

#include "TempFolder.h"
#include "controller/Failure.h"
#include "controller/ProjectLock.h"

namespace controller {
namespace {

using testing::HasSubstr;

TEST(ProjectLock, IsHeldByOneAndNamesItsHolder) {
  const TempFolder folder;
  const auto project = folder / "project.db";
  {
    const ProjectLock first(project, "serve");
    try {
      const ProjectLock second(project, "import");
      FAIL() << "two hold it";
    } catch (const Failure& failure) {
      EXPECT_THAT(failure.what(), HasSubstr("\"vexalink serve\""));
      EXPECT_THAT(failure.what(), HasSubstr("process " + std::to_string(getpid())));
      EXPECT_THAT(failure.what(), HasSubstr("since 20"));
    }
  }
  EXPECT_FALSE(std::filesystem::exists(folder / "project.db.lock"));
  const ProjectLock third(project, "import");
}

TEST(ProjectLock, WaitsForAHolderThatIsAboutToBeGone) {
  const TempFolder folder;
  const int held = ::open((folder / "project.db.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  ASSERT_EQ(::flock(held, LOCK_EX), 0);
  std::thread gone([held] {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    ::close(held);
  });
  EXPECT_NO_THROW(ProjectLock(folder / "project.db", "serve"));
  gone.join();
}

TEST(ProjectLock, IsNotHeldByAFileThatWasLeftBehind) {
  const TempFolder folder;
  WriteFile(folder / "project.db.lock",
            "\"vexalink serve\", process 1, since ever, and much longer text");
  const ProjectLock lock(folder / "project.db", "serve");
  EXPECT_THAT(ReadFile(folder / "project.db.lock"), HasSubstr(std::to_string(getpid())));
  EXPECT_THAT(ReadFile(folder / "project.db.lock"), testing::Not(HasSubstr("longer")));
}

TEST(ProjectLock, DoesNotFollowALink) {
  const TempFolder folder;
  WriteFile(folder / "precious", "text");
  std::filesystem::create_symlink(folder / "precious", folder / "project.db.lock");
  EXPECT_THROW(ProjectLock(folder / "project.db", "serve"), Failure);
  EXPECT_EQ(ReadFile(folder / "precious"), "text");
}

}  // namespace
}  // namespace controller
