#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "controller/api/EventJson.h"
#include "controller/api/EventSentence.h"

namespace {

using namespace controller;

std::string Sentence(const std::string& fields) {
  FieldErrors errors;
  const auto body =
      nlohmann::json::parse(R"({"description":"Porch","start":"2026-11-20",)" + fields + '}');
  const EventElement event = ReadEventBody(body, EventUse::kCreate, {}, errors).event;
  EXPECT_TRUE(errors.empty()) << ErrorText(errors);
  return EventSentence(event);
}

constexpr const char* kAtSeven = R"("time":{"base":"clock","at":"07:00"})";

TEST(EventSentence, TellsTheRule) {
  const struct {
    const char* repeat;
    const char* rule;
  } rows[] = {
      {R"({"unit":"day"})", "every day"},
      {R"({"unit":"day","every":2})", "every other day"},
      {R"({"unit":"day","every":10})", "every 10 days"},
      {R"({"unit":"week","on":["mon"]})", "every week on Monday"},
      {R"({"unit":"week","every":2,"on":["fri","mon"]})", "every 2 weeks on Monday and Friday"},
      {R"({"unit":"week","on":["sun","tue","thu"]})", "every week on Tuesday, Thursday and Sunday"},
      {R"({"unit":"week","on":["mon","tue","wed","thu","fri"]})", "every week on Monday to Friday"},
      {R"({"unit":"week","on":["sun","sat"]})", "every week on Saturday and Sunday"},
      {R"({"unit":"week","every":3,"on":["sun","mon","tue","wed","thu","fri","sat"]})",
       "every 3 weeks on every day"},
      {R"({"unit":"month"})", "every month on the 20th"},
      {R"({"unit":"month","every":3,"nth":{"week":"last","weekday":"fri"}})",
       "every 3 months on the last Friday"},
      {R"({"unit":"year"})", "every year on 20 November"},
      {R"({"unit":"year","every":4,"nth":{"week":2,"weekday":"sun"}})",
       "every 4 years on the second Sunday of November"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Sentence(std::string(kAtSeven) + R"(,"repeat":)" + row.repeat),
              std::string(row.rule) + ", at 07:00, from 20 November 2026");
  }
}

TEST(EventSentence, TellsTheTimeOfDay) {
  const struct {
    const char* time;
    const char* words;
  } rows[] = {
      {R"({"base":"clock","at":"00:00"})", "at 00:00"},
      {R"({"base":"clock","minutes":1500})", "at 01:00 of the day after"},
      {R"({"base":"clock","minutes":-30})", "at 23:30 of the day before"},
      {R"({"base":"clock","minutes":-1440})", "at 00:00 of the day before"},
      {R"({"base":"clock","minutes":2880})", "at 00:00 two days after"},
      {R"({"base":"sunset"})", "at sunset"},
      {R"({"base":"sunset","minutes":-1})", "1 minute before sunset"},
      {R"({"base":"sunrise","minutes":90})", "1 hour and 30 minutes after sunrise"},
      {R"({"base":"sunrise","minutes":-120})", "2 hours before sunrise"},
      {R"({"base":"sunset","spread":1})", "at sunset, give or take 1 minute"},
      {R"({"base":"clock","at":"07:00","spread":90})",
       "at 07:00, give or take 1 hour and 30 minutes"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Sentence(R"("time":)" + std::string(row.time)),
              std::string("once on 20 November 2026, ") + row.words);
  }
}

TEST(EventSentence, TellsDaysThatNotEveryMonthHas) {
  const auto on = [](const std::string& day, const std::string& unit) {
    FieldErrors errors;
    const auto body = nlohmann::json::parse(R"({"description":"Porch","start":")" + day + "\"," +
                                            kAtSeven + R"(,"repeat":{"unit":")" + unit + "\"}}");
    const std::string text =
        EventSentence(ReadEventBody(body, EventUse::kCreate, {}, errors).event);
    EXPECT_TRUE(errors.empty()) << ErrorText(errors);
    return text.substr(0, text.find(", at"));
  };
  EXPECT_EQ(on("2028-01-01", "month"), "every month on the 1st");
  EXPECT_EQ(on("2028-01-02", "month"), "every month on the 2nd");
  EXPECT_EQ(on("2028-01-03", "month"), "every month on the 3rd");
  EXPECT_EQ(on("2028-01-11", "month"), "every month on the 11th");
  EXPECT_EQ(on("2028-01-12", "month"), "every month on the 12th");
  EXPECT_EQ(on("2028-01-13", "month"), "every month on the 13th");
  EXPECT_EQ(on("2028-01-22", "month"), "every month on the 22nd");
  EXPECT_EQ(on("2028-01-28", "month"), "every month on the 28th");
  EXPECT_EQ(on("2028-01-31", "month"), "every month on the 31st, in months that have one");
  EXPECT_EQ(on("2028-02-29", "year"), "every year on 29 February, in leap years");
  EXPECT_EQ(on("2028-02-28", "year"), "every year on 28 February");
}

TEST(EventSentence, TellsItAllInOne) {
  EXPECT_EQ(Sentence(R"("time":{"base":"sunset","minutes":-30,"spread":10},
      "repeat":{"unit":"week","every":2,"on":["mon","fri"],"until":"2027-03-31"})"),
            "every 2 weeks on Monday and Friday, 30 minutes before sunset, give or take 10 "
            "minutes, from 20 November 2026 until 31 March 2027");
}

}  // namespace
