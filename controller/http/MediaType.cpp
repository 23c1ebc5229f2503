#include "controller/http/MediaType.h"

#include <algorithm>

#include "controller/Printable.h"
#include "controller/http/Problem.h"

namespace controller {

namespace {

std::string Listed(const std::vector<std::string>& types) {
  std::string text;
  for (const std::string& type : types) text += (text.empty() ? "" : " or ") + type;
  return text.empty() ? "no body" : text;
}

std::string FieldOf(const RequestHead& head, const char* name) {
  const auto found = head.fields.find(name);
  return found == head.fields.end() ? "" : found->second;
}

/// The charset parameter in lower case; empty where there is none.
std::string Charset(const std::string& parameters) {
  const std::string lower = LowerCase(parameters);
  const std::size_t name = lower.find("charset=");
  if (name == std::string::npos) return "";
  std::string value = lower.substr(name + 8, lower.find(';', name) - name - 8);
  std::erase(value, '"');
  return std::string(WithoutBlanks(value));
}

}  // namespace

void CheckMediaType(const RequestHead& head, const std::vector<std::string>& types) {
  if (!head.HasBody()) return;
  const std::string given = FieldOf(head, "content-type");
  const std::size_t end = given.find(';');
  const std::string type = LowerCase(WithoutBlanks(std::string_view(given).substr(0, end)));
  if (std::find(types.begin(), types.end(), type) == types.end()) {
    throw Problem("unsupported-media-type",
                  given.empty() ? "Content-Type is missing; give " + Listed(types)
                                : "Content-Type is " + Quoted(given) + "; give " + Listed(types));
  }
  const std::string charset = end == std::string::npos ? "" : Charset(given.substr(end));
  if (!charset.empty() && charset != "utf-8" && charset != "utf8") {
    throw Problem("unsupported-media-type",
                  "the body is in " + Quoted(charset) + "; give it in UTF-8");
  }
  const std::string coding = LowerCase(FieldOf(head, "content-encoding"));
  if (!coding.empty() && coding != "identity") {
    throw Problem("unsupported-media-type",
                  "the body is encoded as " + Quoted(coding) + "; give it as it is");
  }
}

}  // namespace controller
