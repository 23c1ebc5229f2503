#include "vexalink_agent_scheduler/vxw/ClockSpans.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "vexalink_agent_scheduler/vxw/CivilCalendar.h"
#include "vexalink_agent_scheduler/vxw/ZoneChanges.h"
#include "vexalink_agent_scheduler/vxw/ZoneWatch.h"

namespace local_time {
namespace {

constexpr std::time_t kDay = 86400;
constexpr unsigned kPatience = 64;      // conversions
constexpr long long kFirstYear = 1971;  // whose changes are looked for

bool Ask(std::time_t instant, Clock* clock) {
  std::tm local;
  if (localtime_r(&instant, &local) == nullptr) return false;
  *clock = {local.tm_gmtoff, local.tm_isdst, local.tm_zone};
  return true;
}

// The first instant after `last` with another clock than it; `first` has one.
std::time_t FindChange(std::time_t last, std::time_t first) {
  Clock before;
  Clock clock;
  Ask(last, &before);
  while (first - last > 1) {
    const std::time_t middle = last + (first - last) / 2;
    (Ask(middle, &clock) && clock.IsSame(before) ? last : first) = middle;
  }
  return first;
}

std::time_t BeginOfYear(long long year) { return CivilDays(year, 1, 1) * kDay; }

long long YearOf(std::time_t instant) { return DateOf(FloorDivide(instant, kDay)).year; }

std::size_t KindOf(long long year) {
  return static_cast<std::size_t>(WeekdayOf(CivilDays(year, 1, 1)) + (IsLeapYear(year) ? 7 : 0));
}

// The spans of one kind of year, counted from its begin.
using YearSpans = std::vector<ClockSpan>;

class ZoneSpans {
 public:
  explicit ZoneSpans(ZoneChanges changes)
      : changes_(std::move(changes)), listed_(changes_.listed.size()) {}

  // False where no span is known.
  bool Find(std::time_t instant, ClockSpan* span) {
    if (instant >= changes_.ruleBegin) return FindByRule(instant, span);
    const std::vector<std::time_t>& listed = changes_.listed;
    const auto next = std::upper_bound(listed.begin(), listed.end(), instant);
    if (next == listed.end()) return false;  // by a rule in years for which it is not relied on
    std::optional<ClockSpan>& kept = listed_[static_cast<std::size_t>(next - listed.begin())];
    if (!kept) kept = Listed(next == listed.begin() ? -ZoneChanges::kFarthest : *(next - 1), *next);
    *span = *kept;
    return kept->clock.zone != nullptr;
  }

 private:
  // Without a clock where the C library is of another opinion.
  static ClockSpan Listed(std::time_t begin, std::time_t end) {
    ClockSpan span{begin, end, {}};
    Clock last;
    if (!Ask(begin, &span.clock) || !Ask(end - 1, &last) || !span.clock.IsSame(last)) {
      span.clock.zone = nullptr;
    }
    return span;
  }

  bool FindByRule(std::time_t instant, ClockSpan* span) {
    const long long year = YearOf(instant);
    const std::time_t begin = BeginOfYear(year);
    YearSpans& spans = years_[KindOf(year)];
    if (spans.empty()) spans = Learn(KindOf(year));
    for (const ClockSpan& piece : spans) {
      if (!piece.Holds(instant - begin)) continue;
      *span = {std::max(begin + piece.begin, changes_.ruleBegin), begin + piece.end, piece.clock};
      return true;
    }
    return false;
  }

  YearSpans Learn(std::size_t kind) const {
    long long year = std::max<long long>(YearOf(changes_.ruleBegin - 1) + 1, kFirstYear);
    while (KindOf(year) != kind) ++year;
    const std::time_t begin = BeginOfYear(year);
    const std::time_t end = BeginOfYear(year + 1);
    const std::time_t step = changes_.isFile ? 8 * kDay : kDay;
    YearSpans spans(1);
    std::time_t last = begin;
    Ask(last, &spans[0].clock);
    while (last != end - 1) {
      const std::time_t next = std::min(last + step, end - 1);
      Clock clock;
      Ask(next, &clock);
      if (clock.IsSame(spans.back().clock)) {
        last = next;
        continue;
      }
      last = FindChange(last, next);
      Ask(last, &clock);
      spans.back().end = last - begin;
      spans.push_back({last - begin, 0, clock});
    }
    spans.back().end = end - begin;
    return spans;
  }

  ZoneChanges changes_;
  std::vector<std::optional<ClockSpan>> listed_;  // by the change that ends them
  std::array<YearSpans, 14> years_;
};

struct Known {
  unsigned generation = 0;  // of the zone; 0: nothing is known
  unsigned asked = 0;
  std::optional<ZoneSpans> zone;
  // Whoever looks at a change of the clocks asks for its two sides in turn.
  ClockSpan last;
  ClockSpan lastButOne;
};

Known known;

}  // namespace

const ClockSpan* FindSpan(std::time_t instant) {
  const unsigned generation = ZoneGeneration();
  if (known.generation != generation) known = {generation, 0, std::nullopt, {}, {}};
  if (known.last.Holds(instant)) return &known.last;
  if (known.lastButOne.Holds(instant)) {
    std::swap(known.last, known.lastButOne);
    return &known.last;
  }
  if (known.asked < kPatience) {
    if (++known.asked < kPatience) return nullptr;
    if (auto changes = ReadZoneChanges()) known.zone.emplace(std::move(*changes));
  }
  const bool isNear = instant > -ZoneChanges::kFarthest && instant < ZoneChanges::kFarthest;
  if (!known.zone || !isNear) return nullptr;
  ClockSpan span;
  if (!known.zone->Find(instant, &span)) return nullptr;
  known.lastButOne = known.last;
  known.last = span;
  return &known.last;
}

}  // namespace local_time
