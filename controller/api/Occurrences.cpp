// /occurrences: when events come, over a span of days.

#include <algorithm>
#include <limits>

#include "controller/LocalTimeText.h"
#include "controller/Printable.h"
#include "controller/api/ApiContext.h"
#include "controller/api/EventFields.h"
#include "controller/api/EventJson.h"
#include "controller/api/JsonText.h"
#include "controller/api/OccurrenceListing.h"

namespace controller {

namespace {

constexpr long kMostLimit = 10000;
constexpr long kUsualLimit = 1000;
constexpr int kMostYears = 10;
/// A week, where no end is given.
constexpr long kUsualDays = 6;

struct Wanted {
  DaySpan days;
  std::size_t limit = 0;
  unsigned long event = 0;
};

/// The same day so many years later; of 29 February the day after, where there is none.
DayFields YearsAfter(const DayFields& day, int years) {
  return DaysAfter({day.year + years, day.month, 1}, day.day - 1);
}

Wanted ReadWanted(const HttpRequest& request) {
  QueryReader query(request);
  Wanted wanted;
  wanted.days.from = query.Day("from").value_or(LocalDay(std::time(nullptr)));
  wanted.days.to =
      query.Day("to").value_or(std::min(DaysAfter(wanted.days.from, kUsualDays), kLastDayOfAll));
  wanted.limit =
      static_cast<std::size_t>(query.Whole("limit", 1, kMostLimit).value_or(kUsualLimit));
  wanted.event = static_cast<unsigned long>(
      query.Whole("event", 1, std::numeric_limits<long>::max()).value_or(0));
  query.NoOthers();
  const std::string to = DayText(wanted.days.to);
  if (wanted.days.to < wanted.days.from) {
    QueryReader::Refuse("to", to, DayText(wanted.days.from) + ", the first day, or a later one");
  }
  const DayFields last = YearsAfter(wanted.days.from, kMostYears);
  if (wanted.days.to > last) {
    QueryReader::Refuse("to", to, DayText(last) + " or earlier: ten years are listed at most");
  }
  return wanted;
}

void AppendOccurrence(std::string& out, const Occurrence& occurrence) {
  const EventElement& event = *occurrence.event;
  out += "{\"event\":" + std::to_string(event.eventid) + ",\"description\":";
  AppendJsonString(out, event.description);
  out += ",\"date\":\"" + DayText(occurrence.day) + "\",\"time\":";
  AppendJsonMoment(out, occurrence.time);
  out += ",\"base\":";
  if (event.offset >= 0 && event.offset < static_cast<int>(kBaseNames.size())) {
    AppendJsonString(out, kBaseNames[static_cast<std::size_t>(event.offset)]);
  } else {
    out += "null";
  }
  out += '}';
}

void ListOccurrences(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  const Wanted wanted = ReadWanted(request);
  if (wanted.event != 0) FindEvent(api.house, wanted.event);
  const OccurrenceListing listing(api.house, wanted.days, wanted.limit, wanted.event);
  std::string body = "{\"occurrences\":";
  AppendJsonList(body, listing.Found(), AppendOccurrence);
  body += listing.IsTruncated() ? ",\"truncated\":true}" : ",\"truncated\":false}";
  respond(JsonAnswer(std::move(body)));
}

}  // namespace

void AddOccurrenceRoutes(Routes& routes, const SharedContext& api) {
  AddRoute(routes, "GET", "/occurrences", Role::kView, BodyKind::kNone,
           Handle(api, ListOccurrences));
}

}  // namespace controller
