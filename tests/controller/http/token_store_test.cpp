#include <fstream>
#include <gtest/gtest.h>
#include <set>

#include "../TempFolder.h"
#include "controller/Failure.h"
#include "controller/http/TokenSchema.h"
#include "controller/http/TokenStore.h"

using controller::Role;
using controller::SqliteDatabase;
using controller::TokenStore;

namespace {

struct Project {
  Project() : database(file, SqliteDatabase::Mode::kCreate, 1000) {
    database.Execute(controller::kTokenSchema);
  }

  TempFolder folder;
  std::string file = (folder / "project.db").string();
  SqliteDatabase database;
  TokenStore store{database};
};

}  // namespace

TEST(TokenStore, KnowsTheTokensThatItHasMade) {
  Project project;
  const std::string ada = project.store.Add("ada", Role::kEdit);
  const std::string tablet = project.store.Add("tablet-2", Role::kView);
  EXPECT_EQ(ada.size(), 43U);
  EXPECT_EQ(
      ada.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_"),
      std::string::npos);
  EXPECT_EQ(project.store.OwnerOf(ada)->name, "ada");
  EXPECT_EQ(project.store.OwnerOf(ada)->role, Role::kEdit);
  EXPECT_EQ(project.store.OwnerOf(tablet)->role, Role::kView);
  for (const std::string& wrong : {std::string(), ada.substr(1), ada + "A", std::string("ada"),
                                   controller::RoleName(Role::kEdit) + ada}) {
    EXPECT_FALSE(project.store.OwnerOf(wrong)) << wrong;
  }
  const auto all = project.store.All();
  ASSERT_EQ(all.size(), 2U);
  EXPECT_EQ(all[0].name, "ada");
  EXPECT_EQ(all[1].role, Role::kView);
}

TEST(TokenStore, MakesEachTokenByChance) {
  Project project;
  std::set<std::string> tokens;
  for (int n = 0; n < 200; ++n)
    tokens.insert(project.store.Add("t" + std::to_string(n), Role::kView));
  EXPECT_EQ(tokens.size(), 200U);
  std::set<char> first;
  for (const std::string& token : tokens) first.insert(token[0]);
  EXPECT_GT(first.size(), 30U) << "of 64, with 200 tries";
}

TEST(TokenStore, KeepsNoToken) {
  Project project;
  const std::string token = project.store.Add("ada", Role::kEdit);
  const std::string file = ReadFile(project.file);
  EXPECT_NE(file.find("ada"), std::string::npos);
  EXPECT_EQ(file.find(token), std::string::npos);
}

TEST(TokenStore, SeesAtOnceWhatAnotherProcessHasChanged) {
  Project project;
  const std::string first = project.store.Add("ada", Role::kEdit);
  SqliteDatabase elsewhere(project.file, SqliteDatabase::Mode::kExisting, 1000);
  TokenStore other(elsewhere);
  EXPECT_TRUE(other.OwnerOf(first));
  const std::string second = other.Add("bob", Role::kOperate);
  EXPECT_EQ(project.store.OwnerOf(second)->name, "bob");
  EXPECT_TRUE(project.store.Remove("ada"));
  EXPECT_FALSE(other.OwnerOf(first));
  EXPECT_FALSE(project.store.Remove("ada"));
}

TEST(TokenStore, RefusesNamesThatCannotBe) {
  Project project;
  project.store.Add("ada", Role::kEdit);
  const std::string longest(64, 'x');
  EXPECT_NO_THROW(project.store.Add(longest, Role::kView));
  EXPECT_NO_THROW(project.store.Add("A.b_c-9", Role::kView));
  for (const std::string& name :
       {std::string("ada"), std::string(), longest + "x", std::string("a b"), std::string("a:b"),
        std::string("local"), std::string("j\xc3\xb6rg"), std::string("a\n"),
        std::string("a\0b", 3)}) {
    EXPECT_THROW(project.store.Add(name, Role::kView), controller::Failure) << name;
  }
  EXPECT_EQ(project.store.All().size(), 3U);
}

TEST(TokenStore, TakesARoleThatIsNoneForNoPermission) {
  Project project;
  const std::string token = project.store.Add("ada", Role::kEdit);
  project.database.Execute("UPDATE token SET role = 'root'");
  EXPECT_FALSE(project.store.OwnerOf(token));
  EXPECT_THROW(project.store.All(), controller::Failure);
}

TEST(TokenStore, IsAskedForBeforeOthersCanComeIn) {
  Project project;
  const std::vector<controller::ListenAddress> local = {{"127.0.0.1", 7440}, {"::1", 7440}};
  const std::vector<controller::ListenAddress> open = {{"127.0.0.1", 7440}, {"0.0.0.0", 7441}};
  EXPECT_NO_THROW(CheckTokensForListening(local, project.store, "p.db"));
  try {
    CheckTokensForListening(open, project.store, "p.db");
    FAIL();
  } catch (const controller::Failure& failure) {
    EXPECT_STREQ(failure.what(),
                 "--listen 0.0.0.0:7441 can be reached from elsewhere, and nobody has a token yet; "
                 "make one with \"vexalink token add NAME --role edit --project p.db\"");
  }
  project.store.Add("ada", Role::kView);
  EXPECT_NO_THROW(CheckTokensForListening(open, project.store, "p.db"));
}
