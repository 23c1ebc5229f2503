#pragma once

#include <ctime>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "controller/EventElement.h"
#include "controller/json/FieldErrors.h"
#include "controller/programming/Programming.h"

namespace controller {

/// An event as a request describes it.
struct EventBody {
  /// "eventid" as it was given, 0 where it was not.
  EventElement event;
  /// Only where it was given, and may be.
  std::optional<Programming> programming;
};

/// What a request wants of the event that it describes.
enum class EventUse {
  /// To add it: without an id, with its programming if need be.
  kCreate,
  /// To put it in the place of another: without programming, which stays.
  kReplace,
  /// To see what would come of it: with the id of the one that it would replace, if any.
  kPreview,
};

/// Reads an event in the form of docs/api.md; `today` is where a new one starts if it does not say.
/// What is wrong is added to `errors`, and the answer is then of no use.
EventBody ReadEventBody(const nlohmann::json& value, EventUse use, const DayFields& today,
                        FieldErrors& errors);

/// What is wrong with a description of the right length and characters.
void CheckDescriptionText(const std::string& text, FieldErrors& errors);

/// Whether the form of docs/api.md cannot say what the event is, so that reading what
/// `AppendEventJson` writes of it would be refused or would give another.
bool IsOdd(const EventElement& event);

/// The fields that a request may hold, "time.minutes" in the place of "time.at": what a merge patch
/// is applied to.
nlohmann::json EventDocument(const EventElement& event);

/// `document` with `patch` (RFC 7396) on it. Other minutes take the place of those before, however
/// either is said, and another base leaves the minutes behind.
nlohmann::json PatchedEvent(nlohmann::json document, const nlohmann::json& patch);

/// What an answer tells of an event beside its own fields.
struct EventAnswerParts {
  /// The outer one empty: it is not told. The inner one: it does not come again.
  std::optional<std::optional<std::time_t>> next;
  /// Null: it is not told.
  const Programming* programming = nullptr;
};
/// Appends the event as answers hold it.
void AppendEventJson(std::string& out, const EventElement& event, const EventAnswerParts& parts);

/// "07:30"; `minutes` is 0 .. 1439.
std::string HourMinuteText(int minutes);

}  // namespace controller
