#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace controller {

/// What is wrong with a URL of a hook, in the form of a `FieldError`'s detail, or nothing. It may
/// hold placeholders behind its host.
std::string WrongUrl(std::string_view url);

/// The parts of a URL that `WrongUrl` has nothing against.
struct UrlParts {
  /// "http" or "https", in lower case.
  std::string scheme;
  /// Name and password, without the "@"; empty where there are none.
  std::string user;
  /// Host and port as they are written, in lower case.
  std::string host;
  /// From the host's end to the query.
  std::string path;
  /// With its "?"; empty where there is none.
  std::string query;
};
/// Nothing where the URL is neither http nor https.
std::optional<UrlParts> SplitUrl(std::string_view url);

/// What is wrong with a header's name, or nothing.
std::string WrongHeaderName(std::string_view name);

/// Whether two names are the same, whatever the case of their letters (ASCII).
bool SameName(std::string_view a, std::string_view b);

/// A URL as log and journal may show it: without what may be secret, so without user, password and
/// query.
std::string ShownUrl(std::string_view url);

}  // namespace controller
