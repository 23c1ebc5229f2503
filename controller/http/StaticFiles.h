#pragma once

#include <span>

#include "controller/http/Assets.h"
#include "controller/http/HttpServer.h"

namespace controller {

/// Adds the page to the server's table: each of `assets` under its path, and "/index.html" also as
/// "/". The assets must outlive the server.
void AddStaticFiles(HttpServer& server, std::span<const Asset> assets = Assets());

/// Whether an Accept-Encoding field allows gzip; empty: there is none.
bool AcceptsGzip(std::string_view acceptEncoding);

}  // namespace controller
