#include "controller/cli/net/ClientOptions.h"

#include <CLI/CLI.hpp>
#include <array>
#include <memory>
#include <pwd.h>
#include <string_view>
#include <unistd.h>
#include <vector>

#include "controller/Curl.h"
#include "controller/Failure.h"
#include "controller/Files.h"
#include "controller/Printable.h"

namespace controller::cli {

namespace {

constexpr std::size_t kLongestToken = 4096;
constexpr std::size_t kLongestName = 60;

/// Gives back what libcurl takes an address apart with.
struct UrlFree {
  void operator()(CURLU* url) const { Curl::Load().url_cleanup(url); }
};
using Url = std::unique_ptr<CURLU, UrlFree>;

/// Empty where the address has no such part.
std::string PartOf(const Url& url, CURLUPart part) {
  char* text = nullptr;
  if (Curl::Load().url_get(url.get(), part, &text, 0) != CURLUE_OK) return {};
  std::string copy = text;
  Curl::Load().free(text);
  return copy;
}

Url TakeApart(const std::string& address) {
  Url url(Curl::Load().url());
  if (!url) throw Failure("there is no memory left");
  const CURLUcode code =
      Curl::Load().url_set(url.get(), CURLUPART_URL, address.c_str(), CURLU_NON_SUPPORT_SCHEME);
  if (code != CURLUE_OK) url.reset();
  return url;
}

[[noreturn]] void FailAddress(const std::string& url, const std::string& problem) {
  throw Failure("--url " + Quoted(url) + ' ' + problem + "; give http://127.0.0.1:7440 for example",
                ExitStatus::kBadInput);
}

/// What cannot be a token never leaves this process; it might be some other secret.
std::string CheckedToken(const std::string& token, const std::string& source) {
  for (const char c : token) {
    if (c > ' ' && c < 0x7F) continue;
    throw Failure(source + " holds no token: one is a word of letters, digits and signs",
                  ExitStatus::kBadInput);
  }
  return token;
}

std::string TokenOfFile(const std::string& file) {
  std::string text = ReadWhole(file, kLongestToken);
  const std::size_t end = text.find_last_not_of(" \t\r\n");
  text.resize(end == std::string::npos ? 0 : end + 1);
  if (text.empty()) {
    throw Failure("--token-file " + Quoted(file) + " is empty", ExitStatus::kBadInput);
  }
  return CheckedToken(text, "--token-file " + Quoted(file));
}

}  // namespace

void AddClientOptions(CLI::App& command, ClientOptions& options) {
  constexpr const char* kGroup = "Options of all commands that talk to a controller";
  command.add_option("--url", options.url, "The controller's address. Default: " + options.url)
      ->type_name("URL")
      ->envname("VEXALINK_URL")
      ->group(kGroup);
  command
      .add_option(
          "--token", options.token,
          "The token that a controller wants which listens to other machines. Others on this "
          "machine can see it here; better is a file")
      ->type_name("TOKEN")
      ->envname("VEXALINK_TOKEN")
      ->group(kGroup);
  command
      .add_option("--token-file", options.tokenFile,
                  "A file that holds the token; it counts before the others")
      ->type_name("FILE")
      ->group(kGroup);
  command.add_flag("--json", options.json, "Write JSON for programs")->group(kGroup);
  command.add_option("--color", options.color, "Colours: on a terminal only (auto), or as said")
      ->type_name("auto|always|never")
      ->check(CLI::IsMember({"auto", "always", "never"}).description(""))
      ->group(kGroup);
}

std::string ClientToken(const ClientOptions& options) {
  if (!options.tokenFile.empty()) return TokenOfFile(options.tokenFile);
  return CheckedToken(options.token, "--token or VEXALINK_TOKEN");
}

std::string ClientAddress(const std::string& given) {
  if (given.empty()) FailAddress(given, "is empty");
  const bool complete = given.find("://") != std::string::npos;
  std::string address = complete ? given : "http://" + given;
  while (!address.empty() && address.back() == '/') address.pop_back();
  const Url url = TakeApart(address);
  if (!url || PartOf(url, CURLUPART_HOST).empty()) FailAddress(given, "is no address");
  const std::string scheme = PartOf(url, CURLUPART_SCHEME);
  if (scheme != "http" && scheme != "https") FailAddress(given, "is neither http nor https");
  if (!PartOf(url, CURLUPART_QUERY).empty() || !PartOf(url, CURLUPART_FRAGMENT).empty()) {
    FailAddress(given, "goes on with ? or #");
  }
  if (!PartOf(url, CURLUPART_USER).empty() || !PartOf(url, CURLUPART_PASSWORD).empty()) {
    // Not quoted: it holds a password.
    throw Failure("--url holds a user's name; a controller wants a token, give it by --token-file",
                  ExitStatus::kBadInput);
  }
  return address;
}

bool IsLoopback(const std::string& address) {
  const Url url = TakeApart(address);
  const std::string host = url ? PartOf(url, CURLUPART_HOST) : "";
  const bool number = host.find_first_not_of("0123456789.") == std::string::npos;
  return host == "localhost" || host == "[::1]" || (number && host.starts_with("127."));
}

std::string ClientActor() {
  const uid_t user = geteuid();
  std::array<char, 4096> buffer{};
  passwd entry{};
  passwd* found = nullptr;
  std::string name;
  if (getpwuid_r(user, &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr) {
    name = Printable(found->pw_name);
  }
  // The controller takes 64 bytes. Whole characters only.
  while (name.size() > kLongestName) {
    while ((name.back() & 0xC0) == 0x80) name.pop_back();
    name.pop_back();
  }
  return "cli:" + (name.empty() ? std::to_string(user) : name);
}

}  // namespace controller::cli
