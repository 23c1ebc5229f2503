#pragma once

#include <string>

#include "controller/EventElement.h"

namespace controller {

/// A well-formed event in words: "every 2 weeks on Monday and Friday, 30 minutes before sunset,
/// give or take 10 minutes, from 20 November 2026 until 31 March 2027".
std::string EventSentence(const EventElement& event);

/// "20 November 2026"
std::string LongDayText(const DayFields& day);

}  // namespace controller
