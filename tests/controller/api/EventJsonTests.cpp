#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controller/api/EventFields.h"
#include "controller/api/EventJson.h"

namespace {

using namespace controller;
using nlohmann::json;
using testing::HasSubstr;

constexpr DayFields kToday{2026, 11, 20};

EventElement Read(const std::string& text, FieldErrors& errors, EventUse use = EventUse::kCreate) {
  return ReadEventBody(json::parse(text), use, kToday, errors).event;
}

EventElement Good(const std::string& text, EventUse use = EventUse::kCreate) {
  FieldErrors errors;
  const EventElement event = Read(text, errors, use);
  EXPECT_TRUE(errors.empty()) << text << ": " << ErrorText(errors);
  return event;
}

std::string Written(const EventElement& event) {
  std::string text;
  AppendEventJson(text, event, {});
  return text;
}

/// An event of a name and a clock time, with more fields.
std::string With(const std::string& fields) {
  return R"({"description":"Porch","time":{"base":"clock","at":"07:30"})" +
         (fields.empty() ? "" : "," + fields) + '}';
}
std::string Timed(const std::string& time) {
  return R"({"description":"Porch","time":)" + time + '}';
}
std::string Repeated(const std::string& repeat) { return With("\"repeat\":" + repeat); }

TEST(EventJson, ReadsAnEventWithEveryField) {
  const EventElement event = Good(R"({"description":"Porch","start":"2026-11-20",
    "time":{"base":"sunset","minutes":-30,"spread":10},
    "repeat":{"unit":"week","every":2,"on":["mon","fri"],"until":"2027-03-31"}})");
  EXPECT_EQ(event.description, "Porch");
  EXPECT_EQ(event.start, kToday);
  EXPECT_EQ(event.offset, 2);
  EXPECT_EQ(event.offset_minutes, -30);
  EXPECT_EQ(event.randomize, 10);
  EXPECT_EQ(event.frequency, 2);
  EXPECT_EQ(event.rate, 2);
  EXPECT_EQ(event.daymask, 0x22u);
  EXPECT_EQ(event.end, (DayFields{2027, 3, 31}));
}

TEST(EventJson, FillsInWhatIsLeftOut) {
  const EventElement event = Good(With(""));
  EXPECT_EQ(event.start, kToday);
  EXPECT_EQ(event.offset_minutes, 450);
  EXPECT_EQ(event.randomize, 0);
  EXPECT_EQ(event.frequency, 0);
  EXPECT_FALSE(event.end);
  EXPECT_EQ(Good(Repeated(R"({"unit":"day"})")).rate, 1);
  EXPECT_EQ(Good(Repeated("null")).frequency, 0);
  EXPECT_EQ(Good(Timed(R"({"base":"sunset"})")).offset_minutes, 0);
}

TEST(EventJson, TakesWhatStandsAtItsLimits) {
  const struct {
    const char* why;
    std::string text;
  } rows[] = {
      {"the first day", With(R"("start":"1970-01-02")")},
      {"the last day", With(R"("start":"9999-12-31")")},
      {"29 February of a leap year", With(R"("start":"2028-02-29")")},
      {"29 February of 2000", With(R"("start":"2000-02-29")")},
      {"midnight", Timed(R"({"base":"clock","at":"00:00"})")},
      {"the last minute", Timed(R"({"base":"clock","at":"23:59"})")},
      {"a day before", Timed(R"({"base":"clock","minutes":-1440})")},
      {"two days after", Timed(R"({"base":"clock","minutes":2880})")},
      {"a day before the sun", Timed(R"({"base":"sunrise","minutes":-1440})")},
      {"a day after the sun", Timed(R"({"base":"sunset","minutes":1440})")},
      {"at and minutes that agree", Timed(R"({"base":"clock","at":"07:30","minutes":450})")},
      {"the widest spread", Timed(R"({"base":"sunset","spread":720})")},
      {"a whole number with a fraction of 0", Timed(R"({"base":"sunset","spread":10.0})")},
      {"a million days", Repeated(R"({"unit":"day","every":1000000})")},
      {"until the start", Repeated(R"({"unit":"day","until":"2026-11-20"})")},
      {"every weekday",
       Repeated(R"({"unit":"week","on":["sun","mon","tue","wed","thu","fri","sat"]})")},
      {"no weekdays where none belong", Repeated(R"({"unit":"day","on":null})")},
      {"the fourth", Repeated(R"({"unit":"month","nth":{"week":4,"weekday":"wed"}})")},
      {"the last", Repeated(R"({"unit":"year","nth":{"week":"last","weekday":"sat"}})")},
      {"a null where there may be nothing",
       Repeated(R"({"unit":"month","nth":null,"until":null})")},
  };
  for (const auto& row : rows) {
    FieldErrors errors;
    Read(row.text, errors);
    EXPECT_TRUE(errors.empty()) << row.why << ": " << ErrorText(errors);
  }
}

