#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "Program.h"
#include "TempFolder.h"
#include "controller/ProjectStore.h"
#include "host/VxXml.h"

namespace {

namespace fs = std::filesystem;
using controller::ProjectStore;
using testing::HasSubstr;
using testing::Not;

/// An event of every day at seven; `more` goes into its place where the row puts it.
std::string Event(const std::string& id, const std::string& description,
                  const std::string& start = "", const std::string& repeat = "") {
  const std::string plainStart =
      "<offset>0</offset><offset_minutes>420</offset_minutes><start_date><start_day>6</start_day>"
      "<start_month>3</start_month><start_year>2024</start_year><start_period>0</start_period>"
      "<start_weekday>0</start_weekday></start_date><randomize>0</randomize>";
  const std::string plainRepeat = "<frequency>1</frequency><rate>1</rate><daymask>0</daymask>";
  return "<event><eventid>" + id + "</eventid><description>" + description +
         "</description><start>" + (start.empty() ? plainStart : start) + "</start><repeat>" +
         (repeat.empty() ? plainRepeat : repeat) + "</repeat></event>";
}

std::string Start(const std::string& offset, const std::string& minutes, int year, int month,
                  int day, int period = 0, int weekday = 0) {
  return "<offset>" + offset + "</offset><offset_minutes>" + minutes +
         "</offset_minutes><start_date><start_day>" + std::to_string(day) +
         "</start_day><start_month>" + std::to_string(month) + "</start_month><start_year>" +
         std::to_string(year) + "</start_year><start_period>" + std::to_string(period) +
         "</start_period><start_weekday>" + std::to_string(weekday) +
         "</start_weekday></start_date>";
}

std::string Data(const std::string& events, const std::string& currentId = "99") {
  return "<event_data><current_id>" + currentId + "</current_id><events>" + events +
         "</events></event_data>";
}

class ImportTest : public testing::Test {
 protected:
  struct Result {
    int status = 0;
    std::string out;
    std::string err;
  };
  Result Run(std::vector<std::string> arguments, const std::string& input = "") {
    arguments.insert(arguments.end(), {"--project", project});
    Program program(std::move(arguments), {{}, input, {}, false});
    const int status = program.Wait();
    return {status, program.Out(), program.Err()};
  }
  Result Import(const std::string& xml, std::vector<std::string> options = {}) {
    options.insert(options.begin(), {"import", "-"});
    return Run(std::move(options), xml);
  }
  std::string Export() { return Run({"export"}).out; }

