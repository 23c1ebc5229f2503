#pragma once

#include <cstddef>
#include <ctime>
#include <map>
#include <vector>

#include "controller/House.h"
#include "controller/api/ClockChanges.h"

namespace controller {

/// One firing of an event on one civil day.
struct Occurrence {
  const EventElement* event = nullptr;
  DayFields day;
  std::time_t time = 0;
};

/// What the scheduler lists over a span of days, collected day by day until there is enough.
class OccurrenceListing {
 public:
  /// At most `limit`; those of `event` alone, where it is not 0 (there must be such an event).
  OccurrenceListing(House& house, const DaySpan& days, std::size_t limit, unsigned long event = 0);

  /// In the order of their days, each day in the order of its times. Their events last as long as
  /// this.
  const std::vector<Occurrence>& Found() const { return found_; }
  /// There would have been more.
  bool IsTruncated() const { return truncated_; }

 private:
  // These answer whether there is room for more.
  bool OfOne(const AskedSpan& span);
  bool OfAll(const AskedSpan& span);
  bool Ask(const AskedSpan& span);
  bool Take(std::vector<Occurrence>& occurrences);
  const EventElement& EventOf(unsigned long id);

  House& house_;
  std::size_t limit_;
  unsigned long only_;
  std::map<unsigned long, EventElement> events_;
  std::vector<Occurrence> found_;
  bool truncated_ = false;
};

}  // namespace controller
