#include "controller/http/TokenStore.h"

#include <algorithm>

#include "controller/Failure.h"
#include "controller/Printable.h"
#include "controller/http/Digest.h"

namespace controller {

std::optional<TokenOwner> TokenStore::OwnerOf(std::string_view token) {
  const std::string hash = Sha256Hex(token);
  SqliteStatement rows(database_, "SELECT name, role, hash FROM token");
  std::optional<TokenOwner> owner;
  // All of them are looked at, each for as long: the time says nothing about which are there.
  while (rows.Step()) {
    const bool same = EqualInConstantTime(rows.TextAt(2), hash);
    const auto role = RoleOf(rows.TextAt(1));
    if (same && role) owner = TokenOwner{rows.TextAt(0), *role};
  }
  return owner;
}

std::string TokenStore::Add(const std::string& name, Role role) {
  CheckTokenName(name);
  SqliteTransaction transaction(database_);
  SqliteStatement taken(database_, "SELECT 1 FROM token WHERE name = ?1");
  if (taken.Bind(1, name).Step()) {
    throw Failure("there is a token " + Quoted(name) +
                      " already; give another name, or remove that one first",
                  ExitStatus::kBadInput);
  }
  const std::string token = NewSecret();
  SqliteStatement(database_,
                  "INSERT INTO token (name, hash, role, created) VALUES (?1, ?2, ?3, ?4)")
      .Bind(1, name)
      .Bind(2, Sha256Hex(token))
      .Bind(3, RoleName(role))
      .Bind(4, static_cast<std::int64_t>(std::time(nullptr)))
      .Step();
  transaction.Commit();
  return token;
}

std::vector<TokenRow> TokenStore::All() {
  SqliteStatement rows(database_, "SELECT name, role, created FROM token ORDER BY name");
  std::vector<TokenRow> all;
  while (rows.Step()) {
    const auto role = RoleOf(rows.TextAt(1));
    if (!role) {
      throw Failure("the token " + Quoted(rows.TextAt(0)) + " has the role " +
                    Quoted(rows.TextAt(1)) + ", which is none; remove it and make another");
    }
    all.push_back({rows.TextAt(0), *role, static_cast<std::time_t>(rows.NumberAt(2))});
  }
  return all;
}

bool TokenStore::Remove(const std::string& name) {
  SqliteTransaction transaction(database_);
  SqliteStatement(database_, "DELETE FROM token WHERE name = ?1").Bind(1, name).Step();
  const bool removed = sqlite3_changes(database_.Handle()) > 0;
  transaction.Commit();
  return removed;
}

void CheckTokenName(const std::string& name) {
  const auto isGood = [](char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= '0' && byte <= '9') || byte == '.' || byte == '_' || byte == '-';
  };
  if (name == "local") {
    throw Failure("\"local\" is what the journal calls those at this computer; give another name",
                  ExitStatus::kBadInput);
  }
  if (!name.empty() && name.size() <= 64 && std::all_of(name.begin(), name.end(), isGood)) return;
  throw Failure("the name is " + Quoted(name) +
                    "; give 1 to 64 letters, digits, \".\", \"_\" or \"-\", kitchen for example",
                ExitStatus::kBadInput);
}

void CheckTokensForListening(const std::vector<ListenAddress>& listen, TokenStore& tokens,
                             const std::string& project) {
  const auto open = std::find_if(listen.begin(), listen.end(),
                                 [](const ListenAddress& there) { return !there.IsLoopback(); });
  if (open == listen.end() || !tokens.All().empty()) return;
  throw Failure("--listen " + open->Text() +
                    " can be reached from elsewhere, and nobody has a token yet; make one with "
                    "\"vexalink token add NAME --role edit --project " +
                    project + "\"",
                ExitStatus::kBadInput);
}

}  // namespace controller
