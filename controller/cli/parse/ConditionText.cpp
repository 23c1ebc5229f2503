#include "controller/cli/parse/ConditionText.h"

#include <string_view>

#include "controller/cli/parse/Comparison.h"
#include "controller/cli/parse/ConditionValue.h"
#include "controller/cli/parse/DurationText.h"
#include "controller/cli/parse/TextParts.h"

namespace controller::cli {

namespace {

constexpr long kMostWithin = 1440;
constexpr const char* kKinds =
    "give time, weekday, day, date, month, year, leap or within and what follows it";

/// "30", "minutes", "1h30": all parts up to the side.
long TakeMinutes(TextParts& parts) {
  const std::size_t begin = parts.Peek().begin;
  std::size_t end = begin;
  while (!parts.AtEnd() && parts.Peek().text != "before" && parts.Peek().text != "after") {
    const TextPart part = parts.Next();
    end = part.begin + part.length;
  }
  const auto seconds =
      ReadDuration(std::string_view(parts.Text()).substr(begin, end - begin), kSecondsPerMinute);
  if (seconds && *seconds % kSecondsPerMinute == 0 && *seconds <= kMostWithin * kSecondsPerMinute) {
    return *seconds / kSecondsPerMinute;
  }
  parts.FailAt(begin, end - begin,
               "a number of minutes is wanted here; give 30 minutes or 1h30, at most 24h, and "
               "before or after");
}

std::string TakeOneOf(TextParts& parts, std::string_view one, std::string_view other) {
  const TextPart part = parts.Next();
  if (part.text == one || part.text == other) return part.text;
  const std::string both = "give " + std::string(one) + " or " + std::string(other);
  parts.Fail(part, "does not belong here; " + both, "a word is missing; " + both);
}

/// Behind "within".
Json TakeWithin(TextParts& parts) {
  Json condition = {{"kind", "time"}, {"is", "within"}};
  condition["minutes"] = TakeMinutes(parts);
  condition["side"] = TakeOneOf(parts, "before", "after");
  condition["of"] = TakeOneOf(parts, "sunrise", "sunset");
  return condition;
}

/// What only a time can be; null where it is something else.
Json TakeTimeOfSun(TextParts& parts) {
  if (parts.Take({"within"})) return TakeWithin(parts);
  for (const char* half : {"day", "night"}) {
    if (parts.Take({"is", half}) || parts.Take({half})) return {{"kind", "time"}, {"is", half}};
  }
  return nullptr;
}

Json TakeBetween(TextParts& parts, const ConditionKind& kind) {
  Json condition = {{"kind", kind.name}, {"is", "between"}};
  const std::size_t begin = parts.Peek().begin;
  condition["from"] = TakeConditionValue(parts, kind, ValueUse::kBound);
  if (!parts.Take({"and"}) && !parts.Take({"to"})) {
    parts.Fail(parts.Peek(), "does not belong here; give \"and\" and the other end",
               "\"and\" and the other end are missing");
  }
  const TextPart last = parts.Peek();
  condition["to"] = TakeConditionValue(parts, kind, ValueUse::kBound);
  CheckBounds(parts, kind, condition, begin, last.begin + last.length - begin);
  return condition;
}

Json TakeCompared(TextParts& parts, const ConditionKind& kind) {
  Json condition = {{"kind", kind.name}, {"is", TakeComparison(parts)}};
  condition[kind.field] = TakeConditionValues(parts, kind);
  return condition;
}

Json TakeCondition(TextParts& parts) {
  if (parts.Take({"within"})) return TakeWithin(parts);
  if (parts.Take({"leap"})) {
    parts.Take({"year"});
    return {{"kind", "leap"}};
  }
  const TextPart part = parts.Next();
  const ConditionKind* kind = FindConditionKind(part.text);
  if (kind == nullptr) {
    parts.Fail(part, std::string("is no kind of condition; ") + kKinds,
               std::string("a condition is missing; ") + kKinds);
  }
  if (kind->name == std::string_view("time")) {
    const Json condition = TakeTimeOfSun(parts);
    if (!condition.is_null()) return condition;
  }
  if (parts.Take({"between"}) || parts.Take({"is", "between"})) return TakeBetween(parts, *kind);
  return TakeCompared(parts, *kind);
}

}  // namespace

Json ParseCondition(const std::string& what, const std::string& text) {
  TextParts parts(what, text);
  Json condition = TakeCondition(parts);
  parts.ExpectEnd("leave it out: an action has one condition");
  return condition;
}

}  // namespace controller::cli
