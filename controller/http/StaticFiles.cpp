#include "controller/http/StaticFiles.h"

#include <string>

#include "controller/http/EntityTag.h"
#include "controller/http/UrlText.h"

namespace controller {

namespace {

/// "q=0" and "q=0.000" say no.
bool IsRefused(std::string_view parameters) {
  const std::size_t at = parameters.find("q=");
  if (at == std::string_view::npos) return false;
  const std::string_view weight = WithoutBlanks(parameters.substr(at + 2));
  return weight.find_first_not_of("0.") == std::string_view::npos;
}

HttpResponse Serve(const Asset& asset, const HttpRequest& request) {
  const auto accepted = request.headers.find("accept-encoding");
  const bool compressed =
      !asset.gzip.empty() && accepted != request.headers.end() && AcceptsGzip(accepted->second);
  HttpResponse response;
  response.contentType = asset.mediaType;
  response.headers.emplace_back("Vary", "Accept-Encoding");
  response.headers.emplace_back(
      "Cache-Control", asset.immutable ? "public, max-age=31536000, immutable" : "no-cache");
  // What is sent compressed is another content, so it has another tag.
  std::string tag(asset.tag);
  if (compressed) {
    tag.insert(tag.size() - 1, "-gz");
    response.headers.emplace_back("Content-Encoding", "gzip");
  }
  response.headers.emplace_back("ETag", tag);
  if (IsKnownToClient(request, tag)) {
    response.status = 304;
    return response;
  }
  response.body = compressed ? asset.gzip : asset.content;
  return response;
}

void AddFile(HttpServer& server, const std::string& path, const Asset& asset) {
  HttpRoute route;
  route.method = "GET";
  route.path = path;
  route.open = true;
  route.always = true;
  route.handler = [&asset](const HttpRequest& request, Respond respond) {
    respond(Serve(asset, request));
  };
  server.Add(std::move(route));
}

}  // namespace

bool AcceptsGzip(std::string_view acceptEncoding) {
  bool any = false;
  bool anySaid = false;
  while (!acceptEncoding.empty()) {
    const std::size_t end = acceptEncoding.find(',');
    const std::string_view item = acceptEncoding.substr(0, end);
    acceptEncoding =
        end == std::string_view::npos ? std::string_view() : acceptEncoding.substr(end + 1);
    const std::size_t semicolon = item.find(';');
    const std::string name = LowerCase(WithoutBlanks(item.substr(0, semicolon)));
    const bool allowed =
        semicolon == std::string_view::npos || !IsRefused(item.substr(semicolon + 1));
    if (name == "gzip" || name == "x-gzip") return allowed;
    if (name == "*") {
      any = allowed;
      anySaid = true;
    }
  }
  return anySaid && any;
}

void AddStaticFiles(HttpServer& server, std::span<const Asset> assets) {
  for (const Asset& asset : assets) {
    AddFile(server, std::string(asset.path), asset);
    if (asset.path == "/index.html") AddFile(server, "/", asset);
  }
}

}  // namespace controller
