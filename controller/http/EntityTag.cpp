#include "controller/http/EntityTag.h"

#include <utility>
#include <vector>

#include "controller/Printable.h"
#include "controller/http/Digest.h"
#include "controller/http/Problem.h"
#include "controller/http/UrlText.h"

namespace controller {

namespace {

/// The tags of a list, as they stand there, `W/` included. What stands in quotes may hold commas.
std::vector<std::string> TagsOf(std::string_view list) {
  std::vector<std::string> tags;
  std::size_t begin = 0;
  bool quoted = false;
  for (std::size_t at = 0; at <= list.size(); ++at) {
    if (at < list.size() && list[at] == '"') quoted = !quoted;
    if (at < list.size() && (quoted || list[at] != ',')) continue;
    const std::string_view tag = WithoutBlanks(list.substr(begin, at - begin));
    if (!tag.empty()) tags.emplace_back(tag);
    begin = at + 1;
  }
  return tags;
}

const std::string* Field(const HttpRequest& request, const char* name) {
  const auto found = request.headers.find(name);
  return found == request.headers.end() ? nullptr : &found->second;
}

}  // namespace

std::string EntityTag(std::string_view content) { return "\"" + ContentHash(content) + "\""; }

void CheckIfMatch(const HttpRequest& request, const std::string& current) {
  const std::string* const given = Field(request, "if-match");
  if (given == nullptr) return;
  for (const std::string& tag : TagsOf(*given)) {
    if (!current.empty() && (tag == current || tag == "*")) return;
  }
  throw Problem("precondition-failed",
                current.empty() ? "If-Match is " + Quoted(*given) + ", but there is nothing"
                                : "If-Match is " + Quoted(*given) + ", but it is " +
                                      Quoted(current) + " now; read it again");
}

bool IsKnownToClient(const HttpRequest& request, const std::string& current) {
  const std::string* const given = Field(request, "if-none-match");
  if (given == nullptr || current.empty()) return false;
  for (const std::string& tag : TagsOf(*given)) {
    const std::string_view opaque =
        tag.starts_with("W/") ? std::string_view(tag).substr(2) : std::string_view(tag);
    if (opaque == current || tag == "*") return true;
  }
  return false;
}

HttpResponse WithTag(const HttpRequest& request, HttpResponse response, const std::string& tag) {
  response.headers.emplace_back("ETag", tag);
  // Kept by the client, but asked for each time.
  response.headers.emplace_back("Cache-Control", "no-cache");
  if (request.method != "GET" || response.status != 200 || !IsKnownToClient(request, tag)) {
    return response;
  }
  response.status = 304;
  response.body.clear();
  return response;
}

}  // namespace controller
