// Commands and the requests of user interfaces.

#include "tests/vexalink_agent_scheduler/AgentHelp.h"

namespace {

class Commands : public AgentTest {
 protected:
  Commands() { Start(); }
};

// The element of an event that happens every day from 1 March 2024 on, as it is written back at
// 7:00 on the 6th.
std::string Written(unsigned long id, const std::string& description, int minutes,
                    const std::string& hour) {
  const std::string number = std::to_string(id);
  return "<event><eventid>" + number + "</eventid><buttonbindingid>" + number +
         "</buttonbindingid><description>" + description +
         "</description><start><offset>0</offset><offset_minutes>" + std::to_string(minutes) +
         "</offset_minutes><start_date><start_day>1</start_day><start_month>3</start_month>"
         "<start_year>2024</start_year><start_period>0</start_period>"
         "<start_weekday>0</start_weekday></start_date><randomize>0</randomize></start>"
         "<next_occurence><year>2024</year><month>3</month><day>6</day><hour>" +
         hour +
         "</hour><min>0</min><timezone>UTC</timezone></next_occurence>"
         "<repeat><frequency>1</frequency><rate>1</rate><daymask>0</daymask></repeat></event>";
}

TEST_F(Commands, AddEventRegistersNotifiesAndInvalidates) {
  EXPECT_EQ(
      Command("ADD_EVENT", {{"EVENT_XML", DailyXml(0, "Porch", 720)}}),
      (Lines{"RegisterBinding 1 1 Porch", "RegisterBindingClass 1 BUTTON_LINK",
             "ConSendDataToUI <event_added>" + Written(1, "Porch", 720, "12") + "</event_added>",
             "DmInvalidateState"}));
}

TEST_F(Commands, AFailedAddOnlyInvalidates) {
  Command("ADD_EVENT", {{"EVENT_XML", DailyXml(0, "Porch", 720)}});
  for (const std::string& xml :
       {DailyXml(0, "Porch", 720), std::string("<event>"), std::string()}) {
    EXPECT_EQ(Command("ADD_EVENT", {{"EVENT_XML", xml}}), Lines{"DmInvalidateState"}) << xml;
  }
  EXPECT_EQ(Command("ADD_EVENT", {}), Lines{"DmInvalidateState"}) << "no parameter";
}

TEST_F(Commands, ModifyEventNotifiesWithTheElement) {
  Command("ADD_EVENT", {{"EVENT_XML", DailyXml(0, "Porch", 720)}});
  EXPECT_EQ(Command("MODIFY_EVENT", {{"EVENT_XML", DailyXml(1, "Hall", 540)}}),
            (Lines{"ConSendDataToUI <event_modified>" + Written(1, "Hall", 540, "9") +
                       "</event_modified>",
                   "DmInvalidateState"}));
}

TEST_F(Commands, ModifyOfAnUnknownIdStoresIt) {
  EXPECT_EQ(
      Command("MODIFY_EVENT", {{"EVENT_XML", DailyXml(9, "New", 540)}}),
      (Lines{"ConSendDataToUI <event_modified>" + Written(9, "New", 540, "9") + "</event_modified>",
             "DmInvalidateState"}));
  EXPECT_TRUE(agent->DoesEventExist(9));
}

TEST_F(Commands, ModifyNotifiesWithoutAnElementWhereNoneIsLeft) {
  Command("ADD_EVENT", {{"EVENT_XML", DailyXml(0, "Porch", 720)}});
  const Lines calls =
      Command("MODIFY_EVENT", {{"EVENT_XML", "<other><eventid>1</eventid></other>"}});
  EXPECT_EQ(calls, (Lines{"AssertWrite vexalink_agent_scheduler/vxw/ScheduledEvent:55",
                          "ConSendDataToUI <event_modified/>", "DmInvalidateState"}));
}

TEST_F(Commands, ModifyWithoutAnIdOnlyInvalidates) {
  EXPECT_EQ(Command("MODIFY_EVENT", {{"EVENT_XML", "no xml"}}), Lines{"DmInvalidateState"});
  EXPECT_EQ(Command("MODIFY_EVENT", {}), Lines{"DmInvalidateState"});
}

TEST_F(Commands, DeleteEventReadsANumber) {
  const struct {
    const char* why;
    const char* id;
    const char* read;
    bool deletes;
  } rows[] = {
      {"a number", "12", "12", true},
      {"stops at a letter", "12abc", "12", true},
      {"leading blanks", " \t12", "12", true},
      {"an unknown id", "13", "13", false},
      {"a negative one, as it is stored", "-1", "18446744073709551615", false},
  };
  for (const auto& row : rows) {
    agent->AddEvent(DailyXml(12, "Porch", 720), false, false);
    Lines expected;
    if (row.deletes) expected.push_back("UnregisterBinding 12");
    expected.push_back("ConSendDataToUI <event_deleted><eventid>" + std::string(row.read) +
                       "</eventid></event_deleted>");
    expected.push_back("DmInvalidateState");
    expected.push_back("EmRemoveByOwner " + std::string(row.read) + " 3");
    EXPECT_EQ(Command("DELETE_EVENT", {{"EVENT_ID", row.id}}), expected) << row.why;
    EXPECT_EQ(agent->DoesEventExist(12), !row.deletes) << row.why;
    agent->ClearAllEvents();
  }
}

TEST_F(Commands, DeleteWithoutAnIdInvalidatesAndDropsProgrammingOf0) {
  for (const char* id : {"", "abc", "0"}) {
    EXPECT_EQ(Command("DELETE_EVENT", {{"EVENT_ID", id}}),
              (Lines{"DmInvalidateState", "EmRemoveByOwner 0 3"}))
        << id;
  }
}

TEST_F(Commands, NamesCountToTheLetter) {
  for (const char* name : {"add_event", "ADD_EVENT ", "ADD_EVENTS", "", "GET_EVENT"}) {
    EXPECT_TRUE(Command(name, {{"EVENT_XML", DailyXml(0, "Porch", 720)}}).empty()) << name;
  }
}

class Requests : public AgentTest {
 protected:
  Requests() { Start(); }

