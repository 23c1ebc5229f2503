#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "controller/http/Http.h"

namespace controller {

/// Whose token it is and what may be done with it.
struct TokenOwner {
  std::string name;
  Role role = Role::kView;
};

/// Knows the tokens.
class ITokens {
 public:
  /// Nothing where `token` is nobody's.
  virtual std::optional<TokenOwner> OwnerOf(std::string_view token) = 0;

 protected:
  ~ITokens() = default;
};

/// "view", "operate", "edit"
const char* RoleName(Role role);
std::optional<Role> RoleOf(std::string_view name);

}  // namespace controller
