#pragma once

#include <ctime>
#include <map>
#include <optional>
#include <string>

#include "controller/House.h"

namespace controller {

/// When events come next, as answers tell it. The scheduler's own answer is taken where it is sure;
/// it looks no further than one repetition ahead, and from the present time of day, so that for the
/// 31st of a month, or for every other day after a clock change, it has to be asked again: day by
/// day, which is remembered.
class NextTimes {
 public:
  /// Before each answer: what is asked from here on is asked of the house as it is now.
  void Begin() { todayAsked_ = false; }
  /// `element` is the scheduler's, `event` what it says. Nothing where the event does not come
  /// again.
  std::optional<std::time_t> Of(const House& house, const VxXML::INode& element,
                                const EventElement& event);

 private:
  struct Known {
    EventElement event;
    /// The place and the zone that it was worked out for.
    std::string where;
    std::time_t asked = 0;
    std::optional<std::time_t> next;
  };

  std::optional<std::time_t> Search(const House& house, const EventElement& event, std::time_t now);

  /// Today's occurrence of an event; null where it has none.
  const PlannedOccurrence* OfToday(const House& house, unsigned long id);
  /// Whether the event has had its turn for the day on which `next` lies.
  bool HasHadItsTurn(const House& house, unsigned long id, std::time_t next);

  std::map<unsigned long, Known> known_;
  std::map<unsigned long, PlannedOccurrence> today_;
  bool todayAsked_ = false;
};

}  // namespace controller
