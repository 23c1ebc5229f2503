// What the program says to a command line, a project or a folder that it cannot use.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "Program.h"
#include "TempFolder.h"
#include "controller/ProjectStore.h"

namespace {

namespace fs = std::filesystem;
using controller::ProjectStore;
using testing::HasSubstr;

TEST(CommandLine, EndsWithTwoWhereItIsWrong) {
  const struct {
    std::vector<std::string> arguments;
    const char* message;
  } rows[] = {
      {{}, "a command is missing"},
      {{"dance"}, "dance"},
      {{"serve", "--latitude", "1"}, "--longitude"},
      {{"serve", "--longitude", "1"}, "--latitude"},
      {{"serve", "--latitude", "nan", "--longitude", "1"}, "give -90 to 90"},
      {{"serve", "--latitude", "inf", "--longitude", "1"}, "give -90 to 90"},
      {{"serve", "--latitude", "90.1", "--longitude", "1"}, "give -90 to 90"},
      {{"serve", "--latitude", "1", "--longitude", "-180.1"}, "-180 to 180"},
      {{"serve", "--latitude", "north", "--longitude", "1"}, "--latitude is \"north\""},
      {{"serve", "--latitude", "", "--longitude", "1"}, "--latitude"},
      {{"serve", "--log-level", "loud"}, "give error, warning, info or debug"},
      {{"serve", "--project", ""}, "--project is empty"},
      {{"import"}, "FILE is required"},
      {{"import", "a", "b"}, "b"},
      {{"export", "--backup", "newest"}, "newest"},
      {{"play"}, "FILE is required"},
  };
  for (const auto& row : rows) {
    Program program(row.arguments);
    EXPECT_EQ(program.Wait(), 2) << row.message;
    EXPECT_THAT(program.Err(), HasSubstr(row.message));
  }
}

TEST(CommandLine, ExplainsItself) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"--help"},
                                                    {"serve", "--help"},
                                                    {"import", "--help"},
                                                    {"export", "--help"},
                                                    {"play", "--help"}}) {
    Program program(arguments);
    EXPECT_EQ(program.Wait(), 0);
    EXPECT_THAT(program.Out(), HasSubstr("Exit status: 0 done"));
  }
  Program version({"--version"});
  EXPECT_EQ(version.Wait(), 0);
  EXPECT_THAT(version.Out(), testing::StartsWith("vexalink 1."));
}

TEST(Refusal, LeavesWhatItRefusesAsItIs) {
  const TempFolder folder;
  const fs::path file = folder / "project.db";
  for (const char* content : {"my notes\n", "SQLite format 3"}) {
    WriteFile(file, content);
    for (const char* command : {"serve", "export"}) {
      Program program({command, "--project", file.string()});
      EXPECT_EQ(program.Wait(), 1);
      EXPECT_THAT(program.Err(), HasSubstr(file.string()));
    }
    Program import({"import", "-", "--project", file.string()}, {{}, "<events/>", {}, false});
    EXPECT_EQ(import.Wait(), 1);
    EXPECT_EQ(ReadFile(file), content);
  }
}

TEST(Refusal, OfAScheduleThatCannotBeReadSaysWhatToDo) {
  const TempFolder folder;
  const fs::path file = folder / "project.db";
  for (const std::string& unreadable :
       {std::string("<event_data>\n<events>"), std::string("<timetable/>"), std::string()}) {
    ProjectStore(file, ProjectStore::Use::kKeep).SaveState("scheduler", unreadable);
    const std::string before = ReadFile(file);
    Program serve({"serve", "--project", file.string()});
    EXPECT_EQ(serve.Wait(), 1);
    EXPECT_THAT(serve.Err(), HasSubstr(file.string()));
    EXPECT_THAT(serve.Err(), HasSubstr("vexalink export"));
    EXPECT_EQ(ReadFile(file), before);
    Program copy({"export", "--project", file.string()});
    EXPECT_EQ(copy.Wait(), 0) << "the way out that the message names works";
    EXPECT_EQ(copy.Out(), unreadable + "\n");
  }
  Program repair({"import", "-", "--project", file.string()}, {{}, "<events/>", {}, false});
  EXPECT_EQ(repair.Wait(), 0) << repair.Err();
  Program serve({"serve", "--project", file.string()});
  EXPECT_TRUE(serve.WaitFor("0 events loaded")) << serve.Err();
  EXPECT_EQ(serve.Stop(), 0);
}

TEST(Refusal, OfAPlaceThatIsNoneSaysWhatToDo) {
  const TempFolder folder;
  const fs::path file = folder / "project.db";
  ProjectStore(file, ProjectStore::Use::kKeep).SaveSettings({{"latitude", "abc"}});
  Program refused({"serve", "--project", file.string()});
  EXPECT_EQ(refused.Wait(), 1);
  EXPECT_THAT(refused.Err(), HasSubstr("give --latitude and --longitude"));
  Program repaired({"serve", "--project", file.string(), "--latitude", "1", "--longitude", "2"});
  EXPECT_TRUE(repaired.WaitFor("place 1, 2")) << repaired.Err();
  EXPECT_EQ(repaired.Stop(), 0);
}

TEST(Refusal, OfAFolderThatMayNotBeWritten) {
  const TempFolder folder;
  const fs::path file = folder / "house/project.db";
  fs::create_directory(folder / "house");
  { const ProjectStore made(file, ProjectStore::Use::kKeep); }
  const std::string before = ReadFile(file);
  fs::permissions(folder / "house", fs::perms::owner_read | fs::perms::owner_exec);
  constexpr int kMayDoEverything = 99;
  const auto prepare = [] {
    if (!GiveUpOverride()) _exit(kMayDoEverything);
  };
  for (const std::string& project : {file.string(), (folder / "house/new/project.db").string()}) {
    Program serve({"serve", "--project", project}, {{}, "", prepare, false});
    const int status = serve.Wait();
    if (status == kMayDoEverything) GTEST_SKIP() << "this user may write everywhere";
    EXPECT_EQ(status, 1) << serve.Err();
    EXPECT_THAT(serve.Err(), HasSubstr("Permission denied"));
    EXPECT_THAT(serve.Err(), HasSubstr("--project"));
  }
  EXPECT_EQ(ReadFile(file), before);
}

TEST(Refusal, OfAnAgentThatIsNone) {
  const TempFolder folder;
  WriteFile(folder / "agent.so", "no library");
  for (const std::string& agent :
       {(folder / "agent.so").string(), std::string("/nonexistent.so")}) {
    Program serve({"serve", "--project", (folder / "project.db").string(), "--agent", agent});
    EXPECT_EQ(serve.Wait(), 1);
    EXPECT_THAT(serve.Err(), HasSubstr(agent));
    EXPECT_FALSE(fs::exists(folder / "project.db"));
  }
}

}  // namespace
