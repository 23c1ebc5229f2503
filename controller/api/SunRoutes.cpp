// /sun: sunrise and sunset, as the scheduler has them.

#include "controller/LocalTimeText.h"
#include "controller/api/ApiContext.h"
#include "controller/api/JsonText.h"
#include "controller/api/OccurrenceTime.h"
#include "controller/api/SunEstimate.h"
#include "controller/json/ObjectReader.h"

namespace controller {

namespace {

struct SunDay {
  std::time_t sunrise = 0;
  std::time_t sunset = 0;
  Polar polar = Polar::kNo;
};

std::time_t SunTime(const VxXML::INode& answer, const char* name, OffsetBase base,
                    const DayFields& day, const Place& place) {
  const std::time_t estimate = SunEstimate(day, base, place);
  const VxXML::INode* time = answer.GetChild(name);
  if (time == nullptr) return estimate;
  return InstantNear(estimate, time->GetInt("hour"), time->GetInt("min"));
}

SunDay SunOn(House& house, const DayFields& day) {
  const Place& place = house.WhereItIs().place;
  const auto answer =
      house.Scheduler().Request("GET_SUNRISE_SUNSET", {{"DAY", std::to_string(day.day)},
                                                       {"MONTH", std::to_string(day.month)},
                                                       {"YEAR", std::to_string(day.year)}});
  if (!answer) throw Problem("not-ready", "the scheduler has no answer about the sun");
  return {SunTime(*answer, "sunrise", OffsetBase::kSunrise, day, place),
          SunTime(*answer, "sunset", OffsetBase::kSunset, day, place), PolarOn(day, place)};
}

void AppendSun(std::string& out, const SunDay& sun) {
  out += "\"sunrise\":";
  AppendJsonMoment(out, sun.sunrise);
  out += ",\"sunset\":";
  AppendJsonMoment(out, sun.sunset);
  out += ",\"polar\":";
  switch (sun.polar) {
    case Polar::kNo:
      out += "null";
      return;
    case Polar::kDay:
      out += "\"day\"";
      return;
    case Polar::kNight:
      out += "\"night\"";
      return;
  }
}

void GetSun(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  QueryReader query(request);
  const DayFields day = query.Day("date").value_or(LocalDay(std::time(nullptr)));
  query.NoOthers();
  std::string body = "{\"date\":\"" + DayText(day) + "\",";
  AppendSun(body, SunOn(api.house, day));
  body += ",\"place\":" + JsonDump(PlaceJson(api.house.WhereItIs().place)) + '}';
  respond(JsonAnswer(std::move(body)));
}

long OffsetMinutes(const DayFields& day) {
  const std::time_t noon = LocalInstant(day, 12, 0);
  std::tm fields{};
  return localtime_r(&noon, &fields) == nullptr ? 0 : fields.tm_gmtoff / 60;
}

void GetSunYear(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  QueryReader query(request);
  const int thisYear = LocalDay(std::time(nullptr)).year;
  const int year = static_cast<int>(query.Whole("year", 1970, 9999).value_or(thisYear));
  query.NoOthers();
  std::string body = "{\"year\":" + std::to_string(year) + ",\"days\":[";
  for (DayFields day{year, 1, 1}; day.year == year; day = DaysAfter(day, 1)) {
    body += "{\"date\":\"" + DayText(day) + "\",";
    AppendSun(body, SunOn(api.house, day));
    body += ",\"offset\":" + std::to_string(OffsetMinutes(day)) + "},";
  }
  body.back() = ']';
  respond(JsonAnswer(body + '}'));
}

}  // namespace

void AddSunRoutes(Routes& routes, const SharedContext& api) {
  AddRoute(routes, "GET", "/sun", Role::kView, BodyKind::kNone, Handle(api, GetSun));
  AddRoute(routes, "GET", "/sun/year", Role::kView, BodyKind::kNone, Handle(api, GetSunYear));
}

}  // namespace controller
