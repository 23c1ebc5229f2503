#include <chrono>
#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "TempFolder.h"
#include "controller/Failure.h"
#include "controller/ProjectSchema.h"
#include "controller/ProjectStore.h"
#include "host/VxXml.h"

namespace controller {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using Use = ProjectStore::Use;

/// Why a file is refused; empty where it is not.
std::string Refusal(const fs::path& file, Use use = Use::kKeep) {
  try {
    ProjectStore store(file, use);
    return "";
  } catch (const Failure& failure) {
    return failure.what();
  }
}

void Sql(const fs::path& file, const char* statements) {
  sqlite3* handle = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &handle), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(handle, statements, nullptr, nullptr, nullptr), SQLITE_OK)
      << sqlite3_errmsg(handle);
  sqlite3_close(handle);
}

TEST(ProjectStore, KeepsWhatWasSaved) {
  const TempFolder folder;
  std::string id;
  {
    ProjectStore store(folder / "project.db", Use::kKeep);
    EXPECT_TRUE(store.IsNew());
    EXPECT_FALSE(store.State("scheduler"));
    id = store.ProjectId();
    store.SaveState("scheduler", "<event_data/>");
    store.SaveState("scheduler", "<event_data>2</event_data>");
    store.SaveState("other", "");
    store.SaveSettings({{"latitude", "1"}, {"longitude", "2"}});
    store.SaveSettings({{"latitude", "3"}});
  }
  ProjectStore store(folder / "project.db", Use::kKeep);
  EXPECT_FALSE(store.IsNew());
  EXPECT_EQ(store.ProjectId(), id);
  EXPECT_EQ(store.State("scheduler")->xml, "<event_data>2</event_data>");
  EXPECT_EQ(store.State("other")->xml, "");
  EXPECT_EQ(store.Setting("latitude"), "3");
  EXPECT_EQ(store.Setting("longitude"), "2");
  EXPECT_FALSE(store.Setting("altitude"));
}

TEST(ProjectStore, IsReadableForItsOwnerOnly) {
  const TempFolder folder;
  const ProjectStore store(folder / "project.db", Use::kKeep);
  struct stat file {};
  ASSERT_EQ(::stat((folder / "project.db").c_str(), &file), 0);
  EXPECT_EQ(file.st_mode & 0777, 0600u);
}

TEST(ProjectStore, HasAnIdOfItsOwn) {
  const TempFolder folder;
  ProjectStore one(folder / "one.db", Use::kKeep);
  ProjectStore two(folder / "two.db", Use::kKeep);
  EXPECT_EQ(one.ProjectId().size(), 32u);
  EXPECT_NE(one.ProjectId(), two.ProjectId());
}

TEST(ProjectStore, KeepsTheLastTenThatWereReplaced) {
  const TempFolder folder;
  ProjectStore store(folder / "project.db", Use::kKeep);
  store.ReplaceState("scheduler", "<a>0</a>", "there was none before");
  EXPECT_TRUE(store.Backups("scheduler").empty());
  for (int i = 1; i <= 12; ++i) {
    store.ReplaceState("scheduler", "<a>" + std::to_string(i) + "</a>", "import");
  }
  store.SaveState("scheduler", "<a>saved</a>");
  const auto backups = store.Backups("scheduler");
  ASSERT_EQ(backups.size(), 10u);
  EXPECT_EQ(backups.front().xml, "<a>11</a>");
  EXPECT_EQ(backups.front().reason, "import");
  EXPECT_EQ(backups.back().xml, "<a>2</a>");
  EXPECT_TRUE(store.Backups("other").empty());
}

TEST(ProjectStore, HoldsTextOfAnyKind) {
  const TempFolder folder;
  ProjectStore store(folder / "project.db", Use::kKeep);
  const std::string text =
      "'); DROP TABLE driver_state; -- \"\xC3\xA9\n\t" + std::string(5000000, 'x');
  store.SaveState(text.substr(0, 40), text);
  EXPECT_EQ(store.State(text.substr(0, 40))->xml, text);
}

TEST(ProjectStore, RefusesWhatIsNoProjectAndLeavesItAsItIs) {
  const TempFolder folder;
  const struct {
    const char* why;
    std::string content;
    const char* message;
  } rows[] = {
      {"a text", "my notes\n", "is no project"},
      {"one byte", "S", "is no project"},
      {"SQLite's first bytes and rubbish",
       std::string("SQLite format 3\0", 16) + std::string(5000, 'x'), "damaged"},
  };
  for (const auto& row : rows) {
    const fs::path file = folder / "project.db";
    WriteFile(file, row.content);
    for (const Use use : {Use::kKeep, Use::kLook}) {
      EXPECT_THAT(Refusal(file, use), HasSubstr(row.message)) << row.why;
      EXPECT_THAT(Refusal(file, use), HasSubstr(file.string())) << row.why;
    }
    EXPECT_EQ(ReadFile(file), row.content) << row.why;
  }
}

TEST(ProjectStore, RefusesWhatIsNoFile) {
  const TempFolder folder;
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_THAT(Refusal(folder / "pipe"), HasSubstr("no file"));
  EXPECT_THAT(Refusal(folder.Path()), HasSubstr("no file"));
  EXPECT_THAT(Refusal(folder / "missing.db", Use::kLook), HasSubstr("no such file"));
  EXPECT_FALSE(fs::exists(folder / "missing.db"));
}

