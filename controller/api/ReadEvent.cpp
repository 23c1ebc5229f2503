// An event as requests describe it.

#include <algorithm>
#include <limits>

#include "controller/Printable.h"
#include "controller/Utf8.h"
#include "controller/api/EventFields.h"
#include "controller/api/EventJson.h"
#include "controller/json/ObjectReader.h"
#include "controller/json/ShownJson.h"
#include "controller/programming/ProgrammingJson.h"

namespace controller {

namespace {

using nlohmann::json;
using Need = ObjectReader::Need;

/// The value of a field that has to be there.
const json* Demanded(ObjectReader& reader, const char* name, const std::string& what) {
  const json* value = reader.Value(name);
  if (value == nullptr) {
    reader.Complain(name, (reader.Has(name) ? "is null; give " : "is missing; give ") + what);
  }
  return value;
}

void ReadDescription(ObjectReader& reader, FieldErrors& errors, EventElement& event) {
  const auto text = reader.Text("description", Need::kDemanded, 1, kMostDescription);
  if (!text) return;
  event.description = *text;
  CheckDescriptionText(*text, errors);
}

/// One that takes the place of another has to say it: today would move it.
void ReadStart(ObjectReader& reader, EventUse use, const DayFields& today, EventElement& event) {
  event.start = today;
  const auto day =
      reader.Day("start", use == EventUse::kReplace ? Need::kDemanded : Need::kOptional);
  if (!day) return;
  event.start = *day;
  if (event.start >= kFirstStart) return;
  reader.Complain("start",
                  "is " + Quoted(DayText(*day)) + "; give " + DayText(kFirstStart) + " or later");
}

/// "at" and "minutes" say the same; both together only where they agree.
void ReadClock(ObjectReader& reader, EventElement& event) {
  const auto at = reader.TimeOfDay("at", Need::kOptional);
  const auto minutes =
      reader.Whole("minutes", Need::kOptional, kLeastClockMinutes, kMostClockMinutes);
  const bool hasAt = reader.Has("at") && !reader.IsNull("at");
  const bool hasMinutes = reader.Has("minutes") && !reader.IsNull("minutes");
  if (!hasAt && !hasMinutes) {
    return reader.Complain("at",
                           "is missing; give a time \"HH:MM\", 00:00 to 23:59, or "
                           "\"minutes\" after midnight");
  }
  if (at && minutes && *at != *minutes) {
    return reader.Complain("minutes", "is " + std::to_string(*minutes) + " where \"at\" is " +
                                          Quoted(HourMinuteText(*at)) + "; give one of them");
  }
  if (at) event.offset_minutes = *at;
  if (minutes) event.offset_minutes = static_cast<int>(*minutes);
}

void ReadSunOffset(ObjectReader& reader, EventElement& event) {
  const auto minutes = reader.Whole("minutes", Need::kOptional, -kMostSunMinutes, kMostSunMinutes);
  if (minutes) event.offset_minutes = static_cast<int>(*minutes);
  if (reader.Has("at") && !reader.IsNull("at")) {
    reader.Complain("at",
                    "is for the base \"clock\" only; give \"minutes\" after the sun's time, "
                    "negative before it");
  }
}

void ReadTime(ObjectReader& event, FieldErrors& errors, EventElement& read) {
  const json* value = Demanded(event, "time", "an object with \"base\" and \"at\" or \"minutes\"");
  if (value == nullptr) return;
  ObjectReader reader(*value, event.PointerTo("time"), errors);
  const auto base = reader.Word("base", Need::kDemanded, kBaseNames);
  if (base) {
    read.offset = static_cast<int>(*base);
    *base == 0 ? ReadClock(reader, read) : ReadSunOffset(reader, read);
  } else {
    reader.Value("at");
    reader.Value("minutes");
  }
  const auto spread = reader.Whole("spread", Need::kOptional, 0, kMostSpread);
  read.randomize = static_cast<int>(spread.value_or(0));
  reader.NoOthers();
}

std::string WeekdayList() {
  std::string list;
  for (const std::string& name : kWeekdayNames) list += (list.empty() ? "" : ", ") + name;
  return list;
}

void ReadWeekdays(ObjectReader& reader, FieldErrors& errors, EventElement& event) {
  const json* on = Demanded(reader, "on", "a list of " + WeekdayList());
  if (on == nullptr) return;
  if (!on->is_array() || on->empty()) {
    return reader.Complain("on", "is " + ShownJson(*on) + "; give a list of " + WeekdayList());
  }
  for (std::size_t i = 0; i < on->size(); ++i) {
    const json& name = (*on)[i];
    const std::string pointer = reader.PointerTo("on") + '/' + std::to_string(i);
    const auto found = name.is_string()
                           ? std::find(kWeekdayNames.begin(), kWeekdayNames.end(), name)
                           : kWeekdayNames.end();
    if (found == kWeekdayNames.end()) {
      errors.push_back({pointer, "is " + ShownJson(name) + "; give one of " + WeekdayList()});
      continue;
    }
    const unsigned bit = 1u << (found - kWeekdayNames.begin());
    if ((event.daymask & bit) != 0) {
      errors.push_back({pointer, "is " + Quoted(*found) + " a second time; give it once"});
    }
    event.daymask |= bit;
  }
}

void ReadWeekOfMonth(const json& value, const std::string& pointer, FieldErrors& errors,
                     EventElement& event) {
  ObjectReader reader(value, pointer, errors);
  const json* week = Demanded(reader, "week", "1 to 4 or \"last\"");
  if (week != nullptr && *week == "last") {
    event.start_period = kLastWeek;
  } else if (week != nullptr) {
    const bool isNumber = week->is_number();
    const auto number =
        isNumber ? reader.Whole("week", Need::kDemanded, 1, kLastWeek - 1) : std::nullopt;
    if (!isNumber) reader.Complain("week", "is " + ShownJson(*week) + "; give 1 to 4 or \"last\"");
    if (number) event.start_period = static_cast<int>(*number);
  }
  const auto weekday = reader.Word("weekday", Need::kDemanded, kWeekdayNames);
  if (weekday) event.start_weekday = static_cast<int>(*weekday) + 1;
  reader.NoOthers();
}

/// A field that only some units have; the others must do without.
bool BelongsTo(ObjectReader& reader, const char* name, bool allowed, const std::string& whose) {
  const bool given = reader.Has(name) && !reader.IsNull(name);
  if (given && !allowed) {
    reader.Complain(name, "belongs to " + whose + " only; leave it out, or make it null");
  }
  return given && allowed;
}

void ReadUntil(ObjectReader& reader, EventElement& event) {
  event.end = reader.Day("until", Need::kOptional);
  if (!event.end || *event.end >= event.start) return;
  reader.Complain("until", "is " + Quoted(DayText(*event.end)) + ", before the start on " +
                               DayText(event.start) + "; give that day or a later one");
}

void ReadRepeat(ObjectReader& event, FieldErrors& errors, EventElement& read) {
  const json* value = event.Value("repeat");
  if (value == nullptr) return;
  ObjectReader reader(*value, event.PointerTo("repeat"), errors);
  const auto unit = reader.Word("unit", Need::kDemanded, kUnitNames);
  const auto every = reader.Whole("every", Need::kOptional, 1, kMostEvery);
  read.rate = static_cast<int>(every.value_or(1));
  if (unit) {
    read.frequency = static_cast<int>(*unit) + 1;
    const bool weekly = Repeats(read, RepeatKind::kWeekly);
    BelongsTo(reader, "on", weekly, "weeks");
    if (weekly) ReadWeekdays(reader, errors, read);
    const bool byMonth = Repeats(read, RepeatKind::kMonthly) || Repeats(read, RepeatKind::kYearly);
    if (BelongsTo(reader, "nth", byMonth, "months and years")) {
      ReadWeekOfMonth(*reader.Value("nth"), reader.PointerTo("nth"), errors, read);
    }
  } else {
    reader.Value("on");
    reader.Value("nth");
  }
  ReadUntil(reader, read);
  reader.NoOthers();
}

void ReadId(ObjectReader& reader, EventUse use, EventElement& event) {
  if (use == EventUse::kCreate) {
    if (reader.Has("id") && !reader.IsNull("id")) {
      reader.Complain("id", "is given by the controller; leave it out");
    }
    return;
  }
  const auto id = reader.Whole("id", Need::kOptional, 1, std::numeric_limits<long>::max());
  if (id) event.eventid = static_cast<unsigned long>(*id);
}

/// What answers hold beside an event's own fields, and nobody can give.
void RefuseAnswers(ObjectReader& reader) {
  for (const char* name : {"next", "odd"}) {
    reader.Value(name);
    if (reader.Has(name)) reader.Complain(name, "is for answers only; leave it out");
  }
}

bool IsBlank(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const Utf8Char character = DecodeUtf8(text, at);
    if (!character.valid || !IsInvisible(character.code)) return false;
    at += character.length;
  }
  return true;
}

}  // namespace

