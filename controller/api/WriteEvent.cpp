// An event as answers hold it.

#include <array>
#include <cstdio>

#include "controller/Utf8.h"
#include "controller/api/EventFields.h"
#include "controller/api/EventJson.h"
#include "controller/api/JsonText.h"
#include "controller/json/ObjectReader.h"

namespace controller {

namespace {

bool IsDay(const DayFields& day) {
  return day.year >= 1970 && day <= kLastDayOfAll && day.day >= 1 &&
         day.day <= DaysOfMonth(day.year, day.month);
}

bool IsOneOf(int number, int least, int most) { return number >= least && number <= most; }

bool HasKnownBase(const EventElement& event) { return IsOneOf(event.offset, 0, 2); }
bool HasKnownUnit(const EventElement& event) { return IsOneOf(event.frequency, 1, 4); }
bool HasClockTime(const EventElement& event) {
  return event.offset == 0 && IsOneOf(event.offset_minutes, 0, kMinutesPerDay - 1);
}

bool IsGoodDescription(const std::string& text) {
  std::size_t count = 0;
  bool blank = true;
  for (std::size_t at = 0; at < text.size(); ++count) {
    const Utf8Char character = DecodeUtf8(text, at);
    const char32_t code = character.code;
    if (!character.valid || code < 0x20 || (code >= 0x7F && code <= 0x9F)) return false;
    if (code == 0xFFFE || code == 0xFFFF) return false;
    blank = blank && IsInvisible(code);
    at += character.length;
  }
  return !blank && count <= kMostDescription && text != kNeverPersisted;
}

bool IsGoodTime(const EventElement& event) {
  const bool clock = event.offset == 0;
  return HasKnownBase(event) && IsOneOf(event.randomize, 0, kMostSpread) &&
         IsOneOf(event.offset_minutes, clock ? kLeastClockMinutes : -kMostSunMinutes,
                 clock ? kMostClockMinutes : kMostSunMinutes);
}

bool IsGoodRepeat(const EventElement& event) {
  if (Repeats(event, RepeatKind::kOnce)) return true;
  if (!HasKnownUnit(event) || !IsOneOf(event.rate, 1, kMostEvery)) return false;
  if (event.end && (!IsDay(*event.end) || *event.end < event.start)) return false;
  if (Repeats(event, RepeatKind::kWeekly)) {
    return event.daymask != 0 && (event.daymask & ~kAllWeekdays) == 0;
  }
  return !IsByWeek(event) ||
         (IsOneOf(event.start_period, 1, kLastWeek) && IsOneOf(event.start_weekday, 1, 7));
}

void AppendNumber(std::string& out, const char* name, long value) {
  out += name;
  out += std::to_string(value);
}

void AppendDay(std::string& out, const DayFields& day) {
  if (!IsDay(day)) {
    out += "null";
    return;
  }
  out += '"';
  out += DayText(day);
  out += '"';
}

void AppendTime(std::string& out, const EventElement& event) {
  out += ",\"time\":{\"base\":";
  if (HasKnownBase(event)) {
    AppendJsonString(out, kBaseNames[static_cast<std::size_t>(event.offset)]);
  } else {
    out += "null";
  }
  if (HasClockTime(event)) out += ",\"at\":\"" + HourMinuteText(event.offset_minutes) + '"';
  AppendNumber(out, ",\"minutes\":", event.offset_minutes);
  AppendNumber(out, ",\"spread\":", event.randomize);
  out += '}';
}

void AppendWeekdays(std::string& out, unsigned mask) {
  out += ",\"on\":[";
  const char* comma = "";
  for (std::size_t i = 0; i < kWeekdayNames.size(); ++i) {
    if ((mask & (1u << i)) == 0) continue;
    out += comma;
    AppendJsonString(out, kWeekdayNames[i]);
    comma = ",";
  }
  out += ']';
}

void AppendWeekOfMonth(std::string& out, const EventElement& event) {
  out += ",\"nth\":{\"week\":";
  out += event.start_period == kLastWeek ? "\"last\"" : std::to_string(event.start_period);
  out += ",\"weekday\":";
  if (IsOneOf(event.start_weekday, 1, 7)) {
    AppendJsonString(out, kWeekdayNames[static_cast<std::size_t>(event.start_weekday) - 1]);
  } else {
    out += "null";
  }
  out += '}';
}

void AppendRepeat(std::string& out, const EventElement& event) {
  out += ",\"repeat\":";
  if (Repeats(event, RepeatKind::kOnce)) {
    out += "null";
    return;
  }
  out += "{\"unit\":";
  if (HasKnownUnit(event)) {
    AppendJsonString(out, kUnitNames[static_cast<std::size_t>(event.frequency) - 1]);
  } else {
    out += "null";
  }
  AppendNumber(out, ",\"every\":", event.rate);
  if (Repeats(event, RepeatKind::kWeekly)) AppendWeekdays(out, event.daymask);
  if (IsByWeek(event)) AppendWeekOfMonth(out, event);
  if (event.end) {
    out += ",\"until\":";
    AppendDay(out, *event.end);
  }
  out += '}';
}

void AppendProgrammingSummary(std::string& out, const Programming& programming) {
  out += ",\"programming\":{\"enabled\":";
  out += programming.enabled ? "true" : "false";
  out += ",\"paused_until\":";
  if (programming.pausedUntil) {
    AppendDay(out, *programming.pausedUntil);
  } else {
    out += "null";
  }
  out += ",\"skip_next\":";
  out += programming.skipNext ? "true" : "false";
  AppendNumber(out, ",\"actions\":", static_cast<long>(programming.actions.size()));
  out += '}';
}

}  // namespace

bool IsOdd(const EventElement& event) {
  return !IsGoodDescription(event.description) || !IsDay(event.start) ||
         event.start < kFirstStart || !IsGoodTime(event) || !IsGoodRepeat(event);
}

nlohmann::json EventDocument(const EventElement& event) {
  std::string text;
  AppendEventJson(text, event, {});
  nlohmann::json document = nlohmann::json::parse(text);
  document["time"].erase("at");
  document.erase("odd");
  if (event.eventid == 0) document.erase("id");
  return document;
}

void AppendEventJson(std::string& out, const EventElement& event, const EventAnswerParts& parts) {
  out += '{';
  if (event.eventid != 0) out += "\"id\":" + std::to_string(event.eventid) + ',';
  out += "\"description\":";
  AppendJsonString(out, event.description);
  out += ",\"start\":";
  AppendDay(out, event.start);
  AppendTime(out, event);
  AppendRepeat(out, event);
  if (IsOdd(event)) out += ",\"odd\":true";
  if (parts.next) {
    out += ",\"next\":";
    AppendJsonMoment(out, *parts.next);
  }
  if (parts.programming != nullptr) AppendProgrammingSummary(out, *parts.programming);
  out += '}';
}

std::string HourMinuteText(int minutes) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%02d:%02d", minutes / 60, minutes % 60);
  return text.data();
}

}  // namespace controller
