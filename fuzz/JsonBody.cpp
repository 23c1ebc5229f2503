// The door of the API: the body of a request that describes an event, or what one does.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "controller/LocalTimeText.h"
#include "controller/api/CivilRule.h"
#include "controller/api/EventJson.h"
#include "controller/api/EventSentence.h"
#include "controller/json/StrictJson.h"
#include "controller/programming/ProgrammingJson.h"
#include "fuzz/Property.h"

namespace {

using namespace controller;

constexpr DayFields kToday{2026, 11, 20};

void CheckErrors(const FieldErrors& errors) {
  for (const FieldError& error : errors) {
    fuzz::Require(error.pointer.empty() || error.pointer.starts_with('/'), "a pointer is one");
    fuzz::Require(!error.detail.empty(), "an error has a reason");
    fuzz::Require(error.detail.find('\n') == std::string::npos, "a reason is one line");
  }
  fuzz::Require(errors.empty() || !ErrorText(errors).empty(), "errors can be told");
}

std::string Written(const EventElement& event) {
  std::string text;
  AppendEventJson(text, event, {});
  return text;
}

EventElement ReadAgain(const nlohmann::json& document) {
  FieldErrors errors;
  const EventElement event = ReadEventBody(document, EventUse::kReplace, kToday, errors).event;
  fuzz::RequireEqual(ErrorText(errors), "", "what was written is taken");
  return event;
}

void CheckSpans(const EventElement& event) {
  const CivilRule rule(event);
  DayFields from = event.start;
  for (int i = 0; i < 30; ++i) {
    const auto span = rule.NextSpan(from);
    if (!span) return;
    fuzz::Require(span->from >= from && span->to >= span->from, "spans go on");
    fuzz::Require(span->to <= rule.LastDay(), "nothing comes after the last day");
    if (span->to >= DayFields{9999, 12, 31}) return;
    from = DaysAfter(span->to, 1);
  }
}

void CheckEvent(const nlohmann::json& document) {
  FieldErrors errors;
  const EventBody body = ReadEventBody(document, EventUse::kPreview, kToday, errors);
  CheckErrors(errors);
  if (!errors.empty()) return;
  const EventElement& event = body.event;
  const std::string text = Written(event);
  fuzz::Require(!IsOdd(event), "what is taken can be said");
  fuzz::RequireEqual(Written(ReadAgain(nlohmann::json::parse(text))), text, "it comes back");
  fuzz::RequireEqual(Written(ReadAgain(EventDocument(event))), text, "a patch begins with it");
  const auto kept = VxXML::CreateXmlDocument(MakeEventElement(event)->ToString());
  fuzz::Require(bool(kept), "XML can hold it");
  fuzz::RequireEqual(Written(ReadEventElement(*kept->GetRoot())), text, "XML holds it");
  fuzz::Require(EventSentence(event).find('\n') == std::string::npos, "it is a sentence");
  CheckSpans(event);
}

void CheckProgramming(const nlohmann::json& document) {
  FieldErrors errors;
  const Programming programming = ReadProgramming(document, "", errors);
  CheckErrors(errors);
  if (!errors.empty()) return;
  const std::string text = ProgrammingJson(programming).dump();
  const Programming again = ReadProgramming(nlohmann::json::parse(text), "", errors);
  fuzz::RequireEqual(ErrorText(errors), "", "what an event does is taken again");
  fuzz::RequireEqual(ProgrammingJson(again).dump(), text, "what an event does comes back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const fuzz::Surroundings surroundings(bytes);
  const auto parsed = ParseStrictJson(bytes);
  if (const auto* fault = std::get_if<JsonFault>(&parsed)) {
    fuzz::Require(!fault->text.empty(), "a fault has a reason");
    return 0;
  }
  const auto& document = std::get<nlohmann::json>(parsed);
  fuzz::Require(nlohmann::json::accept(bytes), "what is taken is JSON");
  CheckEvent(document);
  CheckProgramming(document);
  return 0;
}