TEST(EventJson, RefusesEachFieldWithItsPlaceAndReason) {
  const struct {
    std::string text;
    const char* pointer;
    const char* detail;
  } rows[] = {
      {"[]", "", "is an empty list; give an object"},
      {R"({"time":{"base":"sunset"}})", "/description", "is missing"},
      {R"({"description":null,"time":{"base":"sunset"}})", "/description", "is null"},
      {R"({"description":7,"time":{"base":"sunset"}})", "/description", "is 7"},
      {R"({"description":"","time":{"base":"sunset"}})", "/description", "is empty"},
      {R"({"description":"   ","time":{"base":"sunset"}})", "/description",
       "nothing that can be seen"},
      {"{\"description\":\"\u3000\u200B \u2800\",\"time\":{\"base\":\"sunset\"}}", "/description",
       "nothing that can be seen"},
      {R"({"description":"a\nb","time":{"base":"sunset"}})", "/description", "control"},
      {R"({"description":"a\u0085b","time":{"base":"sunset"}})", "/description", "control"},
      {R"({"description":"a\u0000b","time":{"base":"sunset"}})", "/description", "control"},
      {R"({"description":"a\uFFFEb","time":{"base":"sunset"}})", "/description", "U+FFFE"},
      {R"({"description":")" + std::string(201, 'x') + R"(","time":{"base":"sunset"}})",
       "/description", "has 201 characters"},
      {R"({"description":"hostcore_mediascan_event","time":{"base":"sunset"}})", "/description",
       "never kept"},
      {R"({"description":"Porch"})", "/time", "is missing"},
      {Timed("7"), "/time", "is 7; give an object"},
      {Timed("{}"), "/time/base", "is missing"},
      {Timed(R"({"base":"moon"})"), "/time/base", "is \"moon\"; give \"clock\""},
      {Timed(R"({"base":"clock"})"), "/time/at", "is missing; give a time"},
      {Timed(R"({"base":"clock","at":"24:00"})"), "/time/at", "is \"24:00\""},
      {Timed(R"({"base":"clock","at":"7:30"})"), "/time/at", "is \"7:30\""},
      {Timed(R"({"base":"clock","at":730})"), "/time/at", "is 730"},
      {Timed(R"({"base":"clock","at":"07:30","minutes":451})"), "/time/minutes",
       "give one of them"},
      {Timed(R"({"base":"clock","minutes":-1441})"), "/time/minutes", "is -1441"},
      {Timed(R"({"base":"clock","minutes":2881})"), "/time/minutes", "is 2881"},
      {Timed(R"({"base":"clock","minutes":7.5})"), "/time/minutes", "is 7.5"},
      {Timed(R"({"base":"sunset","minutes":1441})"), "/time/minutes", "is 1441"},
      {Timed(R"({"base":"sunset","minutes":1e300})"), "/time/minutes", "give a whole number"},
      {Timed(R"({"base":"sunset","at":"07:30"})"), "/time/at", "for the base \"clock\" only"},
      {Timed(R"({"base":"sunset","spread":-1})"), "/time/spread", "is -1"},
      {Timed(R"({"base":"sunset","spread":721})"), "/time/spread", "is 721"},
      {Timed(R"({"base":"sunset","spreed":1})"), "/time/spreed", "is not known here"},
      {With(R"("start":"2026-02-31")"), "/start", "a day that the calendar has"},
      {With(R"("start":"2026-02-29")"), "/start", "a day that the calendar has"},
      {With(R"("start":"1900-02-28")"), "/start", "a year from 1970"},
      {With(R"("start":"1970-01-01")"), "/start", "give 1970-01-02 or later"},
      {With(R"("start":"20-11-2026")"), "/start", "a date such as"},
      {With(R"("start":20261120)"), "/start", "is 20261120"},
      {With(R"("repeat":[])"), "/repeat", "give an object"},
      {Repeated("{}"), "/repeat/unit", "is missing"},
      {Repeated(R"({"unit":"hour"})"), "/repeat/unit", "is \"hour\""},
      {Repeated(R"({"unit":"day","every":0})"), "/repeat/every", "is 0"},
      {Repeated(R"({"unit":"day","every":1000001})"), "/repeat/every", "is 1000001"},
      {Repeated(R"({"unit":"day","every":"2"})"), "/repeat/every", "is \"2\""},
      {Repeated(R"({"unit":"day","on":["mon"]})"), "/repeat/on", "belongs to weeks only"},
      {Repeated(R"({"unit":"week"})"), "/repeat/on", "is missing; give a list of sun"},
      {Repeated(R"({"unit":"week","on":[]})"), "/repeat/on", "is an empty list"},
      {Repeated(R"({"unit":"week","on":"mon"})"), "/repeat/on", "is \"mon\"; give a list"},
      {Repeated(R"({"unit":"week","on":["mon","monday"]})"), "/repeat/on/1", "is \"monday\""},
      {Repeated(R"({"unit":"week","on":["mon","mon"]})"), "/repeat/on/1", "a second time"},
      {Repeated(R"({"unit":"week","on":[2]})"), "/repeat/on/0", "is 2"},
      {Repeated(R"({"unit":"week","on":["mon"],"nth":{"week":1,"weekday":"mon"}})"), "/repeat/nth",
       "months and years only"},
      {Repeated(R"({"unit":"month","nth":{"weekday":"mon"}})"), "/repeat/nth/week", "is missing"},
      {Repeated(R"({"unit":"month","nth":{"week":1}})"), "/repeat/nth/weekday", "is missing"},
      {Repeated(R"({"unit":"month","nth":{"week":5,"weekday":"mon"}})"), "/repeat/nth/week",
       "is 5"},
      {Repeated(R"({"unit":"month","nth":{"week":"first","weekday":"mon"}})"), "/repeat/nth/week",
       "is \"first\"; give 1 to 4 or \"last\""},
      {Repeated(R"({"unit":"month","nth":{"week":1,"weekday":"mon","x":1}})"), "/repeat/nth/x",
       "is not known here"},
      {Repeated(R"({"unit":"day","until":"2026-11-19"})"), "/repeat/until", "before the start"},
      {Repeated(R"({"unit":"day","until":"2026-13-01"})"), "/repeat/until", "calendar"},
      {Repeated(R"({"unit":"day","times":3})"), "/repeat/times", "is not known here"},
      {With(R"("id":7)"), "/id", "is given by the controller"},
      {With(R"("next":null)"), "/next", "for answers only"},
      {With(R"("odd":true)"), "/odd", "for answers only"},
      {With(R"("a/b~c":1)"), "/a~1b~0c", "is not known here"},
      {With(R"("programming":{"enabeld":true})"), "/programming/enabeld", "is not known here"},
  };
  for (const auto& row : rows) {
    FieldErrors errors;
    Read(row.text, errors);
    ASSERT_EQ(errors.size(), 1u) << row.text << ": " << ErrorText(errors);
    EXPECT_EQ(errors[0].pointer, row.pointer) << row.text;
    EXPECT_THAT(errors[0].detail, HasSubstr(row.detail)) << row.text;
  }
}

