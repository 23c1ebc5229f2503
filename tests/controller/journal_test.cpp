#include "controller/Journal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TempFolder.h"

namespace controller {
namespace {

constexpr std::time_t kNow = 1709683200;

class JournalTest : public testing::Test {
 protected:
  JournalRow Row(const std::string& kind, std::time_t at, unsigned long event = 0) {
    JournalRow row;
    row.id = journal.NextId();
    row.kind = kind;
    row.at = at;
    row.event = event;
    return row;
  }
  std::vector<std::int64_t> Ids(const JournalQuery& query) {
    std::vector<std::int64_t> ids;
    for (const JournalRow& row : Journal::Read(store, query)) ids.push_back(row.id);
    return ids;
  }

  const TempFolder folder;
  ProjectStore store{folder / "project.db", ProjectStore::Use::kKeep};
  Journal journal{store};
};

TEST_F(JournalTest, KeepsWholeRows) {
  JournalRow row = Row("fired", kNow, 7);
  row.description = "Porch \xE2\x98\x80";
  row.date = DayFields{2024, 3, 6};
  row.planned = kNow - 60;
  row.drawn = -5;
  row.reason = "timer";
  row.actor = "ada";
  row.outcome = "done";
  row.text = "a\nb";
  row.before = "{}";
  row.after = "[]";
  Journal::Write(store, row);
  const auto rows = Journal::Read(store, {});
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0].id, 1);
  EXPECT_EQ(rows[0].at, kNow);
  EXPECT_EQ(rows[0].kind, "fired");
  EXPECT_EQ(rows[0].event, 7u);
  EXPECT_EQ(rows[0].description, row.description);
  EXPECT_EQ(rows[0].date, row.date);
  EXPECT_EQ(rows[0].planned, row.planned);
  EXPECT_EQ(rows[0].drawn, row.drawn);
  EXPECT_EQ(rows[0].reason, "timer");
  EXPECT_EQ(rows[0].actor, "ada");
  EXPECT_EQ(rows[0].outcome, "done");
  EXPECT_EQ(rows[0].text, "a\nb");
  EXPECT_EQ(rows[0].before, "{}");
  EXPECT_EQ(rows[0].after, "[]");
  EXPECT_EQ(Journal::Newest(store), kNow);
  EXPECT_EQ(Journal(store).NextId(), 2) << "goes on where it was";
}

TEST_F(JournalTest, LeavesOutWhatDoesNotApply) {
  Journal::Write(store, Row("controller", kNow));
  const auto rows = Journal::Read(store, {});
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0].event, 0u);
  EXPECT_FALSE(rows[0].date);
  EXPECT_FALSE(rows[0].planned);
  EXPECT_FALSE(rows[0].drawn);
}

TEST_F(JournalTest, AnswersWhatIsAskedForTheNewestFirst) {
  JournalRow porch = Row("fired", kNow, 7);
  porch.description = "Porch 100%";
  Journal::Write(store, porch);
  Journal::Write(store, Row("held", kNow + 10, 7));
  JournalRow action = Row("action", kNow + 20, 8);
  action.text = "POST porch";
  action.date = DayFields{2024, 3, 6};
  Journal::Write(store, action);
  JournalQuery query;
  EXPECT_EQ(Ids(query), (std::vector<std::int64_t>{3, 2, 1}));
  query.limit = 2;
  EXPECT_EQ(Ids(query), (std::vector<std::int64_t>{3, 2}));
  query.before = 2;
  EXPECT_EQ(Ids(query), (std::vector<std::int64_t>{1}));
  query = {};
  query.kinds = {"held", "action"};
  EXPECT_EQ(Ids(query), (std::vector<std::int64_t>{3, 2}));
  query.event = 7;
  EXPECT_EQ(Ids(query), (std::vector<std::int64_t>{2}));
  query = {};
  query.from = kNow + 10;
  query.to = kNow + 20;
  EXPECT_EQ(Ids(query), (std::vector<std::int64_t>{2})) << "the end is not part of it";
  query = {};
  query.containing = "PORCH";
  EXPECT_EQ(Ids(query), (std::vector<std::int64_t>{3, 1})) << "in the name or in the text";
  query.containing = "0%";
  EXPECT_EQ(Ids(query), (std::vector<std::int64_t>{1})) << "no wildcard";
  query = {};
  query.date = DayFields{2024, 3, 6};
  EXPECT_EQ(Ids(query), (std::vector<std::int64_t>{3}));
}

TEST_F(JournalTest, ForgetsWhatIsOlderThanFourHundredDays) {
  Journal::Write(store, Row("fired", kNow - 400 * 86400 - 1));
  Journal::Write(store, Row("fired", kNow - 400 * 86400));
  Journal::Prune(store, kNow);
  EXPECT_EQ(Ids({}), (std::vector<std::int64_t>{2}));
}

TEST_F(JournalTest, KeepsAHundredThousandRows) {
  store.Database().Execute("BEGIN");
  for (std::int64_t count = 0; count < Journal::kKeptRows + 5; ++count) {
    Journal::Write(store, Row("fired", kNow));
  }
  store.Database().Execute("COMMIT");
  Journal::Prune(store, kNow);
  EXPECT_EQ(store.Database().Number("SELECT count(*) FROM journal"), Journal::kKeptRows);
  EXPECT_EQ(store.Database().Number("SELECT min(id) FROM journal"), 6);
  Journal::Write(store, Row("fired", kNow));
  Journal::Bound(store);
  EXPECT_EQ(store.Database().Number("SELECT count(*) FROM journal"), Journal::kKeptRows);
}

}  // namespace
}  // namespace controller
