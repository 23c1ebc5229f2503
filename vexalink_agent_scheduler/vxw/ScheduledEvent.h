#pragma once

#include <list>
#include <optional>
#include <string>
#include <utility>

#include "host/VxXml.h"
#include "vexalink_agent_scheduler/vxw/CivilDay.h"
#include "vexalink_agent_scheduler/vxw/VxTime.h"

namespace Scheduler {

/// What the time of day of an event is counted from. XML may hold any other number; it is kept.
enum OFFSET_TYPE : int { kClock = 0, kSunrise = 1, kSunset = 2 };

/// On which day of its month a monthly or yearly event falls. XML may hold any other number; it is
/// kept, and searches like `kLast`.
enum PERIOD : int { kByDay = 0, kFirst = 1, kSecond = 2, kThird = 3, kFourth = 4, kLast = 5 };

/// Repeat kinds, the values of `Event::frequency`.
constexpr int kOnce = 0;
constexpr int kDaily = 1;
constexpr int kWeekly = 2;
constexpr int kMonthly = 3;
constexpr int kYearly = 4;

}  // namespace Scheduler

/// Stands for no end: 2^31 - 1 - 86400 seconds, a day before the largest 32-bit time.
inline constexpr VxTime NeverTime{2147397247};

/// One scheduled event: what it is called, its first day, its time of day, how it repeats and until
/// when. A record of plain fields, as XML brings them and as they are written back: nothing is
/// range-checked, so any operation must cope with any value. The agent's table owns the records.
///
/// What should hold and does not becomes an assertion record, and the work goes on: a rate below 1
/// (line 146 of the record's file), a malformed element (54, 55, 66, 74), an unknown base of the
/// time of day (233), an nth weekday without n (309), a repetition by 0 (363, 379, 405, 427).
class Event {
 public:
  /// Initial values; `end_date` is the epoch.
  Event(double latitude, double longitude);
  Event(unsigned long id, const std::string& description, double latitude, double longitude);
  /// Reads the event element that is the document's root; null reads nothing. The document stays
  /// the caller's.
  Event(VxXML::IDocument* document, double latitude, double longitude);

  /// A clock-time event that starts now and never ends, every `rate` days or on the weekdays of
  /// `daymask` each week, `minutes` after local midnight. `start` is the present instant, not
  /// midnight. The numbers are stored as given. The caller owns the record.
  static Event* newDailyEvent(const std::string& description, unsigned int rate,
                              unsigned int minutes, double latitude, double longitude);
  static Event* newDaysOfWeekEvent(const std::string& description, unsigned int daymask,
                                   unsigned int minutes, double latitude, double longitude);

  /// Sets the fields to their initial values, but for `description`, `start` and `end_date`.
  void Init(double latitude, double longitude);
  /// Degrees, north and east positive.
  void SetLatLong(double latitude, double longitude);
  /// Sets the rate, with an assertion record where it is below 1 for anything but a single event's
  /// 0.
  void Rate(int rate);
  /// Sets `end_date` to 23:59:59 of the local date of `day`.
  void EndDate(const VxTime& day);

  /// Reads an event element; see toXml for the layout. A missing number is 0.
  void fromXml(VxXML::IDocument* document);
  /// The event as an element, the time of its next occurrence included where there is one. The
  /// caller owns the node.
  vx::auto_com<VxXML::INode> toXml() const;

  /// Whether the event happens on the local date of `date`. Days and weeks are counted in steps of
  /// 86400 seconds from `start`, so what is asked for near midnight on the far side of a clock
  /// change can be a day off. Kept: schedules written by older controllers rely on it
  /// (DailyRecurrence.CountsStepsOf86400Seconds).
  bool OccursOnDate(const VxTime& date) const;

  /// The `period`-th `weekday` (1 = Sunday .. 7 = Saturday) of a month (1..12) of a full year:
  /// local midnight in a month without a clock change before it, else a whole number of 86400 s
  /// from the first. Where the month has fewer, the last there is; 0 where there is none at all,
  /// with an assertion record where `period` is 0.
  static VxTime GetNthDayOfMonth(int month, int weekday, int year, Scheduler::PERIOD period);

  /// The next time the event fires, and whether there is one (else the time is 0). A single event
  /// must lie after the present second, a repeating one may fall on it. Looked for over one
  /// repetition (of 7, 31 or 366 days a unit) from today or the start.
  std::pair<VxTime, bool> GetNextOccurance() const;

  /// The smallest step n in `first`..`last` such that the event happens on `origin` + n * 86400 s,
  /// without walking there day by day; nothing where there is none. Writes no assertion record; the
  /// event must not be a repetition by 0 (none is found).
  std::optional<long long> FindOccurrence(VxTime origin, long long first, long long last) const;

  /// The local day of `start`; worked out once for a zone.
  const CivilDay& StartDay() const;
  /// The start's weekday as weeks are counted by: 1 = Sunday .. 7 = Saturday, 0 where not known.
  int StartWeekday() const { return StartDay().weekday; }

  /// Whether the event repeats by 0: it never happens, but every time it is asked becomes an
  /// assertion record.
  bool RepeatsByZero() const;

  /// The instant at which the event fires on the local date of `date`.
  VxTime EventTime(const VxTime& date) const;
  /// The same for any base and site: `minutes` after local midnight, or after sunrise or sunset
  /// (negative: before) at a place in degrees. Sun times follow the daylight-saving flag of the
  /// present moment. -1 second where the sun has no such time. An unknown base: `date` as it is,
  /// with an assertion record.
  static VxTime CalculateEventTime(const VxTime& date, Scheduler::OFFSET_TYPE offset, int minutes,
                                   double latitude, double longitude);

  /// Where the event stands in today's list; kept by TodaysIndex.
  struct TodaysEntry {
    unsigned long listing = 0;  ///< the list that it was entered in; 0: none
    unsigned long order = 0;    ///< rises with every insertion
    std::list<Event*>::iterator entry;
  };

  VxTime next_fire;  ///< when it fires today, as scheduled; written by the agent's schedule
  double latitude = 0;
  double longitude = 0;
  unsigned long eventid = 0;  ///< also the host event and the button binding; 0: none
  std::string description;
  VxTime start;  ///< the first day; local midnight where it comes from XML
  Scheduler::PERIOD start_period = Scheduler::kByDay;
  int start_weekday = 0;  ///< 1 = Sunday .. 7 = Saturday
  Scheduler::OFFSET_TYPE offset = Scheduler::kClock;
  int offset_minutes = 0;
  int randomize = 0;  ///< spread in minutes to both sides; 0 or less: none
  int frequency = Scheduler::kOnce;
  int rate = 0;              ///< every so many days, weeks, months or years
  unsigned int daymask = 0;  ///< bit 0 = Sunday .. bit 6 = Saturday
  bool hasEndDate = false;
  VxTime end_date;  ///< 23:59:59 of the last day; always set once the event was read or made
  TodaysEntry today;

 private:
  bool OccursDaily(const VxTime& date) const;
  bool OccursWeekly(const VxTime& date) const;
  bool OccursMonthly(const VxTime& date) const;
  bool OccursYearly(const VxTime& date) const;

  // What StartDay answered, for the start and the zone that it holds for.
  mutable VxTime startDayOf;
  mutable unsigned startDayZone = 0;
  mutable CivilDay startDay;
};