TEST(EventJson, TellsEverythingThatIsWrongAtOnce) {
  FieldErrors errors;
  Read(R"({"description":"","start":"x","time":{"base":"clock"},"repeat":{"unit":"week"},"z":1})",
       errors);
  EXPECT_EQ(errors.size(), 5u) << ErrorText(errors);
}

TEST(EventJson, CountsCharactersAndNotBytes) {
  std::string umlauts;
  for (int i = 0; i < 200; ++i) umlauts += "\xC3\xBC";
  EXPECT_EQ(Good(R"({"description":")" + umlauts + R"(","time":{"base":"sunset"}})").description,
            umlauts);
}

TEST(EventJson, KeepsEveryTextToTheByte) {
  for (const char* name :
       {"T\xC3\xBCr", "\xE2\x80\xAEright to left", " blanks ", "a < b & \"c\" ]]> d", "\\n",
        "\xF0\x9F\x92\xA1 lamp", "e\xCC\x81 apart", "\xE2\x80\xA8line"}) {
    const EventElement event =
        Good(json{{"description", name}, {"time", {{"base", "sunset"}}}}.dump());
    EXPECT_EQ(event.description, name);
    EXPECT_EQ(json::parse(Written(event))["description"], name);
    const auto document = VxXML::CreateXmlDocument(MakeEventElement(event)->ToString());
    ASSERT_TRUE(document) << name;
    EXPECT_EQ(ReadEventElement(*document->GetRoot()).description, name);
  }
}

TEST(EventJson, WhoReplacesAnEventMaySayItsIdAndMustSayItsStart) {
  EXPECT_EQ(Good(With(R"("id":7,"start":"2026-11-20")"), EventUse::kReplace).eventid, 7u);
  FieldErrors errors;
  Read(With(""), errors, EventUse::kReplace);
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_EQ(errors[0].pointer, "/start");
  errors.clear();
  Read(With(R"("start":"2026-11-20","programming":{})"), errors, EventUse::kReplace);
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_EQ(errors[0].pointer, "/programming");
}

