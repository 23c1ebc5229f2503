// Writing a project's schedule out.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Program.h"
#include "TempFolder.h"
#include "controller/ProjectStore.h"

namespace {

namespace fs = std::filesystem;
using controller::ProjectStore;
using testing::HasSubstr;

class ExportTest : public testing::Test {
 protected:
  /// The exit status; output and error are kept.
  int Export(std::vector<std::string> arguments = {}) {
    arguments.insert(arguments.begin(), {"export", "--project", project.string()});
    Program program(std::move(arguments));
    const int status = program.Wait();
    out = program.Out();
    err = program.Err();
    return status;
  }
  void Save(const std::string& state) {
    ProjectStore(project, ProjectStore::Use::kKeep).SaveState("scheduler", state);
  }

  const TempFolder folder;
  const fs::path project = folder / "project.db";
  std::string out;
  std::string err;
};

TEST_F(ExportTest, WritesToAFileInOneStep) {
  Save("<event_data/>");
  const fs::path file = folder / "out.xml";
  WriteFile(file, "old");
  fs::create_symlink(file, folder / "link.xml");
  EXPECT_EQ(Export({(folder / "link.xml").string()}), 0) << err;
  EXPECT_EQ(ReadFile(file), "<event_data/>\n");
  EXPECT_TRUE(fs::is_symlink(folder / "link.xml"));
  for (const auto& entry : fs::directory_iterator(folder.Path())) {
    EXPECT_THAT(entry.path().filename().string(),
                testing::AnyOf("out.xml", "link.xml", "project.db"));
  }
}

TEST_F(ExportTest, SaysWhatCannotBeWritten) {
  Save("<event_data/>");
  EXPECT_EQ(Export({"/nonexistent/out.xml"}), 1);
  EXPECT_THAT(err, HasSubstr("\"/nonexistent/out.xml\" cannot be written: No such file"));
  EXPECT_EQ(Export({"/dev/full"}), 1);
  EXPECT_THAT(err, HasSubstr("No space left"));
  EXPECT_EQ(Export({"/dev/null"}), 0) << err;
  EXPECT_EQ(Export({"-"}), 0) << err;
  EXPECT_EQ(out, "<event_data/>\n");
}

TEST_F(ExportTest, DoesNotWriteOverTheProject) {
  Save("<event_data/>");
  fs::create_hard_link(project, folder / "same.db");
  const std::string before = ReadFile(project);
  for (const fs::path& file : {project, folder / "same.db", folder / "project.db.lock"}) {
    EXPECT_EQ(Export({file.string()}), 2) << file;
  }
  EXPECT_EQ(ReadFile(project), before);
}

TEST_F(ExportTest, NeedsAScheduleToWrite) {
  EXPECT_EQ(Export(), 1);
  EXPECT_THAT(err, HasSubstr("no such file"));
  EXPECT_FALSE(fs::exists(project));
  { const ProjectStore made(project, ProjectStore::Use::kKeep); }
  EXPECT_EQ(Export(), 1);
  EXPECT_THAT(err, HasSubstr("keeps no schedule yet"));
}

}  // namespace
