#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "vexalink_agent_scheduler/vxw/ScheduledEvent.h"

/// The recurrence rules of a table of events, drawn together by kind so that all of them can be
/// asked about one day without touching the events. What is answered, and the assertion records
/// written, are those of asking `OccursOnDate` of each event in the order of the ids.
///
/// Invariant: what was drawn together is that of the table's events, as long as whoever changes the
/// table calls `Forget`; it is drawn together anew when it is next needed, and when the time zone
/// has changed.
class RuleTable {
 public:
  /// The table has changed.
  void Forget() { generation_ = 0; }

  /// The events of `events`, which is the table, that happen on the local date of `date`, in the
  /// order of their ids. Good until the next call.
  const std::vector<Event*>& FindOnDate(const std::map<unsigned long, Event*>& events, VxTime date);

 private:
  // What every rule has: its span, the number of its event in the order of the ids, its rate.
  struct Rule {
    VxTime start;
    VxTime end;
    std::uint32_t number;
    std::int32_t rate;

    bool IsActive(VxTime date) const { return start <= date && date <= end; }
  };
  struct Once : Rule {
    long long days;
  };
  struct Weekly : Rule {
    std::uint8_t weekdays;
    std::int8_t startWeekday;
  };
  // Monthly and yearly: `units` are the start's months or years, `month` 0 where any will do.
  struct ByMonth : Rule {
    long long units;
    std::int8_t month;
    std::int8_t day;      // of the month, or 0 where it is by week:
    std::int8_t weekday;  // 1 = Sunday
    std::int8_t period;   // 1 to 5, the last
  };
  class NthWeekdays;

  void DrawTogether(const std::map<unsigned long, Event*>& events, unsigned generation);
  void Add(const Event& event, std::uint32_t number);
  void AddByMonth(const Event& event, const Rule& rule);
  void Mark(std::uint32_t number) { marks_[number / 64] |= std::uint64_t{1} << (number % 64); }
  void MarkOnce(VxTime date, const CivilDay& day);
  void MarkDaily(VxTime date);
  void MarkWeekly(VxTime date, const CivilDay& day);
  void MarkByMonth(VxTime date, const CivilDay& day);
  void MarkOthers(VxTime date);
  void TakeMarked();

  unsigned generation_ = 0;  // of the zone; 0: nothing is drawn together
  std::vector<Event*> events_;
  std::vector<Once> once_;
  std::vector<Rule> daily_;
  std::vector<Weekly> weekly_;
  std::vector<ByMonth> byMonth_;
  std::vector<std::uint32_t> others_;  // that are asked themselves
  std::vector<std::uint64_t> marks_;   // a bit for each event
  std::vector<Event*> found_;
};