  std::string Sun(int day, int month, int year) {
    return Request("GET_SUNRISE_SUNSET", {{"DAY", std::to_string(day)},
                                          {"MONTH", std::to_string(month)},
                                          {"YEAR", std::to_string(year)}});
  }
};

TEST_F(Requests, GetAllEventsListsById) {
  EXPECT_EQ(Request("GET_ALL_EVENTS"), "<events/>");
  agent->AddEvent(DailyXml(7, "b", 540), false, false);
  agent->AddEvent(DailyXml(3, "a", 600), false, false);
  EXPECT_EQ(Request("GET_ALL_EVENTS"),
            "<events>" + Written(3, "a", 600, "10") + Written(7, "b", 540, "9") + "</events>");
}

TEST_F(Requests, GetEventIsTheElementOrNothing) {
  agent->AddEvent(DailyXml(7, "b", 540), false, false);
  EXPECT_EQ(Request("GET_EVENT", {{"EVENT_ID", "7"}}), Written(7, "b", 540, "9"));
  EXPECT_EQ(Request("GET_EVENT", {{"EVENT_ID", "7th"}}), Written(7, "b", 540, "9"));
  EXPECT_EQ(Request("GET_EVENT", {{"EVENT_ID", "8"}}), "null");
  EXPECT_EQ(Request("GET_EVENT"), "null");
}

TEST_F(Requests, UnknownOnesGoToTheBase) {
  for (const char* name : {"get_all_events", "", "GET_EVENTS", "ADD_EVENT"}) {
    EXPECT_EQ(Request(name), "null") << name;
  }
  EXPECT_TRUE(host.TakeCalls().empty());
}

TEST_F(Requests, SunriseAndSunsetOfADay) {
  // On the equator at Greenwich, 21 June: noon by the sun is at 12:02 (equation of time -1.8), the
  // sun rises 6:04 before (90.833 degrees by cos 23.4).
  EXPECT_EQ(Sun(21, 6, 2024),
            "<sunrise_sunset><timezone>UTC</timezone><sunrise><hour>5</hour><min>57</min></sunrise>"
            "<sunset><hour>18</hour><min>5</min></sunset></sunrise_sunset>");
}

TEST_F(Requests, SunTimesNameThePresentZone) {
  const struct {
    const char* why;
    const char* zone;
    const char* now;
    const char* name;
  } rows[] = {
      {"summer is asked for in winter", zones::kNewYork, "2024-01-15 12:00:00", "EST"},
      {"and in summer", zones::kNewYork, "2024-07-15 12:00:00", "EDT"},
      {"a zone without summer time", zones::kKolkata, "2024-07-15 12:00:00", "IST"},
  };
  for (const auto& row : rows) {
    const ZoneScope other(row.zone);
    clock.Set(row.now);
    EXPECT_NE(Sun(21, 6, 2024).find("<timezone>" + std::string(row.name) + "<"), std::string::npos)
        << row.why;
  }
}

TEST_F(Requests, SunTimesWithoutParametersAreAnsweredAllTheSame) {
  EXPECT_NE(Request("GET_SUNRISE_SUNSET").find("<sunset><hour>1"), std::string::npos);
  EXPECT_EQ(Sun(0, 0, 0), Request("GET_SUNRISE_SUNSET"));
}

TEST_F(Requests, SunTimesOfDaysOutOfRangeRollOver) {
  EXPECT_EQ(Sun(31, 6, 2024), Sun(1, 7, 2024));
  EXPECT_EQ(Sun(21, 18, 2023), Sun(21, 6, 2024));
}

TEST_F(Requests, SunTimesOfNoPlaceAreThoseOfTheSecondBeforeTheEpoch) {
  agent->OnVariableChanged(1, 1001, "nan");
  EXPECT_NE(Sun(21, 6, 2024)
                .find("<sunrise><hour>23</hour><min>59</min></sunrise>"
                      "<sunset><hour>23</hour><min>59</min></sunset>"),
            std::string::npos);
}

}  // namespace
