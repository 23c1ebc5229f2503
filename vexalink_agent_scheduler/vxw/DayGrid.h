#pragma once

#include <cstdint>
#include <ctime>
#include <utility>
#include <vector>

#include "vexalink_agent_scheduler/vxw/CivilDay.h"
#include "vexalink_agent_scheduler/vxw/ScheduledEvent.h"

/// Some days of a walk in steps of 86400 s, with what recurrence rules ask of each, and the rules
/// applied to all of them at once. Civil days never go back from step to step; a clock change may
/// show one twice or leave one out.
class DayGrid {
 public:
  struct Day {
    VxTime instant;
    CivilDay civil;
    /// Whether the day is such that each clock time comes out as itself: it is known, and no change
    /// of the clocks leaves a time out.
    bool hasAllTimes = false;
  };
  using Position = std::uint32_t;

  /// Takes up the days of the steps `first` to `last` from `origin`, but none from the first on
  /// whose date is past `lastDate`: false where it stopped there.
  bool Fill(VxTime origin, long long first, long long last, const CivilDay& lastDate);

  const std::vector<Day>& Days() const { return days_; }

  /// Replaces `out` by the positions of the days on which `event` happens, in order. Nothing for
  /// one that repeats by 0. Writes no assertion record.
  void FindOccurrences(const Event& event, std::vector<Position>* out) const;

  /// The positions, from `first` to before `second`, of the days from the event's start to its end.
  std::pair<Position, Position> ActivePositions(const Event& event) const;

 private:
  // The days of one month: positions from `begin` to before `end`.
  struct Month {
    CivilDay civil;  // of its first day here
    Position begin;
    Position end;
  };
  using Range = std::pair<Position, Position>;

  void FindOnce(const Event& event, Range active, std::vector<Position>* out) const;
  void FindDaily(const Event& event, Range active, std::vector<Position>* out) const;
  void FindWeekly(const Event& event, Range active, std::vector<Position>* out) const;
  void FindByMonth(const Event& event, Range active, std::vector<Position>* out) const;
  void FindOnEpoch(const Event& event, Range active, std::vector<Position>* out) const;
  void AppendWeekdays(std::uint8_t mask, Position begin, Position end,
                      std::vector<Position>* out) const;
  void AppendDate(long long civilDays, Range within, std::vector<Position>* out) const;

  std::vector<Day> days_;
  std::vector<Month> months_;
  std::vector<std::uint8_t> weekdays_;  // 1 << weekday, 0 = Sunday
};
