// What the service manager is told.

#include <algorithm>
#include <array>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "Program.h"
#include "TempFolder.h"
#include "controller/ServiceNotify.h"
#include "controller/Sqlite.h"

namespace {

using testing::HasSubstr;

/// The service manager's end.
class NotifySocket {
 public:
  explicit NotifySocket(const std::string& path)
      : fd_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.c_str(), path.size());
    if (path[0] == '@') address.sun_path[0] = '\0';
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
    if (::bind(fd_, reinterpret_cast<const sockaddr*>(&address), size) != 0) ADD_FAILURE() << path;
  }
  ~NotifySocket() { ::close(fd_); }
  NotifySocket(const NotifySocket&) = delete;
  NotifySocket& operator=(const NotifySocket&) = delete;

  /// The next message; empty where none comes for two minutes.
  std::string Next() {
    pollfd waiting{fd_, POLLIN, 0};
    if (::poll(&waiting, 1, 120000) != 1) return "";
    std::array<char, 4096> message{};
    const ssize_t size = ::recv(fd_, message.data(), message.size(), 0);
    return {message.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0))};
  }

 private:
  int fd_;
};

TEST(ServiceNotify, TellsTheStagesOfAController) {
  const TempFolder folder;
  NotifySocket manager((folder / "notify").string());
  Program program({"serve", "--project", (folder / "project.db").string()},
                  {{{"NOTIFY_SOCKET", (folder / "notify").string()}}, "", {}, false});
  EXPECT_THAT(manager.Next(),
              testing::StartsWith("READY=1\nSTATUS=7 events loaded; next: event 7"));
  program.Signal(SIGHUP);
  EXPECT_THAT(manager.Next(), testing::StartsWith("RELOADING=1\nMONOTONIC_USEC="));
  EXPECT_THAT(manager.Next(), testing::StartsWith("READY=1\nSTATUS=7 events loaded"));
  program.Signal(SIGTERM);
  EXPECT_THAT(manager.Next(), testing::StartsWith("STOPPING=1"));
  EXPECT_EQ(program.Wait(), 0);
}

TEST(ServiceNotify, TellsThatSavingFailsAndThatItWorksAgain) {
  const TempFolder folder;
  const std::string project = (folder / "project.db").string();
  NotifySocket manager((folder / "notify").string());
  Program program({"serve", "--project", project},
                  {{{"NOTIFY_SOCKET", (folder / "notify").string()}}, "", {}, false});
  EXPECT_THAT(manager.Next(), HasSubstr("READY=1"));
  controller::SqliteDatabase other(project, controller::SqliteDatabase::Mode::kExisting, 0);
  other.Execute("BEGIN EXCLUSIVE");
  program.Signal(SIGHUP);
  EXPECT_THAT(manager.Next(), HasSubstr("RELOADING=1"));
  EXPECT_THAT(manager.Next(), HasSubstr("READY=1"));
  EXPECT_THAT(manager.Next(), testing::StartsWith("STATUS=the schedule cannot be saved: "));
  other.Execute("COMMIT");
  EXPECT_THAT(manager.Next(), testing::StartsWith("STATUS=7 events loaded"));
  program.Signal(SIGTERM);
  EXPECT_EQ(program.Wait(), 0);
  EXPECT_THAT(program.Err(), HasSubstr("the place stays"));
  EXPECT_THAT(program.Err(), HasSubstr("error   the schedule could not be saved"));
  EXPECT_THAT(program.Err(), HasSubstr("saving works again"));
}

TEST(ServiceNotify, ReachesAnAbstractSocketAndKeepsToOneLine) {
  const std::string name = "@vexalink-test-" + std::to_string(::getpid());
  NotifySocket manager(name);
  const EnvironmentScope socket("NOTIFY_SOCKET", name);
  controller::ServiceNotify::Status("a\nREADY=1\x1b");
  EXPECT_EQ(manager.Next(), "STATUS=a\\nREADY=1\\x1b");
}

TEST(ServiceNotify, DoesNothingWhereNobodyListens) {
  for (const std::string& path : {std::string("/nonexistent"), std::string("relative"),
                                  std::string(), "/" + std::string(200, 'x')}) {
    const EnvironmentScope socket("NOTIFY_SOCKET", path);
    controller::ServiceNotify::Stopping();
  }
  const EnvironmentScope socket("NOTIFY_SOCKET", std::nullopt);
  controller::ServiceNotify::Ready("all is well");
}

}  // namespace
