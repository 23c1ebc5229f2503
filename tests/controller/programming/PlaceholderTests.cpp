#include <gtest/gtest.h>
#include <string>

#include "controller/programming/Placeholders.h"
#include "tests/controller/programming/ConditionAgent.h"

namespace {

using controller::Escaping;
using controller::Replaced;

const std::map<std::string, std::string> kValues = {
    {"event", "7"}, {"description", "{event} \"a\\b\"\r\n& <\xC3\xA9>"}, {"trigger", "push"}};

TEST(Placeholders, AreReplacedWhereTheyAreMeant) {
  const struct {
    const char* why;
    const char* text;
    const char* replaced;
  } rows[] = {
      {"one", "id {event}!", "id 7!"},
      {"two beside each other", "{event}{trigger}", "7push"},
      {"two braces are one", "{{event}", "{event}"},
      {"three", "{{{event}", "{7"},
      {"JSON's own braces", "{\"a\": {\"b\": {event}}}", "{\"a\": {\"b\": 7}}"},
      {"nothing in them", "{} { } {", "{} { } {"},
      {"a number is no name", "a{3}", "a{3}"},
      {"closing ones", "}}", "}}"},
      {"no text", "", ""},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Replaced(row.text, kValues, Escaping::kNone), row.replaced) << row.why;
  }
}

TEST(Placeholders, CannotBreakOutOfWhereTheyStand) {
  const std::string text = "{description}";
  EXPECT_EQ(Replaced(text, kValues, Escaping::kNone), "{event} \"a\\b\"\r\n& <\xC3\xA9>");
  EXPECT_EQ(Replaced(text, kValues, Escaping::kPercent),
            "%7Bevent%7D%20%22a%5Cb%22%0D%0A%26%20%3C%C3%A9%3E");
  EXPECT_EQ(Replaced(text, kValues, Escaping::kJson), "{event} \\\"a\\\\b\\\"\\r\\n& <\xC3\xA9>");
  EXPECT_EQ(Replaced(text, kValues, Escaping::kXml),
            "{event} &quot;a\\b&quot;\r\n&amp; &lt;\xC3\xA9&gt;");
  EXPECT_EQ(Replaced(text, kValues, Escaping::kHeader), "{event} \"a\\b\"  & <\xC3\xA9>");
}

TEST(Placeholders, OfJsonStayJsonWithBytesThatAreNoText) {
  EXPECT_EQ(Replaced("\"{x}\"", {{"x", "\xFF\x01"}}, Escaping::kJson), "\"\xEF\xBF\xBD\\u0001\"");
}

TEST(Placeholders, ThatDoNotExistAreFound) {
  using controller::UnknownPlaceholder;
  EXPECT_EQ(UnknownPlaceholder("{event} {description} {planned} {actual} {trigger}"), std::nullopt);
  EXPECT_EQ(UnknownPlaceholder("{event} {day}"), "{day}");
  EXPECT_EQ(UnknownPlaceholder("{Event}"), "{Event}");
  EXPECT_EQ(UnknownPlaceholder("{{day}"), std::nullopt);
  EXPECT_EQ(UnknownPlaceholder("{\"day\"} {} {1}"), std::nullopt);
}

TEST(Placeholders, KnowTheKindOfABody) {
  using controller::EscapingOfBody;
  EXPECT_EQ(EscapingOfBody(""), Escaping::kJson);
  EXPECT_EQ(EscapingOfBody("Application/JSON; charset=utf-8"), Escaping::kJson);
  EXPECT_EQ(EscapingOfBody("application/problem+json"), Escaping::kJson);
  EXPECT_EQ(EscapingOfBody("application/x-www-form-urlencoded"), Escaping::kPercent);
  EXPECT_EQ(EscapingOfBody("text/xml"), Escaping::kXml);
  EXPECT_EQ(EscapingOfBody("text/plain"), Escaping::kNone);
}

TEST(Placeholders, TellMomentsInLocalTime) {
  BerlinTime time;
  controller::FiringFacts facts;
  facts.eventId = 7;
  facts.description = "Porch";
  facts.planned = time.Set("2024-07-01T16:04:00");
  facts.actual = time.Set("2024-12-01T16:04:02");
  const auto values = PlaceholderValues(facts, controller::Trigger::kClick);
  EXPECT_EQ(values.at("event"), "7");
  EXPECT_EQ(values.at("description"), "Porch");
  EXPECT_EQ(values.at("planned"), "2024-07-01T16:04:00+02:00");
  EXPECT_EQ(values.at("actual"), "2024-12-01T16:04:02+01:00");
  EXPECT_EQ(values.at("trigger"), "click");
}

}  // namespace
