#pragma once

#include <cstddef>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "controller/House.h"
#include "controller/http/EntityTag.h"
#include "controller/http/Http.h"
#include "controller/http/Problem.h"

namespace controller {

using Routes = std::vector<HttpRoute>;

/// What a resource has to say about the body of a request.
enum class BodyKind {
  /// None: one that is there is refused.
  kNone,
  kJson,
  /// JSON, or nothing at all.
  kOptionalJson,
  /// A patch: also as application/merge-patch+json.
  kPatch,
  /// XML, of up to 32 MiB.
  kXml,
};

/// One more entry of the table, below /api/v1. A request with a query that the handler does not
/// read has to be refused by the handler, see `QueryReader`.
void AddRoute(Routes& routes, const char* method, const std::string& path, Role role, BodyKind body,
              HttpHandler handler);

/// The parameters of a request's query. Each is read once, and `NoOthers` is the last call: what is
/// unknown, stands twice, or is wrong is refused with a `Problem`.
class QueryReader {
 public:
  explicit QueryReader(const HttpRequest& request) : request_(request) {}

  std::optional<std::string> Text(const char* name);
  /// A whole decimal number.
  std::optional<long> Whole(const char* name, long least, long most);
  /// Whether it is "1" or "true"; "0" and "false" are the other answer, and so is no parameter.
  bool Flag(const char* name);
  /// "2026-11-21"
  std::optional<DayFields> Day(const char* name);
  /// A parameter that may stand several times.
  std::vector<std::string> Texts(const char* name);
  [[noreturn]] static void Refuse(const std::string& name, const std::string& value,
                                  const std::string& wanted);
  void NoOthers();

 private:
  const HttpRequest& request_;
  std::vector<std::string> known_;
};

/// For a resource that has no parameters.
void NoQuery(const HttpRequest& request);

/// The document of a request's body; a `Problem` where it is none.
nlohmann::json JsonBody(const HttpRequest& request);

/// Refuses the request where there is anything wrong with its body.
void ThrowIfWrong(const FieldErrors& errors);

/// A number that stands in the path. Whatever is no number of something is not found.
unsigned long NumberInPath(const HttpRequest& request, const char* name,
                           const char* what = nullptr);

HttpResponse JsonAnswer(std::string body, int status = 200);
HttpResponse JsonAnswer(const nlohmann::ordered_json& document, int status = 200);
HttpResponse NoContent();

/// The answer to a change, which is given once the change is on the disk: what it will be is set
/// after the house has taken the change. Where saving fails it is the problem "not-saved".
class SavedAnswer {
 public:
  explicit SavedAnswer(Respond respond);
  /// What the house is to call.
  House::Saved Callback() const;
  void Set(HttpResponse response) { state_->response = std::move(response); }

 private:
  struct State {
    Respond respond;
    HttpResponse response;
  };
  std::shared_ptr<State> state_;
};

}  // namespace controller
