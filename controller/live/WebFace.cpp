#include "controller/live/WebFace.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "controller/EventElement.h"
#include "controller/Log.h"
#include "controller/http/Monitoring.h"
#include "controller/http/StaticFiles.h"

namespace controller {

WebFace::WebFace(event_base* base, House& house, const WebOptions& options,
                 const std::string& project)
    : house_(house),
      tokens_(house.Store().Database()),
      api_(house),
      stream_(base,
              [this](const HttpRequest& request) {
                return server_.IsStillAllowed(request, Role::kView);
              }),
      server_(base, {options.listen, options.allowedHosts, {}}, tokens_) {
  CheckTokensForListening(options.listen, tokens_, project);
  for (HttpRoute& route : api_.Routes()) server_.Add(std::move(route));
  server_.Add(stream_.Route("/api/v1/stream"));
  server_.HoldWhile([this] { return house_.WaitingFor(); });
  AddMonitoring(server_, house_, stream_);
  AddStaticFiles(server_);
  addresses_ = server_.Listen();
  house_.SetListener(this);
}

WebFace::~WebFace() { house_.SetListener(nullptr); }

void WebFace::OnEventChanged(Change change, unsigned long eventId) {
  const std::string event = change == Change::kDeleted ? "null" : api_.EventText(eventId);
  stream_.Publish("event", std::string("{\"change\":\"") + ChangeName(change) + "\",\"id\":" +
                               std::to_string(eventId) + ",\"event\":" + event + "}");
}

void WebFace::OnProgrammingChanged(unsigned long eventId) {
  stream_.Publish("programming", "{\"event\":" + std::to_string(eventId) +
                                     ",\"programming\":" + api_.ProgrammingText(eventId) + "}");
}

void WebFace::OnJournalRow(const JournalRow& row) {
  stream_.Publish("journal", api_.JournalRowText(row));
}

void WebFace::OnProjectChanged() { stream_.Publish("project", api_.ProjectText()); }

void WebFace::OnTodayChanged() {
  stream_.Publish("today", "{\"date\":\"" + DayText(house_.TodayDate()) + "\"}");
}

void WebFace::OnSaving(bool works, const std::string& why) {
  nlohmann::ordered_json json;
  json["ok"] = works;
  json["why"] = why;
  stream_.Publish("saving",
                  json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
}

void WebFace::OnScheduleReplaced() { stream_.PublishReset(); }

}  // namespace controller
