#pragma once

#include <string>

#include "controller/House.h"
#include "controller/http/EventStream.h"
#include "controller/http/HttpServer.h"

namespace controller {

/// All that is counted, for Prometheus.
std::string MetricsOf(House& house, const HttpServer& server, const EventStream& stream);

/// Adds /healthz (the loop turns), /readyz (and saving works) and /metrics to the server's table.
/// All of them must outlive the server's connections.
void AddMonitoring(HttpServer& server, House& house, const EventStream& stream);

}  // namespace controller
