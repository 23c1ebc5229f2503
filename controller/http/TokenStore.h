#pragma once

#include <ctime>
#include <string>
#include <string_view>
#include <vector>

#include "controller/Sqlite.h"
#include "controller/http/ListenAddress.h"
#include "controller/http/Tokens.h"

namespace controller {

/// A token as it is shown: the token itself is known only to those who have it.
struct TokenRow {
  std::string name;
  Role role = Role::kView;
  std::time_t created = 0;
};

/// The tokens of a project, in its table `token` (see `kTokenSchema`). Every operation looks into
/// the table, so that what another process has changed counts at once; it throws a `Failure` where
/// that cannot be done.
class TokenStore final : public ITokens {
 public:
  /// `database` must outlive it.
  explicit TokenStore(SqliteDatabase& database) : database_(database) {}

  std::optional<TokenOwner> OwnerOf(std::string_view token) override;
  /// Makes a token and answers it. Throws a `Failure` where the name cannot be one, see
  /// `CheckTokenName`, or is taken.
  std::string Add(const std::string& name, Role role);
  /// By name.
  std::vector<TokenRow> All();
  /// False where there is none of this name.
  bool Remove(const std::string& name);

 private:
  SqliteDatabase& database_;
};

/// A token's name is what the journal says; so it is 1 to 64 letters, digits, ".", "_" or "-", and
/// not "local". Throws a `Failure`.
void CheckTokenName(const std::string& name);

/// Throws a `Failure` that says what to do where the addresses can be reached from elsewhere and
/// nobody has a token; `project` is the file, for the command to be shown.
void CheckTokensForListening(const std::vector<ListenAddress>& listen, TokenStore& tokens,
                             const std::string& project);

}  // namespace controller