TEST(EventJson, WritesWhatItReads) {
  for (const std::string& text :
       {With(""), Timed(R"({"base":"sunrise","minutes":60,"spread":5})"),
        Timed(R"({"base":"clock","minutes":1500})"), Repeated(R"({"unit":"day","every":3})"),
        Repeated(R"({"unit":"week","on":["sat","sun"],"until":"2030-01-01"})"),
        Repeated(R"({"unit":"month","every":2,"nth":{"week":"last","weekday":"fri"}})"),
        Repeated(R"({"unit":"year","nth":{"week":2,"weekday":"sun"}})"),
        Repeated(R"({"unit":"year","until":"9999-12-31"})")}) {
    const EventElement event = Good(text);
    EXPECT_FALSE(IsOdd(event)) << text;
    EXPECT_EQ(Good(Written(event), EventUse::kReplace), event) << Written(event);
    EXPECT_EQ(Good(EventDocument(event).dump(), EventUse::kReplace), event);
  }
}

TEST(EventJson, HoldsAClockTimeWhereItCanBeSaidSo) {
  const auto time = [](int minutes) {
    EventElement event = Good(With(""));
    event.offset_minutes = minutes;
    return json::parse(Written(event))["time"];
  };
  EXPECT_EQ(time(0), (json{{"base", "clock"}, {"at", "00:00"}, {"minutes", 0}, {"spread", 0}}));
  EXPECT_EQ(time(1439)["at"], "23:59");
  EXPECT_FALSE(time(1440).contains("at"));
  EXPECT_FALSE(time(-1).contains("at"));
}

TEST(EventJson, AnOddEventIsReadAsFarAsItCanBe) {
  const EventElement plain = Good(Repeated(R"({"unit":"day"})"));
  const struct {
    const char* why;
    void (*spoil)(EventElement&);
  } rows[] = {
      {"an unknown base", [](EventElement& event) { event.offset = 3; }},
      {"a time two days off", [](EventElement& event) { event.offset_minutes = 2881; }},
      {"a spread beyond half a day", [](EventElement& event) { event.randomize = 721; }},
      {"a spread below nothing", [](EventElement& event) { event.randomize = -1; }},
      {"an unknown kind of repeat", [](EventElement& event) { event.frequency = 5; }},
      {"a rate of nothing", [](EventElement& event) { event.rate = 0; }},
      {"no weekday", [](EventElement& event) { event.frequency = 2; }},
      {"an eighth weekday",
       [](EventElement& event) {
         event.frequency = 2;
         event.daymask = 0x80 | 1;
       }},
      {"a sixth week",
       [](EventElement& event) {
         event.frequency = 3;
         event.start_period = 6;
         event.start_weekday = 1;
       }},
      {"a weekday of its own",
       [](EventElement& event) {
         event.frequency = 3;
         event.start_period = 1;
         event.start_weekday = 8;
       }},
      {"no description", [](EventElement& event) { event.description = ""; }},
      {"a line end in it", [](EventElement& event) { event.description = "a\nb"; }},
      {"bytes that are no text", [](EventElement& event) { event.description = "a\xFF"; }},
      {"a description of 201 characters",
       [](EventElement& event) { event.description = std::string(201, 'x'); }},
      {"the first day of the calendar",
       [](EventElement& event) {
         event.start = {1970, 1, 1};
       }},
      {"no day at all",
       [](EventElement& event) {
         event.start = {0, 0, 0};
       }},
      {"an end before its start",
       [](EventElement& event) {
         event.end = {{2026, 11, 19}};
       }},
  };
  EXPECT_FALSE(IsOdd(plain));
  for (const auto& row : rows) {
    EventElement event = plain;
    row.spoil(event);
    EXPECT_TRUE(IsOdd(event)) << row.why;
    const json written = json::parse(Written(event));
    EXPECT_EQ(written["odd"], true) << row.why;
    FieldErrors errors;
    json body = written;
    body.erase("odd");
    const EventElement again = ReadEventBody(body, EventUse::kReplace, kToday, errors).event;
    EXPECT_TRUE(!errors.empty() || again != event) << row.why << ": it can be said after all";
  }
}

TEST(EventJson, WhatAWeekOfTheMonthMeansForDaysAndWeeksIsNothing) {
  EventElement event = Good(Repeated(R"({"unit":"week","on":["mon"]})"));
  event.start_period = 2;
  event.start_weekday = 3;
  EXPECT_FALSE(IsOdd(event)) << "the scheduler has made its start of it, and forgets it";
  EXPECT_FALSE(json::parse(Written(event))["repeat"].contains("nth"));
}

}  // namespace