  const TempFolder folder;
  const std::string project = (folder / "house/project.db").string();
};

TEST_F(ImportTest, WhatWasExportedComesBackTheSame) {
  const auto first = Import(Data(Event("7", "Porch") + Event("9", "B &amp; C &lt;3")));
  EXPECT_EQ(first.status, 0) << first.err;
  EXPECT_THAT(first.out, HasSubstr("2 events read, 2 to keep, 0 to be dropped"));
  EXPECT_THAT(first.out, Not(HasSubstr("note")));
  EXPECT_THAT(first.out, Not(HasSubstr("changed")));
  const std::string exported = Export();
  EXPECT_THAT(exported, HasSubstr("<current_id>99</current_id>"));
  EXPECT_THAT(exported, HasSubstr("<description>B &amp; C &lt;3</description>"));
  const auto second = Import(exported);
  EXPECT_EQ(second.status, 0) << second.err;
  EXPECT_THAT(second.out, Not(HasSubstr("changed")));
  EXPECT_EQ(Export(), exported);
}

TEST_F(ImportTest, TakesTheOlderForm) {
  const auto result = Import("<events>" + Event("7", "Porch") + "</events>");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(Export(), HasSubstr("<event_data><current_id>7</current_id>"));
}

TEST_F(ImportTest, RefusesWhatIsNoScheduleAndSaysWhere) {
  const struct {
    const char* why;
    std::string xml;
    const char* message;
  } rows[] = {
      {"nothing", "", "standard input cannot be read: line 1"},
      {"not closed", "<event_data>\n<events>", "line 2, column"},
      {"another element", "<schedule/>", "the outermost element is \"schedule\""},
      {"one event alone", Event("1", "x"), "the outermost element is \"event\""},
      {"a document type", "<!DOCTYPE a [<!ENTITY b 'c'>]><events/>", "line 1"},
      {"no UTF-8", "<events>\xFF</events>", "line 1"},
  };
  for (const auto& row : rows) {
    const auto result = Import(row.xml, {"--force"});
    EXPECT_EQ(result.status, 2) << row.why;
    EXPECT_THAT(result.err, HasSubstr(row.message)) << row.why;
    EXPECT_THAT(result.err, HasSubstr("nothing was imported")) << row.why;
    EXPECT_FALSE(fs::exists(project)) << row.why;
  }
  EXPECT_EQ(Run({"import", "/nonexistent"}).status, 2);
  EXPECT_EQ(Run({"import", "/"}).status, 2);
}

TEST_F(ImportTest, SaysOfEachEventThatIsDroppedWhy) {
  const struct {
    std::string child;
    const char* message;
  } rows[] = {
      {"<event><description>x</description></event>", "dropped: it has no eventid"},
      {Event("", "x"), "dropped: its eventid is \"\", which is no number"},
      {Event("seven", "x"), "dropped: its eventid is \"seven\", which is no number"},
      {Event("0", "x"), "dropped: its eventid is \"0\", which means none"},
      {Event("1", "x"), "dropped: eventid 1 is that of child 1 already"},
      {"<thing><eventid>5</eventid></thing>", "dropped: it is an element \"thing\""},
      {Event("5", "hostcore_mediascan_event"),
       "dropped: events described \"hostcore_mediascan_event\""},
  };
  for (const auto& row : rows) {
    const std::string xml = Data(Event("1", "Good") + row.child);
    const auto refused = Import(xml);
    EXPECT_EQ(refused.status, 1) << row.child;
    EXPECT_THAT(refused.out, HasSubstr(row.message));
    EXPECT_THAT(refused.out, HasSubstr("2 events read, 1 to keep, 1 to be dropped"));
    EXPECT_THAT(refused.err, HasSubstr("nothing was imported"));
    EXPECT_FALSE(fs::exists(project)) << row.child;

    const auto forced = Import(xml, {"--force"});
    EXPECT_EQ(forced.status, 0) << row.child << forced.err;
    const std::string kept = Export();
    EXPECT_THAT(kept, HasSubstr("<description>Good</description>"));
    EXPECT_THAT(kept, Not(HasSubstr("<description>x</description>"))) << row.child;
    fs::remove(project);
  }
}

TEST_F(ImportTest, SaysOfEachEventThatIsChangedHow) {
  const struct {
    std::string event;
    const char* message;
  } rows[] = {
      {Event("5x", "x"), "changed: eventid is \"5x\", which counts as 5"},
      {Event("5", "x", Start("0", "7pm", 2024, 3, 6)),
       "changed: offset_minutes is \"7pm\", which counts as 7"},
      {Event("5", "x", Start("0", "0", 2024, 2, 31)),
       "changed: start date 2024-02-31 becomes 2024-03-02, because there is no such day"},
      {Event("5", "x", Start("0", "0", 2024, 13, 1)),
       "changed: start date 2024-13-01 becomes 2025-01-01"},
      {Event("5", "x", Start("0", "0", 2024, 5, 1, 5, 2)),
       "changed: start date 2024-05-01 becomes 2024-05-27, the day that start_period"},
      {Event("5", "x", "<offset>0</offset>"), "changed: it has no start date; that becomes 19"},
      {Event("5", "x", Start("0", "0", 2024, 3, 6) + "<colour>red</colour>"),
       "changed: the element \"colour\" in \"start\""},
      {Event("5", "x", "", "<frequency>1</frequency><rate>1</rate><daymask>62</daymask>"),
       "changed: daymask \"62\" becomes 0, because only a weekly event"},
      {Event("5", "x", "", "<frequency>0</frequency><rate>3</rate>"),
       "changed: repeat is not kept"},
      {Event("5", "x", "", "<frequency>1</frequency><rate>5000000000</rate>"),
       "changed: rate \"5000000000\" becomes"},
      {Event("5", "x", "",
             "<frequency>1</frequency><rate>1</rate><end_date><end_day>31</end_day><end_month>4</"
             "end_month><end_year>2030</end_year></end_date>"),
       "changed: end date 2030-04-31 becomes 2030-05-01"},
      {Event("5", "x", "", "<frequency>1</frequency><rate>1</rate><rate>2</rate>"),
       "changed: a second \"rate\" does not count"},
  };
  for (const auto& row : rows) {
    const auto result = Import(Data(row.event), {"--dry-run"});
    EXPECT_EQ(result.status, 0) << row.message << result.err;
    EXPECT_THAT(result.out, HasSubstr(row.message));
    EXPECT_THAT(result.out, Not(HasSubstr("dropped: "))) << row.message;
  }
}

TEST_F(ImportTest, NotesWhatIsLikelyNotMeant) {
  const struct {
    std::string event;
    const char* message;
  } rows[] = {
      {Event("5", ""), "note: it has no description"},
      {Event("5", "Good"), "note: its description is that of event 1 too"},
      {Event("5", "x", Start("3", "0", 2024, 3, 6)), "note: offset is 3"},
      {Event("5", "x", Start("0", "1440", 2024, 3, 6)),
       "note: offset_minutes is 1440, a time on another day"},
      {Event("5", "x", Start("2", "-1440", 2024, 3, 6)),
       "note: offset_minutes is -1440, more than a day"},
      {Event("5", "x", Start("0", "0", 2024, 3, 6, 6, 2)), "note: start_period is 6"},
      {Event("5", "x", Start("0", "0", 2024, 3, 6, 1, 8)), "note: start_weekday is 8"},
      {Event("5", "x", Start("0", "0", 2040, 3, 6)),
       "note: it starts on 2040-03-06; the scheduler's calendar ends"},
      {Event("5", "x", "", "<frequency>1</frequency><rate>0</rate>"),
       "note: rate is 0, so it never occurs"},
      {Event("5", "x", "", "<frequency>1</frequency><rate>0</rate>"),
       "note: the scheduler objects to it (vexalink_agent_scheduler/vxw/ScheduledEvent:146)"},
      {Event("5", "x", "", "<frequency>1</frequency><rate>-2</rate>"),
       "note: rate is -2, which is no interval"},
      {Event("5", "x", "", "<frequency>5</frequency><rate>1</rate>"),
       "note: frequency is 5, so it never occurs"},
      {Event("5", "x", "", "<frequency>2</frequency><rate>1</rate><daymask>0</daymask>"),
       "note: daymask is 0 and names no weekday"},
      {Event("5", "x", "", "<frequency>2</frequency><rate>1</rate><daymask>129</daymask>"),
       "note: daymask is 129; only"},
      {Event("5", "x", "",
             "<frequency>1</frequency><rate>1</rate><end_date><end_day>5</end_day><end_month>3</"
             "end_month><end_year>2024</end_year></end_date>"),
       "note: it ends on 2024-03-05, before it starts on 2024-03-06"},
      {Event("18446744073709551615", "x"), "note: its eventid is so large"},
      {Event("3000000000", "x"), "note: eventid is beyond 2147483647"},
  };
  for (const auto& row : rows) {
    const auto result = Import(Data(Event("1", "Good") + row.event), {"--dry-run"});
    EXPECT_EQ(result.status, 0) << row.message << result.err;
    EXPECT_THAT(result.out, HasSubstr(row.message));
  }
}

TEST_F(ImportTest, ChecksTheWrapperToo) {
  const struct {
    std::string xml;
    int status;
    const char* message;
  } rows[] = {
      {"<event_data/>", 0, "note: \"event_data\" has no \"events\""},
      {Data(Event("7", "x"), "3"), 0, "changed: current_id 3 becomes 7"},
      {Data(Event("7", "x"), "many"), 0, "changed: current_id is \"many\", no number"},
      {"<event_data><events/><more/></event_data>", 0,
       "changed: the element \"more\" in \"event_data\""},
      {"<event_data><events/><events/></event_data>", 1, "dropped: a second \"events\""},
  };
  for (const auto& row : rows) {
    const auto result = Import(row.xml, {"--dry-run"});
    EXPECT_EQ(result.status, row.status) << row.xml << result.err;
    EXPECT_THAT(result.out, HasSubstr(row.message));
  }
}

TEST_F(ImportTest, ADryRunLeavesNoTrace) {
  const auto result = Import(Data(Event("7", "Porch")), {"--dry-run"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, HasSubstr("nothing was imported (--dry-run)"));
  EXPECT_FALSE(fs::exists(folder / "house"));
}

TEST_F(ImportTest, KeepsTheScheduleBefore) {
  ASSERT_EQ(Import(Data(Event("1", "First"))).status, 0);
  const std::string first = Export();
  ASSERT_EQ(Import(Data(Event("1", "Second"))).status, 0);
  ASSERT_EQ(Import(Data(Event("1", "Third"))).status, 0);
  EXPECT_EQ(Run({"export", "--backup", "2"}).out, first);
  const auto beyond = Run({"export", "--backup", "3"});
  EXPECT_EQ(beyond.status, 1);
  EXPECT_THAT(beyond.err, HasSubstr("keeps 2 earlier schedules"));
  EXPECT_EQ(Run({"export", "--backup", "0"}).status, 1);
}

TEST_F(ImportTest, WhatEventsDoAndHaveDoneGoesWithThem) {
  ASSERT_EQ(Import(Data(Event("1", "Porch") + Event("2", "Gate") + Event("3", "Lamp"))).status, 0);
  {
    ProjectStore store(project, ProjectStore::Use::kKeep);
    controller::SqliteStatement(store.Database(),
                                "INSERT INTO programming VALUES (1, 'porch'), (2, 'gate'), "
                                "(3, 'lamp'), (9, 'nobody')")
        .Step();
    controller::SqliteStatement(store.Database(),
                                "INSERT INTO decision VALUES (1, 20261121, 7, 'fired'), "
                                "(2, 20261121, 7, 'held'), (3, 20261121, 7, 'fired')")
        .Step();
  }
  // The numbers of two are exchanged, the third is another event's.
  ASSERT_EQ(Import(Data(Event("2", "Porch") + Event("1", "Gate") + Event("3", "Door"))).status, 0);
  const auto told = [this](const char* query) {
    ProjectStore store(project, ProjectStore::Use::kLook);
    controller::SqliteStatement rows(store.Database(), query);
    std::string text;
    while (rows.Step()) text += rows.TextAt(0) + ' ' + rows.TextAt(1) + '\n';
    return text;
  };
  EXPECT_EQ(told("SELECT event, body FROM programming ORDER BY event"), "1 gate\n2 porch\n");
  EXPECT_EQ(told("SELECT event, outcome FROM decision ORDER BY event"), "1 held\n2 fired\n");
  EXPECT_EQ(told("SELECT reason, text FROM journal"),
            "imported replaced by an import: 3 events before, 3 events now\n");
  // What was put aside comes back with its event.
  ASSERT_EQ(Import(Data(Event("2", "Porch") + Event("3", "Lamp"))).status, 0);
  EXPECT_EQ(told("SELECT event, body FROM programming ORDER BY event"), "2 porch\n3 lamp\n");
}

TEST_F(ImportTest, ShowsHostileDescriptionsWithoutObeyingThem) {
  const auto result =
      Import(Data(Event("1", "a&#10;b&#13;\xE2\x80\xAE") + Event("1", "a&#10;child 9: dropped")));
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.out, HasSubstr("\"a\\nchild 9: dropped\""));
  EXPECT_THAT(result.out, Not(HasSubstr("\nchild 9")));
  EXPECT_THAT(result.out, Not(HasSubstr("\xE2\x80\xAE")));
}

TEST_F(ImportTest, ADescriptionKeepsItsEveryCharacter) {
  ASSERT_EQ(Import(Data(Event("1", " a&#10;&#13;&#9;b \xE2\x80\xAE\xF0\x9F\x98\x80 "))).status, 0);
  ProjectStore store(project, ProjectStore::Use::kLook);
  const auto document = VxXML::CreateXmlDocument(store.State("scheduler")->xml);
  ASSERT_TRUE(document);
  EXPECT_EQ(document->GetRoot()->GetChild("events")->GetFirstChild()->GetText("description"),
            " a\n\r\tb \xE2\x80\xAE\xF0\x9F\x98\x80 ");
}

TEST_F(ImportTest, TakesThousandsOfEvents) {
  std::string events;
  for (int id = 1; id <= 3000; ++id)
    events += Event(std::to_string(id), "Event " + std::to_string(id));
  const auto result = Import(Data(events));
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("3000 events read, 3000 to keep, 0 to be dropped"));
}

TEST_F(ImportTest, AFailureLeavesTheProjectAsItWas) {
  ASSERT_EQ(Import(Data(Event("1", "First"))).status, 0);
  const std::string before = ReadFile(project);
  EXPECT_EQ(Import(Data(Event("0", "x"))).status, 1);
  EXPECT_EQ(Import("<oops").status, 2);
  EXPECT_EQ(ReadFile(project), before);
}

}  // namespace
