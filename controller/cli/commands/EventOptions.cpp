#include "controller/cli/commands/EventOptions.h"

#include <CLI/CLI.hpp>

#include "controller/Failure.h"
#include "controller/cli/parse/DurationText.h"
#include "controller/cli/parse/EveryText.h"
#include "controller/cli/parse/TextParts.h"
#include "controller/cli/parse/TimeText.h"

namespace controller::cli {

namespace {

constexpr long kMostSpread = 720;

long Spread(const std::string& text) {
  return ParseDuration("--spread", text, kSecondsPerMinute, 0, kMostSpread);
}

[[noreturn]] void FailUntil() {
  throw Failure("--until is for events that repeat; give --every too", ExitStatus::kBadInput);
}

bool IsNever(const std::string& text) { return LowerCase(text) == "never"; }

Json NewRepeat(const EventOptions& options, const HouseToday& today) {
  Json repeat = options.every ? ParseEvery("--every", *options.every) : Json(nullptr);
  if (!options.until || IsNever(*options.until)) return repeat;
  if (repeat.is_null()) FailUntil();
  repeat["until"] = ParseDay("--until", *options.until, today);
  return repeat;
}

Json TimePatch(const EventOptions& options) {
  Json time = Json::object();
  if (options.at) {
    time = ParseAt("--at", *options.at);
    time["at"] = nullptr;  // it would contradict the new minutes
  }
  if (options.spread) time["spread"] = Spread(*options.spread);
  return time;
}

/// What of the repeat is not said again must go: days of a week make no sense for a month.
Json RepeatPatch(const EventOptions& options, const HouseToday& today, const Json& event) {
  Json repeat = Json::object();
  bool repeats = event.contains("repeat") && !event["repeat"].is_null();
  if (options.every) {
    repeat = ParseEvery("--every", *options.every);
    repeats = !repeat.is_null();
    for (const char* name : {"on", "nth"}) {
      if (repeats && !repeat.contains(name)) repeat[name] = nullptr;
    }
  }
  if (!options.until) return repeat;
  if (IsNever(*options.until)) {
    if (repeats) repeat["until"] = nullptr;
    return repeat;
  }
  if (!repeats) FailUntil();
  repeat["until"] = ParseDay("--until", *options.until, today);
  return repeat;
}

}  // namespace

bool EventOptions::IsEmpty() const {
  return !description && !at && !every && !start && !until && !spread;
}

void AddEventOptions(CLI::App& command, EventOptions& options) {
  command
      .add_option("--at", options.at,
                  "When: 07:30, 7:30pm, noon, midnight, sunrise, sunset; sunset-30, sunset+1h30")
      ->type_name("TIME");
  command
      .add_option("--every", options.every,
                  "How it repeats: day, 3 days, week on mon, 2 weeks on mon,fri, weekday, weekend, "
                  "month (on the start's day), month on the 2nd tue, 2 months on the last fri, "
                  "year, year on the last sun; once")
      ->type_name("REPEAT");
  command
      .add_option("--start", options.start,
                  "The first day on which it may occur: 2026-11-21, today or tomorrow")
      ->type_name("DATE");
  command.add_option("--until", options.until, "The last day; never for no end")->type_name("DATE");
  command
      .add_option("--spread", options.spread,
                  "Each day a random number of minutes earlier or later, up to so many")
      ->type_name("MINUTES");
}

Json NewEvent(const EventOptions& options, const HouseToday& today) {
  Json event = {{"description", options.description.value_or("")}};
  if (options.start) event["start"] = ParseDay("--start", *options.start, today);
  event["time"] = ParseAt("--at", options.at.value_or(""));
  if (options.spread) event["time"]["spread"] = Spread(*options.spread);
  event["repeat"] = NewRepeat(options, today);
  return event;
}

Json EventPatch(const EventOptions& options, const HouseToday& today, const Json& event) {
  Json patch = Json::object();
  if (options.description) patch["description"] = *options.description;
  if (options.start) patch["start"] = ParseDay("--start", *options.start, today);
  const Json time = TimePatch(options);
  if (!time.empty()) patch["time"] = time;
  const Json repeat = RepeatPatch(options, today, event);
  if (repeat.is_null() || !repeat.empty()) patch["repeat"] = repeat;
  return patch;
}

Json PatchedEvent(const Json& event, const Json& patch) {
  Json patched = event;
  patched.merge_patch(patch);
  for (const char* name : {"next", "programming", "odd"}) patched.erase(name);
  if (patched.contains("time")) patched["time"].erase("at");
  return patched;
}

}  // namespace controller::cli
