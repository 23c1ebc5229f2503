#include <gtest/gtest.h>

#include "Program.h"
#include "controller/Sqlite.h"
#include "controller/http/TokenStore.h"

namespace {

struct Ended {
  int status;
  std::string out;
  std::string err;
};

Ended Vexalink(std::vector<std::string> arguments) {
  Program program(std::move(arguments));
  const int status = program.Wait();
  return {status, program.Out(), program.Err()};
}

}  // namespace

TEST(TokenCommand, MakesTokensThatAreShownOnce) {
  const TempFolder folder;
  const std::string project = (folder / "new/project.db").string();
  const Ended added = Vexalink({"token", "add", "ada", "--role", "edit", "--project", project});
  EXPECT_EQ(added.status, 0) << added.err;
  ASSERT_EQ(added.out.size(), 44U) << added.out;
  EXPECT_EQ(added.err, "The token of ada, role edit; it is shown this once:\n");
  const std::string token = added.out.substr(0, 43);
  EXPECT_EQ(Vexalink({"token", "add", "bob", "--project", project}).status, 0);

  const Ended listed = Vexalink({"token", "list", "--project", project});
  EXPECT_EQ(listed.status, 0);
  EXPECT_EQ(listed.out.find("ada\tedit\t20"), 0U) << listed.out;
  EXPECT_NE(listed.out.find("\nbob\tview\t20"), std::string::npos) << listed.out;
  EXPECT_EQ(listed.out.find(token), std::string::npos);

  controller::SqliteDatabase database(project, controller::SqliteDatabase::Mode::kExisting, 1000);
  controller::TokenStore store(database);
  ASSERT_TRUE(store.OwnerOf(token));
  EXPECT_EQ(store.OwnerOf(token)->role, controller::Role::kEdit);
  EXPECT_EQ(Vexalink({"token", "remove", "ada", "--project", project}).status, 0);
  EXPECT_FALSE(store.OwnerOf(token));
}

TEST(TokenCommand, WorksBesideAControllerThatRuns) {
  const TempFolder folder;
  const std::string project = (folder / "project.db").string();
  Program serve({"serve", "--project", project, "--agent", VEXALINK_AGENT, "--latitude", "52.5",
                 "--longitude", "13.4"});
  ASSERT_TRUE(serve.WaitFor("events loaded")) << serve.Err();
  const Ended added = Vexalink({"token", "add", "ada", "--project", project});
  EXPECT_EQ(added.status, 0) << added.err;
  EXPECT_EQ(Vexalink({"token", "list", "--project", project}).out.find("ada\tview\t"), 0U);
  EXPECT_EQ(serve.Stop(), 0);
  EXPECT_EQ(Vexalink({"token", "list", "--project", project}).out.find("ada\tview\t"), 0U);
}

TEST(TokenCommand, SaysWhatIsWrong) {
  const TempFolder folder;
  const std::string project = (folder / "project.db").string();
  ASSERT_EQ(Vexalink({"token", "add", "ada", "--project", project}).status, 0);
  const struct {
    std::vector<std::string> arguments;
    int status;
    const char* error;
  } rows[] = {
      {{"token", "add", "ada", "--project", project},
       2,
       "vexalink: there is a token \"ada\" already; give another name, or remove that one first\n"},
      {{"token", "add", "bob", "--role", "root", "--project", project},
       2,
       "vexalink: --role is \"root\"; give view, operate or edit\n"},
      {{"token", "add", "local", "--project", project},
       2,
       "vexalink: \"local\" is what the journal calls those at this computer; give another name\n"},
      {{"token", "add", "a b", "--project", project},
       2,
       "vexalink: the name is \"a b\"; give 1 to 64 letters, digits, \".\", \"_\" or \"-\", "
       "kitchen "
       "for example\n"},
      {{"token", "remove", "bob", "--project", project},
       2,
       "vexalink: there is no token \"bob\"; \"vexalink token list\" shows those that are there\n"},
  };
  for (const auto& row : rows) {
    const Ended ended = Vexalink(row.arguments);
    EXPECT_EQ(ended.status, row.status);
    EXPECT_EQ(ended.err, row.error);
    EXPECT_EQ(ended.out, "");
  }
  EXPECT_EQ(Vexalink({"token"}).status, 2);
  WriteFile(folder / "other.db", "no project at all");
  const Ended other = Vexalink({"token", "list", "--project", (folder / "other.db").string()});
  EXPECT_EQ(other.status, 1);
  EXPECT_NE(other.err.find("is no project"), std::string::npos) << other.err;
  EXPECT_EQ(ReadFile(folder / "other.db"), "no project at all");
}
