#include "controller/api/OccurrenceListing.h"

#include <algorithm>

#include "controller/LocalTimeText.h"
#include "controller/api/ApiContext.h"
#include "controller/api/DayList.h"
#include "controller/api/EventProbe.h"
#include "controller/api/OccurrenceTime.h"

namespace controller {

OccurrenceListing::OccurrenceListing(House& house, const DaySpan& days, std::size_t limit,
                                     unsigned long event)
    : house_(house), limit_(limit), only_(event) {
  for (const AskedSpan& span : SplitAtClockChanges(days)) {
    if (only_ != 0 ? !OfOne(span) : !OfAll(span)) return;
  }
}

const EventElement& OccurrenceListing::EventOf(unsigned long id) {
  const auto [known, isNew] = events_.emplace(id, EventElement());
  if (isNew) {
    if (auto found = LookForEvent(house_, id)) known->second = std::move(found->event);
  }
  return known->second;
}

bool OccurrenceListing::OfOne(const AskedSpan& span) {
  const EventElement& event = EventOf(only_);
  EventProbe probe(house_, event);
  std::vector<Occurrence> occurrences;
  for (const ProbedOccurrence& found : probe.On(span.counts)) {
    occurrences.push_back({&event, found.day, found.time});
  }
  return Take(occurrences);
}

/// A few days first, and more at a time while there is room: a large house has thousands a day.
bool OccurrenceListing::OfAll(const AskedSpan& span) {
  long days = 1;
  DayFields from = span.counts.from;
  DayFields asked = span.asked.from;
  while (from <= span.counts.to) {
    const DayFields to = std::min(DaysAfter(from, days - 1), span.counts.to);
    const std::size_t before = found_.size();
    if (!Ask({{asked, to}, {from, to}})) return false;
    if (found_.size() - before < limit_ / 4) days *= 2;
    from = DaysAfter(to, 1);
    // Never from a day without a midnight: such a day is always the second of its span or later,
    // and a stretch that would begin with it begins a day earlier.
    asked = BeginsAtMidnight(from) ? from : to;
  }
  return true;
}

bool OccurrenceListing::Ask(const AskedSpan& span) {
  std::vector<Occurrence> occurrences;
  const auto eventOf = [this](unsigned long id) -> const EventElement& { return EventOf(id); };
  for (const ListedTime& time : ListDays(house_.Scheduler(), span, eventOf)) {
    const EventElement& event = EventOf(time.event);
    occurrences.push_back(
        {&event, time.day,
         OccurrenceTime(event, time.day, time.hour, time.minute, house_.WhereItIs().place)});
  }
  return Take(occurrences);
}

bool OccurrenceListing::Take(std::vector<Occurrence>& occurrences) {
  std::stable_sort(occurrences.begin(), occurrences.end(),
                   [](const Occurrence& a, const Occurrence& b) {
                     return a.day != b.day ? a.day < b.day : a.time < b.time;
                   });
  for (const Occurrence& occurrence : occurrences) {
    if (found_.size() == limit_) {
      truncated_ = true;
      return false;
    }
    found_.push_back(occurrence);
  }
  return true;
}

}  // namespace controller
