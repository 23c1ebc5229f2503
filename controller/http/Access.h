#pragma once

#include <set>
#include <string>
#include <vector>

#include "controller/http/ListenAddress.h"
#include "controller/http/RequestHead.h"
#include "controller/http/Tokens.h"

namespace controller {

/// Who may ask what. Each check throws the `Problem` that the request is refused with.
class Access {
 public:
  /// `hosts` are names under which the controller is reached beside the loopback ones and the
  /// addresses it listens on; throws a `Failure` where one is no name. Where it listens on anything
  /// but loopback a token is needed.
  Access(const std::vector<ListenAddress>& listen, const std::vector<std::string>& hosts,
         ITokens& tokens);

  bool NeedsToken() const { return needsToken_; }
  /// The request must have been meant for this server: a page of elsewhere whose name was made to
  /// lead here still says its own name. `local` is where the connection arrived.
  void CheckHost(const RequestHead& head, const ListenAddress& local) const;
  /// A change must not come from another site's page.
  void CheckSite(const RequestHead& head) const;
  /// Who asks: by the token; without one and where none is needed somebody at this computer, who
  /// may do everything.
  TokenOwner Identify(const RequestHead& head) const;

 private:
  TokenOwner OwnerOfGiven(const std::string& authorization) const;

  std::set<std::string> hosts_;
  bool needsToken_ = false;
  ITokens& tokens_;
};

/// The `Problem` of one who may not do what needs `role`.
void CheckRole(const TokenOwner& owner, Role role);

}  // namespace controller