TEST(ProjectStore, RefusesANewerFormatAndAnotherProgramsDatabase) {
  const TempFolder folder;
  const struct {
    const char* statements;
    const char* message;
  } rows[] = {
      {"PRAGMA user_version = 3", "newer vexalink (format 3, this one reads 2)"},
      {"PRAGMA user_version = 0", "no valid format number"},
      {"PRAGMA user_version = -1", "no valid format number"},
      {"PRAGMA application_id = 7", "another program's database"},
      {"DROP TABLE driver_state", "no such table"},
      {"ALTER TABLE driver_state RENAME COLUMN xml TO text", "no such column"},
      {"DELETE FROM setting", "no project_id"},
  };
  for (const auto& row : rows) {
    const fs::path file = folder / "project.db";
    fs::remove(file);
    { const ProjectStore made(file, Use::kKeep); }
    Sql(file, row.statements);
    const std::string before = ReadFile(file);
    EXPECT_THAT(Refusal(file), HasSubstr(row.message)) << row.statements;
    EXPECT_EQ(ReadFile(file), before) << row.statements;
  }
}

TEST(ProjectStore, TakesOverAProjectOfTheFirstFormat) {
  const TempFolder folder;
  const fs::path file = folder / "project.db";
  Sql(file, kProjectSchema1);
  Sql(file,
      "INSERT INTO setting (name, value) VALUES ('project_id', 'abc');"
      "INSERT INTO driver_state (driver, xml, saved) VALUES ('scheduler', '<event_data/>', 1);");
  const std::string before = ReadFile(file);
  {
    ProjectStore look(file, Use::kLook);
    EXPECT_EQ(look.State("scheduler")->xml, "<event_data/>");
  }
  EXPECT_EQ(ReadFile(file), before) << "who only looks changes nothing";
  {
    ProjectStore store(file, Use::kKeep);
    EXPECT_FALSE(store.IsNew());
    EXPECT_EQ(store.ProjectId(), "abc");
    EXPECT_EQ(store.State("scheduler")->xml, "<event_data/>");
    EXPECT_EQ(store.Database().Number("SELECT count(*) FROM journal"), 0);
  }
  ProjectStore again(file, Use::kKeep);
  EXPECT_EQ(again.Database().Number("PRAGMA user_version"), kProjectSchemaVersion);
}

TEST(ProjectStore, RefusesADamagedProjectAndLeavesItAsItIs) {
  const TempFolder folder;
  const fs::path file = folder / "project.db";
  {
    ProjectStore store(file, Use::kKeep);
    store.SaveState("scheduler", std::string(100000, 'x'));
  }
  const std::string whole = ReadFile(file);
  ASSERT_GT(whole.size(), 50000u);
  std::string scribbled = whole;
  scribbled.replace(4096, 200, std::string(200, '\xA5'));
  for (const std::string& damaged :
       {whole.substr(0, whole.size() / 2), whole.substr(0, 600), scribbled}) {
    WriteFile(file, damaged);
    EXPECT_NE(Refusal(file), "");
    EXPECT_NE(Refusal(file, Use::kLook), "");
    EXPECT_EQ(ReadFile(file), damaged);
  }
}

TEST(ProjectStore, TakesAnEmptyFileForANewProject) {
  const TempFolder folder;
  WriteFile(folder / "project.db", "");
  EXPECT_THAT(Refusal(folder / "project.db", Use::kLook), HasSubstr("is empty"));
  EXPECT_TRUE(ProjectStore(folder / "project.db", Use::kKeep).IsNew());
  EXPECT_FALSE(ProjectStore(folder / "project.db", Use::kKeep).IsNew());
}

TEST(ProjectStore, SaysThatItsFileHasGone) {
  const TempFolder folder;
  ProjectStore store(folder / "project.db", Use::kKeep);
  fs::rename(folder / "project.db", folder / "elsewhere.db");
  try {
    store.SaveState("scheduler", "<a/>");
    FAIL() << "the change would be in a file that nobody finds again";
  } catch (const Failure& failure) {
    EXPECT_THAT(failure.what(), HasSubstr("moved or deleted"));
  }
  fs::rename(folder / "elsewhere.db", folder / "project.db");
  store.SaveState("scheduler", "<a/>");
  EXPECT_EQ(store.State("scheduler")->xml, "<a/>");
}

/// Saves states that count up for ever, and writes one byte to `told` after each.
[[noreturn]] void SaveForEver(const fs::path& file, int told) {
  ProjectStore store(file, Use::kKeep);
  const std::string filling(50000, 'x');
  for (int i = 1;; ++i) {
    const std::string text =
        "<a n='" + std::to_string(i) + "'>" + std::to_string(i) + filling + "</a>";
    i % 2 == 0 ? store.SaveState("scheduler", text)
               : store.ReplaceState("scheduler", text, "import");
    if (::write(told, "x", 1) != 1) ::_exit(1);
  }
}

TEST(ProjectStore, SurvivesBeingKilledAtAnyMoment) {
  const TempFolder folder;
  const fs::path file = folder / "project.db";
  for (int round = 0; round < 12; ++round) {
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) SaveForEver(file, pipe[1]);
    ::close(pipe[1]);
    int told = 0;
    char byte = 0;
    while (told < round && ::read(pipe[0], &byte, 1) == 1) ++told;
    std::this_thread::sleep_for(std::chrono::microseconds(977 * round));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    while (::read(pipe[0], &byte, 1) == 1) ++told;
    ::close(pipe[0]);

    ASSERT_EQ(Refusal(file), "") << "round " << round;
    const auto state = ProjectStore(file, Use::kLook).State("scheduler");
    if (told == 0 && !state) continue;
    ASSERT_TRUE(state) << "round " << round;
    const auto document = VxXML::CreateXmlDocument(state->xml);
    ASSERT_TRUE(document) << "round " << round;
    EXPECT_GE(document->GetRoot()->GetInt(), told == 0 ? 0 : told)
        << "what was reported as saved is there; round " << round;
  }
}

}  // namespace
}  // namespace controller
