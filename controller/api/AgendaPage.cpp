#include "controller/api/AgendaPage.h"

#include <array>
#include <optional>
#include <utility>

#include "controller/LocalTimeText.h"
#include "controller/Printable.h"
#include "controller/TimeZone.h"
#include "controller/api/CivilRule.h"
#include "controller/api/EventFields.h"
#include "controller/api/EventSentence.h"
#include "controller/api/OccurrenceListing.h"

namespace controller {

namespace {

/// With today.
constexpr long kDays = 14;
/// Nobody reads more, and a house may have thousands of events.
constexpr std::size_t kMostRows = 1000;

std::string ClockText(std::time_t moment) { return MomentText(moment).substr(11, 5); }

std::string DayTitle(const DayFields& day) {
  constexpr std::array kNames = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                 "Thursday", "Friday", "Saturday"};
  return std::string(kNames[static_cast<std::size_t>(WeekdayOf(day)) - 1]) + ", " +
         LongDayText(day);
}

std::string SunText(OffsetBase base) {
  switch (base) {
    case OffsetBase::kSunrise:
      return "by sunrise";
    case OffsetBase::kSunset:
      return "by sunset";
    default:
      return "";
  }
}

/// How a state is said; the words of the page.
std::string StateText(OccurrenceState state) {
  switch (state) {
    case OccurrenceState::kPending:
      return "to come";
    case OccurrenceState::kHeld:
      return "held back";
    default:
      return StateName(state);
  }
}

/// Why it came to that; empty where it is what one expects.
std::string ReasonText(const std::string& reason) {
  constexpr std::pair<const char*, const char*> kTexts[] = {
      {"timer", ""},
      {"caught-up", "caught up"},
      {"by-hand", "by hand"},
      {"already-acted", "it had already acted today"},
      {"not-listed", "it belongs to another day"},
      {"disabled", "it is switched off"},
      {"away", "the house is away"},
      {"paused", "it is paused"},
      {"skipped", "it was to be skipped"},
      {"journal", "it could not be recorded"},
      {"down", "the controller was not running"},
      {"clock-jump", "the clock jumped over it"},
      {"past-midnight", "its time led over midnight"},
      {"left-out", "the scheduler had left it out"},
      {"superseded", "a later one was caught up"},
  };
  for (const auto& [name, text] : kTexts) {
    if (reason == name) return text;
  }
  return reason;
}

/// One row: a time, a name, and what there is to say about it.
void AppendRow(std::string& html, std::time_t time, const std::string& description,
               const std::string& note, std::optional<OccurrenceState> outcome = std::nullopt) {
  const std::string state = outcome ? StateName(*outcome) : "";
  html += "<li class=\"occurrence " + state + "\"><time datetime=\"" + MomentText(time) + "\">" +
          ClockText(time) + "</time><div class=\"what\">" + EscapedHtml(description);
  if (!note.empty()) html += "<small>" + EscapedHtml(note) + "</small>";
  html += "</div>";
  if (outcome) {
    html += "<span class=\"state " + state + "\">" + StateText(*outcome) + "</span>";
  }
  html += "</li>\n";
}

void AppendToday(std::string& html, House& house) {
  const auto today = house.Today();
  html += "<h2>" + DayTitle(house.TodayDate()) + "</h2>\n";
  if (today.empty()) {
    html += "<p>Nothing occurs today.</p>\n";
    return;
  }
  html += "<ol class=\"timeline\">\n";
  for (const PlannedOccurrence& occurrence : today) {
    std::string note = SunText(occurrence.base);
    if (occurrence.state != OccurrenceState::kPending) note = ReasonText(occurrence.reason);
    AppendRow(html, occurrence.due.value_or(occurrence.planned), occurrence.description, note,
              occurrence.state);
  }
  html += "</ol>\n";
}

void AppendDaysAfter(std::string& html, House& house) {
  const DayFields today = house.TodayDate();
  const DaySpan days{DaysAfter(today, 1), DaysAfter(today, kDays - 1)};
  const OccurrenceListing listing(house, days, kMostRows);
  DayFields day{};
  for (const Occurrence& occurrence : listing.Found()) {
    if (occurrence.day != day) {
      if (day.year != 0) html += "</ol>\n";
      day = occurrence.day;
      html += "<h2>" + DayTitle(day) + "</h2>\n<ol class=\"timeline\">\n";
    }
    AppendRow(html, occurrence.time, occurrence.event->description,
              SunText(static_cast<OffsetBase>(occurrence.event->offset)));
  }
  if (day.year != 0) html += "</ol>\n";
  if (listing.IsTruncated()) html += "<p>There is more than can be shown here.</p>\n";
}

void AppendHouse(std::string& html, House& house) {
  const HousePlace& where = house.WhereItIs();
  html += "<p>It is " + ClockText(std::time(nullptr)) + " in " + EscapedHtml(TimeZoneText()) +
          ". The house is at " + PlaceText(where.place) +
          (where.guessed ? ", which was guessed from the time zone" : "") + ".</p>\n";
  if (const auto away = house.AwayUntil(); away && *away > house.TodayDate()) {
    html += "<p class=\"held\">Away until " + LongDayText(*away) + ": nothing acts.</p>\n";
  }
}

void GetAgenda(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  HttpResponse response;
  response.contentType = "text/html; charset=utf-8";
  response.body = AgendaHtml(api.house);
  respond(std::move(response));
}

}  // namespace

std::string EscapedHtml(std::string_view text) {
  std::string escaped;
  for (const char c : Printable(text)) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\'':
        escaped += "&#39;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

std::string AgendaHtml(House& house) {
  const std::string name = EscapedHtml(house.Name());
  std::string html =
      "<!doctype html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
      name +
      "</title>\n<link rel=\"icon\" href=\"icon.svg\">\n"
      "<link rel=\"stylesheet\" href=\"style.css\">\n"
      "<link rel=\"stylesheet\" href=\"views.css\">\n</head>\n<body "
      "class=\"agenda\">\n<main>\n<h1>" +
      name + "</h1>\n";
  AppendHouse(html, house);
  AppendToday(html, house);
  AppendDaysAfter(html, house);
  html += "<p><a href=\"./\">The whole page</a> wants scripts.</p>\n</main>\n</body>\n</html>\n";
  return html;
}

void AddAgendaPage(Routes& routes, const SharedContext& api) {
  HttpRoute route;
  route.method = "GET";
  route.path = "/agenda";
  route.handler = Handle(api, GetAgenda);
  routes.push_back(std::move(route));
}

}  // namespace controller
