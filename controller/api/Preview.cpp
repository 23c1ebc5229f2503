// /preview: what would come of an event that is not saved yet.

#include "controller/LocalTimeText.h"
#include "controller/Printable.h"
#include "controller/api/ApiContext.h"
#include "controller/api/EventJson.h"
#include "controller/api/EventProbe.h"
#include "controller/api/EventSentence.h"
#include "controller/api/JsonText.h"
#include "controller/api/PreviewWarnings.h"

namespace controller {

namespace {

constexpr std::size_t kShown = 10;

EventElement ReadPreviewed(House& house, const HttpRequest& request, std::time_t now) {
  FieldErrors errors;
  EventBody body = ReadEventBody(JsonBody(request), EventUse::kPreview, LocalDay(now), errors);
  const unsigned long id = body.event.eventid;
  if (id != 0 && !LookForEvent(house, id)) {
    errors.push_back({"/id", "is " + std::to_string(id) +
                                 ", and there is no such event; give that of the event which this "
                                 "would replace, or leave it out"});
  }
  ThrowIfWrong(errors);
  return body.event;
}

/// The warning that the description is another event's, where it is.
std::optional<PreviewWarning> Duplicate(House& house, const EventElement& event) {
  if (event.eventid != 0) {
    const auto before = LookForEvent(house, event.eventid);
    if (before && before->event.description == event.description) return std::nullopt;
  }
  try {
    CheckDescription(house, event);
  } catch (const Problem& problem) {
    return PreviewWarning{"duplicate", "the description " + Quoted(event.description) +
                                           " is another event's already; give another"};
  }
  return std::nullopt;
}

std::string PreviewText(const EventElement& event, const std::vector<ProbedOccurrence>& next,
                        const std::vector<PreviewWarning>& warnings) {
  EventAnswerParts parts;
  parts.next.emplace();
  if (!next.empty()) parts.next->emplace(next.front().time);
  std::string text = "{\"event\":";
  AppendEventJson(text, event, parts);
  text += ",\"sentence\":";
  AppendJsonString(text, EventSentence(event));
  text += ",\"occurrences\":";
  AppendJsonList(text, next, [](std::string& out, const ProbedOccurrence& occurrence) {
    out += "{\"date\":\"" + DayText(occurrence.day) + "\",\"time\":";
    AppendJsonMoment(out, occurrence.time);
    out += '}';
  });
  text += ",\"warnings\":";
  AppendJsonList(text, warnings, [](std::string& out, const PreviewWarning& warning) {
    out += "{\"code\":\"" + warning.code + "\",\"text\":";
    AppendJsonString(out, warning.text);
    out += '}';
  });
  return text + '}';
}

void Preview(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  NoQuery(request);
  const std::time_t now = std::time(nullptr);
  const EventElement event = ReadPreviewed(api.house, request, now);
  EventProbe probe(api.house, event);
  if (!probe.Stored() || !probe.Trouble().empty()) RefuseUnkept(probe.Trouble());
  const auto next = probe.Next(LocalDay(now), now, kShown);
  std::vector<PreviewWarning> warnings = PreviewWarnings(probe, next, now);
  if (auto duplicate = Duplicate(api.house, event)) warnings.push_back(*std::move(duplicate));
  respond(JsonAnswer(PreviewText(*probe.Stored(), next, warnings)));
}

}  // namespace

void AddPreviewRoutes(Routes& routes, const SharedContext& api) {
  AddRoute(routes, "POST", "/preview", Role::kView, BodyKind::kJson, Handle(api, Preview));
}

}  // namespace controller
