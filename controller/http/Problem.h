#pragma once

#include <stdexcept>
#include <string>

#include "controller/http/Http.h"
#include "controller/json/FieldErrors.h"

namespace controller {

/// What a request is refused with, RFC 9457.
class Problem : public std::runtime_error {
 public:
  /// `name` is one of docs/api.md, "not-found" for example, and determines status and title;
  /// `detail` is a sentence for people: what is wrong and what to do.
  Problem(std::string name, const std::string& detail, FieldErrors errors = {});

  const std::string& Name() const { return name_; }
  int Status() const;
  HttpResponse Response() const;

 private:
  std::string name_;
  FieldErrors errors_;
};

}  // namespace controller
