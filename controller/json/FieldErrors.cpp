#include "controller/json/FieldErrors.h"

#include "controller/Printable.h"

namespace controller {

std::string ErrorText(const FieldErrors& errors) {
  if (errors.empty()) return {};
  const FieldError& first = errors.front();
  const std::string field = first.pointer.empty() ? "the document" : Printable(first.pointer, 200);
  std::string text = field + ' ' + first.detail;
  if (errors.size() > 1) text += " (and " + std::to_string(errors.size() - 1) + " more)";
  return text;
}

}  // namespace controller
