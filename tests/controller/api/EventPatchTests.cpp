#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controller/api/EventJson.h"

namespace {

using namespace controller;
using nlohmann::json;
using testing::HasSubstr;

constexpr DayFields kToday{2026, 11, 20};

EventElement Good(const std::string& text, EventUse use = EventUse::kCreate) {
  FieldErrors errors;
  const EventElement event = ReadEventBody(json::parse(text), use, kToday, errors).event;
  EXPECT_TRUE(errors.empty()) << text << ": " << ErrorText(errors);
  return event;
}

TEST(EventPatch, ChangesWhatItNamesAndNothingElse) {
  EventElement event = Good(
      R"({"description":"Porch","time":{"base":"clock","at":"07:30","spread":5},
          "repeat":{"unit":"week","on":["mon"],"until":"2027-01-01"}})");
  event.eventid = 7;
  const auto patched = [&](const char* patch) {
    return Good(PatchedEvent(EventDocument(event), json::parse(patch)).dump(), EventUse::kReplace);
  };
  EXPECT_EQ(patched("{}"), event);
  EventElement wanted = event;
  wanted.description = "Gate";
  EXPECT_EQ(patched(R"({"description":"Gate"})"), wanted);
  wanted = event;
  wanted.offset_minutes = 480;
  EXPECT_EQ(patched(R"({"time":{"at":"08:00"}})"), wanted);
  EXPECT_EQ(patched(R"({"time":{"minutes":480}})"), wanted);
  wanted = event;
  wanted.offset = 2;
  wanted.offset_minutes = 0;
  EXPECT_EQ(patched(R"({"time":{"base":"sunset"}})"), wanted)
      << "450 minutes after it was not meant";
  wanted = event;
  wanted.end.reset();
  EXPECT_EQ(patched(R"({"repeat":{"until":null}})"), wanted);
  wanted = event;
  wanted.frequency = wanted.rate = 0;
  wanted.daymask = 0;
  wanted.end.reset();
  EXPECT_EQ(patched(R"({"repeat":null})"), wanted);
}

TEST(EventPatch, AnotherUnitHasToPartWithTheWeekdays) {
  const EventElement event = Good(
      R"({"description":"Porch","time":{"base":"sunset"},"repeat":{"unit":"week","on":["mon"]}})");
  FieldErrors errors;
  ReadEventBody(PatchedEvent(EventDocument(event), json::parse(R"({"repeat":{"unit":"day"}})")),
                EventUse::kReplace, kToday, errors);
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_EQ(errors[0].pointer, "/repeat/on");
  EXPECT_THAT(errors[0].detail, HasSubstr("make it null"));
}

}  // namespace
