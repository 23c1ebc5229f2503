#pragma once

#include <string>
#include <vector>

namespace controller {

/// What is wrong with one field of a JSON document.
struct FieldError {
  /// RFC 6901, "/repeat/every" for example; empty for the document itself.
  std::string pointer;
  /// Goes on after the field's name: "is 0; give 1 or more".
  std::string detail;
};

/// Everything that is wrong with a document, in the order in which it was found.
using FieldErrors = std::vector<FieldError>;

/// The first error as a sentence, and how many more there are.
std::string ErrorText(const FieldErrors& errors);

}  // namespace controller
