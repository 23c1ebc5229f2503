#pragma once

#include <ctime>

#include "controller/EventElement.h"
#include "controller/Place.h"

namespace controller {

/// The instant whose local time is `hour`:`minute` and that lies next to `near`, not more than half
/// a day away; `near` itself where no instant has that time.
std::time_t InstantNear(std::time_t near, int hour, int minute);

/// When an event comes on a civil day, to the minute. The scheduler has answered `hour` and
/// `minute`; the day on which they lie may be another one, because minutes lead over midnight.
std::time_t OccurrenceTime(const EventElement& event, const DayFields& day, int hour, int minute,
                           const Place& place);

/// The same where the scheduler has answered the day on which the time lies ("next_occurence").
std::time_t OccurrenceTime(const EventElement& event, const NextOccurrence& answer,
                           const Place& place);

}  // namespace controller
