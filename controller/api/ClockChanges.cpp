#include "controller/api/ClockChanges.h"

#include <algorithm>

#include "controller/LocalTimeText.h"

namespace controller {

namespace {

constexpr std::time_t kStride = 4 * 86400;

long OffsetAt(std::time_t moment) {
  std::tm fields{};
  return localtime_r(&moment, &fields) == nullptr ? 0 : fields.tm_gmtoff;
}

/// The first second in (from, to] that has another offset than `from`.
std::time_t FirstAfter(std::time_t from, std::time_t to) {
  const long before = OffsetAt(from);
  while (to - from > 1) {
    const std::time_t middle = from + (to - from) / 2;
    (OffsetAt(middle) == before ? from : to) = middle;
  }
  return to;
}

}  // namespace

std::vector<ClockChange> ClockChangesBetween(std::time_t from, std::time_t to) {
  std::vector<ClockChange> changes;
  long before = OffsetAt(from);
  while (from < to) {
    const std::time_t next = std::min(from + kStride, to);
    if (OffsetAt(next) == before) {
      from = next;
      continue;
    }
    from = FirstAfter(from, next);
    const long after = OffsetAt(from);
    changes.push_back({from, before, after});
    before = after;
  }
  return changes;
}

bool BeginsAtMidnight(const DayFields& day) {
  const std::time_t begin = LocalInstant(day, 0, 0);
  std::tm fields{};
  return localtime_r(&begin, &fields) == nullptr ||
         (fields.tm_hour == 0 && fields.tm_min == 0 && LocalDay(begin) == day);
}

std::vector<AskedSpan> SplitAtClockChanges(const DaySpan& days) {
  std::vector<AskedSpan> spans;
  DayFields from = days.from;
  const auto add = [&](const DayFields& to) {
    if (to < from) return;
    // A day without a midnight is reached by a step of 86,400 s from the midnight before.
    const DayFields asked = BeginsAtMidnight(from) ? from : DaysAfter(from, -1);
    spans.push_back({{asked, to}, {from, to}});
    from = DaysAfter(to, 1);
  };
  // From the beginning of the first day, which may lie before its midnight by name.
  const std::time_t begin = LocalInstant(days.from, 0, 0) - 4 * 3600;
  for (const ClockChange& change : ClockChangesBetween(begin, LocalInstant(days.to, 0, 0))) {
    add(std::min(LocalDay(change.at), days.to));
  }
  add(days.to);
  return spans;
}

}  // namespace controller
