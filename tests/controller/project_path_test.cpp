#include <gtest/gtest.h>
#include <sys/stat.h>

#include "TempFolder.h"
#include "controller/Failure.h"
#include "controller/ProjectPath.h"

namespace controller {
namespace {

namespace fs = std::filesystem;

TEST(DefaultProjectPath, IsInTheFirstFolderThatIsKnown) {
  const EnvironmentScope home("HOME", "/home/someone");
  const EnvironmentScope xdg("XDG_STATE_HOME", std::nullopt);
  const EnvironmentScope state("STATE_DIRECTORY", std::nullopt);
  EXPECT_EQ(DefaultProjectPath(), "/home/someone/.local/state/vexalink/project.db");
  {
    const EnvironmentScope relative("XDG_STATE_HOME", "relative");
    EXPECT_EQ(DefaultProjectPath(), "/home/someone/.local/state/vexalink/project.db");
  }
  const EnvironmentScope given("XDG_STATE_HOME", "/state");
  EXPECT_EQ(DefaultProjectPath(), "/state/vexalink/project.db");
  const EnvironmentScope service("STATE_DIRECTORY", "/var/lib/vexalink:/var/lib/other");
  EXPECT_EQ(DefaultProjectPath(), "/var/lib/vexalink/project.db");
}

TEST(ResolveProjectPath, GivesOneNameToOneProject) {
  const TempFolder folder;
  fs::create_directory(folder / "real");
  fs::create_symlink(folder / "real", folder / "link");
  EXPECT_EQ(ResolveProjectPath((folder / "link/project.db").string()), folder / "real/project.db");
  EXPECT_EQ(ResolveProjectPath((folder / "link/../real/./project.db").string()),
            folder / "real/project.db");
  EXPECT_TRUE(ResolveProjectPath("project.db").is_absolute());
  EXPECT_THROW(ResolveProjectPath(""), Failure);
}

TEST(MakeFolderFor, MakesFoldersThatNobodyElseCanReadInto) {
  const TempFolder folder;
  MakeFolderFor(folder / "a/b/project.db");
  for (const char* name : {"a", "a/b"}) {
    struct stat made {};
    ASSERT_EQ(::stat((folder / name).c_str(), &made), 0) << name;
    EXPECT_EQ(made.st_mode & 0777, 0700u) << name;
  }
  MakeFolderFor(folder / "a/b/project.db");  // they are there already: nothing to do
}

TEST(MakeFolderFor, SaysWhichFolderCannotBeMade) {
  try {
    MakeFolderFor("/proc/vexalink/project.db");
    FAIL() << "nothing can be made there";
  } catch (const Failure& failure) {
    EXPECT_NE(std::string(failure.what()).find("\"/proc/vexalink\""), std::string::npos)
        << failure.what();
  }
}

}  // namespace
}  // namespace controller
