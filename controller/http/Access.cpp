#include "controller/http/Access.h"

#include "controller/Failure.h"
#include "controller/Printable.h"
#include "controller/Utf8.h"
#include "controller/http/Problem.h"

namespace controller {

namespace {

constexpr std::size_t kLongestActor = 64;

const std::string* Field(const RequestHead& head, const char* name) {
  const auto found = head.fields.find(name);
  return found == head.fields.end() ? nullptr : &found->second;
}

/// What a local client calls itself, for the journal.
std::string LocalActor(const RequestHead& head) {
  const std::string* const given = Field(head, "vexalink-actor");
  if (given == nullptr) return "local";
  bool good = !given->empty() && given->size() <= kLongestActor;
  for (std::size_t at = 0; good && at < given->size();) {
    const Utf8Char next = DecodeUtf8(*given, at);
    good = next.valid && next.code >= 0x20 && (next.code < 0x7F || next.code >= 0xA0);
    at += next.length;
  }
  if (good) return *given;
  throw Problem("malformed", "Vexalink-Actor is " + Quoted(*given) +
                                 "; give 1 to 64 bytes of UTF-8 without control characters");
}

}  // namespace

Access::Access(const std::vector<ListenAddress>& listen, const std::vector<std::string>& hosts,
               ITokens& tokens)
    : hosts_{"localhost", "127.0.0.1", "::1"}, tokens_(tokens) {
  for (const ListenAddress& address : listen) {
    if (!address.IsWildcard()) hosts_.insert(address.address);
    if (!address.IsLoopback()) needsToken_ = true;
  }
  for (const std::string& host : hosts) {
    const auto authority = ParseAuthority(host);
    if (!authority) {
      throw Failure("--allow-host is " + Quoted(host) + "; give a name, house.local for example",
                    ExitStatus::kBadInput);
    }
    hosts_.insert(authority->host);
  }
}

void Access::CheckHost(const RequestHead& head, const ListenAddress& local) const {
  const auto authority = ParseAuthority(head.authority);
  if (authority && (hosts_.contains(authority->host) || authority->host == local.address)) return;
  throw Problem("forbidden", "the controller is not known as " + Quoted(head.authority) +
                                 "; start it with --allow-host for every name that leads to it");
}

void Access::CheckSite(const RequestHead& head) const {
  const std::string* const site = Field(head, "sec-fetch-site");
  if (site != nullptr && *site != "same-origin" && *site != "none") {
    throw Problem("forbidden", "a page of another site must not change anything here");
  }
  const std::string* const origin = Field(head, "origin");
  if (origin == nullptr) return;
  const std::string given = LowerCase(*origin);
  if (given == "http://" + head.authority || given == "https://" + head.authority) return;
  throw Problem("forbidden", "a page of " + Quoted(*origin) + " must not change anything here");
}

TokenOwner Access::Identify(const RequestHead& head) const {
  if (const std::string* const given = Field(head, "authorization")) return OwnerOfGiven(*given);
  if (!needsToken_) return {LocalActor(head), Role::kEdit};
  throw Problem("unauthorized",
                "a token is needed; make one with \"vexalink token add NAME\" and send it as "
                "\"Authorization: Bearer TOKEN\"");
}

TokenOwner Access::OwnerOfGiven(const std::string& authorization) const {
  constexpr std::string_view kScheme = "bearer ";
  if (LowerCase(authorization).starts_with(kScheme)) {
    const std::string_view token =
        WithoutBlanks(std::string_view(authorization).substr(kScheme.size()));
    if (auto owner = tokens_.OwnerOf(token)) return *std::move(owner);
  }
  throw Problem("unauthorized",
                "the token is not known here; \"vexalink token list\" shows which are");
}

void CheckRole(const TokenOwner& owner, Role role) {
  if (owner.role >= role) return;
  throw Problem("forbidden", "this needs the role " + std::string(RoleName(role)) +
                                 "; the token of " + Quoted(owner.name) + " has the role " +
                                 RoleName(owner.role));
}

const char* RoleName(Role role) {
  switch (role) {
    case Role::kView:
      return "view";
    case Role::kOperate:
      return "operate";
    case Role::kEdit:
      return "edit";
  }
  return "";
}

std::optional<Role> RoleOf(std::string_view name) {
  for (const Role role : {Role::kView, Role::kOperate, Role::kEdit}) {
    if (name == RoleName(role)) return role;
  }
  return std::nullopt;
}

}  // namespace controller
