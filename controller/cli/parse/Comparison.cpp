#include "controller/cli/parse/Comparison.h"

#include "controller/Printable.h"

namespace controller::cli {

namespace {

struct Spelling {
  std::vector<std::string_view> words;
  const char* comparison;
};

/// The longer before what they begin with.
const std::vector<Spelling>& Spellings() {
  static const std::vector<Spelling> spellings = {
      {{"is", "not", "in"}, "ne"},
      {{"is", "not"}, "ne"},
      {{"is", "in"}, "eq"},
      {{"is", "after"}, "gt"},
      {{"is", "before"}, "lt"},
      {{"not", "in"}, "ne"},
      {{"is"}, "eq"},
      {{"in"}, "eq"},
      {{"eq"}, "eq"},
      {{"="}, "eq"},
      {{"=="}, "eq"},
      {{"ne"}, "ne"},
      {{"!="}, "ne"},
      {{"not"}, "ne"},
      {{"gt"}, "gt"},
      {{">"}, "gt"},
      {{"after"}, "gt"},
      {{"ge"}, "ge"},
      {{">="}, "ge"},
      {{"from"}, "ge"},
      {{"lt"}, "lt"},
      {{"<"}, "lt"},
      {{"before"}, "lt"},
      {{"le"}, "le"},
      {{"<="}, "le"},
      {{"until"}, "le"},
  };
  return spellings;
}

constexpr const char* kRight =
    "give between, is, is not, in, not in, after, before, from, until, or eq ne gt ge lt le";

}  // namespace

std::string TakeComparison(TextParts& parts) {
  for (const Spelling& spelling : Spellings()) {
    if (parts.Take(spelling.words)) return spelling.comparison;
  }
  parts.Fail(parts.Peek(), std::string("is no comparison; ") + kRight,
             std::string("a comparison is missing; ") + kRight);
}

std::string ComparisonWords(const std::string& comparison, bool list) {
  if (comparison == "eq") return list ? "in" : "is";
  if (comparison == "ne") return list ? "not in" : "is not";
  if (comparison == "gt") return "after";
  if (comparison == "ge") return "from";
  if (comparison == "lt") return "before";
  if (comparison == "le") return "until";
  return Printable(comparison);
}

}  // namespace controller::cli
