#include "controller/api/PreviewWarnings.h"

#include <algorithm>
#include <optional>
#include <set>

#include "controller/LocalTimeText.h"
#include "controller/api/EventFields.h"
#include "controller/api/EventJson.h"
#include "controller/api/EventSentence.h"
#include "controller/api/JsonText.h"

namespace controller {

namespace {

constexpr std::size_t kShown = 10;
/// Long enough for the clocks to be changed twice.
constexpr long kLookAhead = 400;
/// A rule with long gaps is compared with the calendar this often at most.
constexpr int kMostSpans = 200;

class Warnings {
 public:
  Warnings(EventProbe& probe, const std::vector<ProbedOccurrence>& next, std::time_t now)
      : probe_(probe), event_(*probe.Stored()), rule_(event_), next_(next), today_(LocalDay(now)) {}

  std::vector<PreviewWarning> Find() {
    if (next_.empty()) NeverOccurs();
    PastMidnight();
    if (event_.offset == 0) ClockChanges();
    if (rule_.MayDrift()) Drifts();
    // Beyond the last of ten there may be more; with fewer it is the end that cuts them off.
    if (rule_.EndsWithCalendar() && next_.size() < kShown) EndsIn2038();
    return std::move(warnings_);
  }

 private:
  void Warn(const char* code, std::string text) { warnings_.push_back({code, std::move(text)}); }

  void NeverOccurs();
  void PastMidnight();
  void AfterTheDay(const ProbedOccurrence& occurrence, long spread);
  void BeforeTheDay(const ProbedOccurrence& occurrence, long spread);
  void ClockChanges();
  bool WarnOfChange(const ProbedOccurrence& occurrence);
  void Drifts();
  bool TellDrift(const DaySpan& span, const std::set<DayFields>& comes);
  void EndsIn2038();

