// The agenda for browsers without scripts.

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ApiClient.h"
#include "controller/api/AgendaPage.h"
#include "tests/support/TestClock.h"

namespace {

using namespace controller;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kBerlin = "CET-1CEST,M3.5.0,M10.5.0/3";

TEST(EscapedHtml, LeavesNothingThatABrowserWouldObey) {
  EXPECT_EQ(EscapedHtml("Ada & Ben's <b>\"house\"</b>"),
            "Ada &amp; Ben&#39;s &lt;b&gt;&quot;house&quot;&lt;/b&gt;");
  EXPECT_EQ(EscapedHtml("a\nb\x01"), "a\\nb\\x01");
  EXPECT_EQ(EscapedHtml("Küche"), "Küche");
}

TEST(AgendaPage, ShowsTodayWithWhatBecameOfItAndTheDaysAfter) {
  const ZoneScope zone(kBerlin);
  const TestClock clock("2026-11-20 12:00:00");
  FakeHouse house;
  ApiClient client(house);
  ASSERT_EQ(client
                .Post("/events", R"({"description":"<i>Porch</i>","start":"2026-11-20",
      "time":{"base":"clock","at":"07:05"},"repeat":{"unit":"day","every":2}})")
                .status,
            201);
  PlannedOccurrence held;
  held.event = 1;
  held.description = "Bell";
  held.planned = Local("2026-11-20 07:05:00");
  held.state = OccurrenceState::kHeld;
  held.reason = "paused";
  house.today = {held};

  const std::string page = AgendaHtml(house);
  EXPECT_THAT(page, HasSubstr("<h2>Friday, 20 November 2026</h2>"));
  EXPECT_THAT(page, HasSubstr("Bell<small>it is paused</small>"));
  EXPECT_THAT(page, HasSubstr("<span class=\"state held\">held back</span>"));
  EXPECT_THAT(page, HasSubstr("<h2>Sunday, 22 November 2026</h2>"));
  EXPECT_THAT(page, HasSubstr("07:05</time><div class=\"what\">&lt;i&gt;Porch&lt;/i&gt;</div>"));
  EXPECT_THAT(page, Not(HasSubstr("Saturday, 21"))) << "a day without any is left out";
  EXPECT_THAT(page, Not(HasSubstr("Friday, 4 December"))) << "two weeks are enough";
  EXPECT_THAT(page, Not(HasSubstr("<i>")));
}

TEST(AgendaPage, IsThereForWhoeverMayLook) {
  FakeHouse house;
  const std::vector<HttpRoute> routes = Api(house).Routes();
  const auto agenda = std::find_if(routes.begin(), routes.end(),
                                   [](const HttpRoute& route) { return route.path == "/agenda"; });
  ASSERT_NE(agenda, routes.end());
  EXPECT_EQ(agenda->role, Role::kView);
  EXPECT_FALSE(agenda->open) << "it shows the house, so it wants a token where one is wanted";
}

}  // namespace
