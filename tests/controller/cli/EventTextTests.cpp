// Events, actions and rows of the journal in words.

#include <gtest/gtest.h>

#include "controller/cli/show/EventText.h"
#include "controller/cli/show/JournalText.h"
#include "controller/cli/show/MomentText.h"

namespace {

using namespace controller::cli;

TEST(EventText, IsWrittenAsAddTakesIt) {
  const Json event = Json::parse(R"({
    "id": 7, "description": "Porch", "start": "2026-11-20",
    "time": {"base": "sunset", "minutes": -30, "spread": 10},
    "repeat": {"unit": "week", "every": 2, "on": ["mon", "fri"], "until": "2027-03-31"},
    "next": "2026-12-04T15:23:00+01:00"})");
  EXPECT_EQ(EventName(event), "event 7 \"Porch\"");
  EXPECT_EQ(EventTimeText(event), "sunset-30 ±10");
  EXPECT_EQ(EventRepeatText(event), "every 2 weeks on mon,fri until 2027-03-31");
  EXPECT_EQ(EventNextText(event), "Fri 2026-12-04 15:23");
}

TEST(EventText, KnowsEventsThatComeOnceOrNeverOrAreOdd) {
  const Json once = Json::parse(R"({"id": 1, "start": "2026-11-20", "repeat": null, "next": null,
                                    "time": {"base": "clock", "at": "07:30", "minutes": 450}})");
  EXPECT_EQ(EventName(once), "event 1 \"\"");
  EXPECT_EQ(EventTimeText(once), "07:30");
  EXPECT_EQ(EventRepeatText(once), "once on 2026-11-20");
  EXPECT_EQ(EventNextText(once), "never");
  const Json odd = Json::parse(R"({"id": 2, "odd": true, "start": null, "next": null,
      "time": {"base": null, "minutes": 5, "spread": 0}, "repeat": {"unit": null, "every": 0}})");
  EXPECT_EQ(EventRepeatText(odd), "in an odd way");
  EXPECT_EQ(EventTimeText(odd), "?+5");
  EXPECT_EQ(EventTimeText(Json::object()), "?");
  const Json odder = Json::parse(R"({"id": 3, "odd": true, "start": null,
      "repeat": {"unit": "month", "every": -1, "nth": {"week": 9, "weekday": null}, "until": null}})");
  EXPECT_EQ(EventRepeatText(odder), "every -1 months on the ? ?");
  EXPECT_EQ(EventRepeatText(Json::parse(R"({"repeat": null})")), "once on ?");
}

TEST(EventText, TellsWhatKeepsAnEventFromActing) {
  const struct {
    const char* programming;
    const char* text;
    bool asleep;
  } rows[] = {
      {R"({"enabled": true, "paused_until": null, "skip_next": false, "actions": 1})", "1 action",
       false},
      {R"({"enabled": true, "actions": 0})", "no actions", false},
      {R"({"enabled": false, "actions": 2})", "disabled, 2 actions", true},
      {R"({"paused_until": "2026-12-01", "skip_next": true, "actions": [{}, {}, {}]})",
       "paused until 2026-12-01, skips the next, 3 actions", true},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(ProgrammingStateText(Json::parse(row.programming)), row.text);
    EXPECT_EQ(IsAsleep(Json::parse(row.programming)), row.asleep) << row.text;
  }
}

TEST(EventText, PutsAnActionInWords) {
  const struct {
    const char* action;
    const char* words;
  } rows[] = {
      {R"({"hook": {"url": "http://hub.local/light"}})", "POST http://hub.local/light"},
      {R"({"on": "event", "delay": 0, "hook": {"method": "PUT", "url": "http://h/"}})",
       "PUT http://h/"},
      {R"({"on": "push", "delay": 300, "if": {"kind": "time", "is": "night"},
           "command": {"argv": ["say", "it is dark", "{description}"]}})",
       "on push, after 5m, if time is night: run say 'it is dark' {description}"},
      {R"({"variable": {"device": 1, "variable": 2001, "value": "on"}})", "set 1.2001=on"},
      {"{\"variable\": {\"device\": 1, \"variable\": 2, \"value\": \"a\\u001bb\"}}",
       "set 1.2=a\\x1bb"},
  };
  for (const auto& row : rows) EXPECT_EQ(ActionWords(Json::parse(row.action)), row.words);
}

TEST(MomentText, IsTheTimeInTheHouseWhateverTheZoneHere) {
  EXPECT_EQ(MomentText("2026-12-04T15:23:07+01:00"), "Fri 2026-12-04 15:23");
  EXPECT_EQ(ExactMomentText("2026-12-04T15:23:07-09:30"), "Fri 2026-12-04 15:23:07");
  EXPECT_EQ(ExactTimeText("2026-12-04T15:23:07.250Z"), "15:23:07");
  for (const char* text : {"", "never", "2026-12-04", "2026-02-30T15:23:07Z"}) {
    EXPECT_EQ(MomentText(text), text);
  }
}

TEST(JournalText, TellsWhatAndWhyAndByWhom) {
  const struct {
    const char* row;
    const char* event;
    const char* what;
  } rows[] = {
      {R"({"at": "2026-12-04T15:23:00+01:00", "kind": "fired", "event": 7, "description": "Porch",
           "planned": "2026-12-04T15:23:00+01:00", "drawn": 0, "reason": "timer"})",
       "7 \"Porch\"", "timer"},
      {R"({"at": "2026-12-04T15:27:10+01:00", "kind": "fired", "event": 7, "description": "Porch",
           "planned": "2026-12-04T15:23:00+01:00", "drawn": 4, "reason": "caught-up"})",
       "7 \"Porch\"", "caught-up, planned Fri 2026-12-04 15:23, drawn 4 minutes"},
      {R"({"at": "2026-12-04T15:27:10+01:00", "kind": "action", "event": 7, "outcome": "failed",
           "text": "POST http://hub/: 500", "actor": "cli:ada"})",
       "7", "failed, POST http://hub/: 500, by cli:ada"},
      {R"({"at": "2026-12-04T15:27:10+01:00", "kind": "controller", "reason": "started"})", "",
       "started"},
      {R"({"at": "", "kind": "change", "text": "a\nb\u001b"})", "", "a\\nb\\x1b"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(JournalEventText(Json::parse(row.row)), row.event);
    EXPECT_EQ(JournalWhatText(Json::parse(row.row)), row.what);
  }
}

}  // namespace