  EventProbe& probe_;
  const EventElement& event_;
  CivilRule rule_;
  const std::vector<ProbedOccurrence>& next_;
  DayFields today_;
  std::vector<PreviewWarning> warnings_;
};

void Warnings::NeverOccurs() {
  const DayFields last = rule_.LastDay();
  if (last < event_.start) {
    return Warn("never-occurs", "it starts on " + LongDayText(event_.start) +
                                    ", and without an end it ends on " + LongDayText(last) +
                                    " already; give it an end");
  }
  if (event_.frequency == 0) {
    return Warn("never-occurs", event_.start == today_
                                    ? "its time has passed today"
                                    : LongDayText(event_.start) + " has passed, or its time has");
  }
  if (last < today_) {
    return Warn("never-occurs", "its last day, " + LongDayText(last) + ", has passed");
  }
  Warn("never-occurs", "none of its days lies between " +
                           LongDayText(std::max(event_.start, today_)) + " and its last day, " +
                           LongDayText(last));
}

void Warnings::PastMidnight() {
  const long spread = event_.randomize;
  for (const ProbedOccurrence& occurrence : next_) {
    const std::size_t before = warnings_.size();
    AfterTheDay(occurrence, spread);
    if (warnings_.size() == before) BeforeTheDay(occurrence, spread);
    if (warnings_.size() != before) return;
  }
}

void Warnings::AfterTheDay(const ProbedOccurrence& occurrence, long spread) {
  // At the first tick of a day what is due at that moment still comes; after that the list is the
  // new day's.
  const std::time_t end = LocalInstant(DaysAfter(occurrence.day, 1), 0, 0);
  if (occurrence.time + spread * 60 <= end) return;
  const std::string day = LongDayText(occurrence.day);
  if (occurrence.time - spread * 60 > end) {
    return Warn("past-midnight", "on " + day +
                                     " its time lies after midnight, where that day's list ends: "
                                     "it comes only where what was missed is caught up");
  }
  Warn("past-midnight", "on " + day +
                            " its time may lie after midnight, where that day's list ends: it then "
                            "comes only where what was missed is caught up");
}

void Warnings::BeforeTheDay(const ProbedOccurrence& occurrence, long spread) {
  const std::time_t begin = LocalInstant(occurrence.day, 0, 0);
  if (occurrence.time - spread * 60 >= begin) return;
  const std::string day = LongDayText(occurrence.day);
  const bool always = occurrence.time + spread * 60 < begin;
  Warn("past-midnight", "on " + day + " its time " + (always ? "lies" : "may lie") +
                            " before midnight, where that day's list begins: it " +
                            (always ? "comes" : "then comes") + " at midnight instead");
}

/// Tells of the first occurrence whose wall time a clock change leaves out or brings twice.
void Warnings::ClockChanges() {
  if (std::any_of(next_.begin(), next_.end(),
                  [this](const ProbedOccurrence& found) { return WarnOfChange(found); })) {
    return;
  }
  const std::time_t from = LocalInstant(today_, 0, 0);
  for (const ClockChange& change : ClockChangesBetween(from, from + kLookAhead * 86400)) {
    // Minutes may lead to the day of the change from the days around it.
    const DayFields day = LocalDay(change.at);
    for (const ProbedOccurrence& found : probe_.On({DaysAfter(day, -2), DaysAfter(day, 1)})) {
      if (WarnOfChange(found)) return;
    }
  }
}

bool Warnings::WarnOfChange(const ProbedOccurrence& occurrence) {
  const std::time_t time = occurrence.time;
  for (const ClockChange& change : ClockChangesBetween(time - 86400, time + 86400)) {
    const long shift = change.after - change.before;
    // The wall time that was asked for, as seconds that no zone moves.
    const long wanted =
        DaysBetween({1970, 1, 1}, occurrence.day) * 86400 + event_.offset_minutes * 60L;
    const long lower = change.at + std::min(change.before, change.after);
    const long upper = change.at + std::max(change.before, change.after);
    if (wanted < lower || wanted >= upper) continue;
    const std::string day = LongDayText(DaysAfter({1970, 1, 1}, wanted / 86400));
    const std::string at = HourMinuteText(static_cast<int>(wanted / 60 % kMinutesPerDay));
    Warn("clock-change",
         shift > 0 ? "on " + day + " there is no " + at +
                         ", because the clocks are put forward; it comes at " +
                         MomentJson(time).get<std::string>().substr(11, 5)
                   : "on " + day + ' ' + at +
                         " comes twice, because the clocks are put back; it comes the first time");
    return true;
  }
  return false;
}

/// Compares the scheduler's own days with the calendar's over the next clock changes.
void Warnings::Drifts() {
  DayFields last = DaysAfter(today_, kLookAhead);
  if (!next_.empty()) last = std::max(last, next_.back().day);
  DayFields from = std::max(today_, event_.start);
  for (int spans = 0; spans < kMostSpans && from <= last; ++spans) {
    const auto span = rule_.NextSpan(from);
    if (!span) return;
    std::set<DayFields> comes;
    for (const ProbedOccurrence& found : probe_.On(*span)) comes.insert(found.day);
    if (TellDrift(*span, comes)) return;
    from = DaysAfter(span->to, 1);
  }
}

/// `comes` are the scheduler's days of the span.
bool Warnings::TellDrift(const DaySpan& span, const std::set<DayFields>& comes) {
  std::optional<DayFields> missing;
  std::optional<DayFields> added;
  for (DayFields day = span.from; day <= span.to; day = DaysAfter(day, 1)) {
    const bool isIn = comes.count(day) != 0;
    if (isIn && !added && !rule_.OccursOn(day)) added = day;
    if (!isIn && !missing && rule_.OccursOn(day)) missing = day;
  }
  if (!missing && !added) return false;
  std::string text =
      "the scheduler counts days in 24 hours, also where a clock change makes one "
      "longer or shorter: it ";
  if (added) text += "comes on " + LongDayText(*added);
  if (added && missing) text += " and ";
  if (missing) text += (added ? "not on " : "does not come on ") + LongDayText(*missing);
  Warn("drifts", std::move(text));
  return true;
}

void Warnings::EndsIn2038() {
  Warn("ends-2038", "without an end it ends on " + LongDayText(rule_.LastDay()) +
                        ", where the scheduler's calendar does; give it an end to go on");
}

}  // namespace

std::vector<PreviewWarning> PreviewWarnings(EventProbe& probe,
                                            const std::vector<ProbedOccurrence>& next,
                                            std::time_t now) {
  if (!probe.Stored()) return {};
  return Warnings(probe, next, now).Find();
}

}  // namespace controller