void CheckDescriptionText(const std::string& text, FieldErrors& errors) {
  if (IsBlank(text)) {
    errors.push_back({"/description", "is nothing that can be seen; give a name"});
  }
  if (text == kNeverPersisted) {
    errors.push_back(
        {"/description",
         "is " + Quoted(text) + ", and events of that name are never kept; give another"});
  }
}

EventBody ReadEventBody(const json& value, EventUse use, const DayFields& today,
                        FieldErrors& errors) {
  EventBody body;
  ObjectReader reader(value, "", errors);
  if (!value.is_object()) return body;
  ReadId(reader, use, body.event);
  ReadDescription(reader, errors, body.event);
  ReadStart(reader, use, today, body.event);
  ReadTime(reader, errors, body.event);
  ReadRepeat(reader, errors, body.event);
  const json* programming = reader.Value("programming");
  if (programming != nullptr && use == EventUse::kReplace) {
    reader.Complain("programming", "is changed at /events/{id}/programming; leave it out");
  } else if (programming != nullptr) {
    body.programming = ReadProgramming(*programming, reader.PointerTo("programming"), errors);
  }
  RefuseAnswers(reader);
  reader.NoOthers();
  return body;
}

json PatchedEvent(json document, const json& patch) {
  if (patch.is_object() && document.contains("time")) {
    const auto time = patch.find("time");
    json& before = document["time"];
    if (time != patch.end() && time->is_object()) {
      const bool says = time->contains("at") || time->contains("minutes");
      const bool turns = time->contains("base") && (*time)["base"] != before["base"];
      if (says || turns) before.erase("minutes");
    }
  }
  document.merge_patch(patch);
  return document;
}

}  // namespace controller
