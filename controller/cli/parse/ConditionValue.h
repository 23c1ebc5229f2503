#pragma once

#include <cstddef>
#include <string_view>

#include "controller/cli/Json.h"
#include "controller/cli/parse/TextParts.h"

namespace controller::cli {

/// A kind of condition that compares something with values.
struct ConditionKind {
  enum class Value { kTime, kWeekday, kNumber, kMonth, kDate };

  const char* name;
  /// Of the API's condition, for all comparisons but "between".
  const char* field;
  /// Whether that field holds a list.
  bool list;
  Value value;
  /// Of a number.
  long least;
  long most;
};

/// Null where there is none of this name.
const ConditionKind* FindConditionKind(std::string_view name);

/// What a value is for: not every time of day can be compared with.
enum class ValueUse { kBound, kCompared };

/// Takes one value of a kind, as the API writes it. Throws a `TextError`.
Json TakeConditionValue(TextParts& parts, const ConditionKind& kind, ValueUse use);

/// What the kind's field holds: one value, or a list of them with commas, blanks or "and" between.
Json TakeConditionValues(TextParts& parts, const ConditionKind& kind);

/// Throws where the ends of a "between" are in an order in which nothing would ever lie between
/// them; they stand in these bytes of the text.
void CheckBounds(const TextParts& parts, const ConditionKind& kind, const Json& condition,
                 std::size_t begin, std::size_t length);

}  // namespace controller::cli
