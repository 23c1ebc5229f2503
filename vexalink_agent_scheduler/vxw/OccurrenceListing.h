#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <queue>
#include <utility>
#include <vector>

#include "vexalink_agent_scheduler/vxw/DayGrid.h"
#include "vexalink_agent_scheduler/vxw/ScheduledEvent.h"

/// One entry of a listing: an event on a local day, and the local time at which it fires.
struct ListedOccurrence {
  const Event* event = nullptr;
  int year = 0;            ///< full year
  signed char month = 0;   ///< 1..12
  signed char day = 0;     ///< 1..31
  signed char hour = 0;    ///< 0..23, -1 where the firing time cannot be converted
  signed char minute = 0;  ///< 0..59, or -1
};

/// Lists what the events of a table do over a span of local days, day by day and within a day in
/// the order of the ids, without asking each event about each day: what is listed, and the
/// assertion records written, are those of the plain walk. The table must stay as it is while it is
/// listed.
class OccurrenceListing {
 public:
  /// Days are stepped through by 86400 seconds from `from` until the local date is past that of
  /// `to`.
  OccurrenceListing(const std::map<unsigned long, Event*>& events, VxTime from, VxTime to);

  /// Replaces `out` by the entries of the next few days (there may be none among them). False, and
  /// `out` empty, when the listing is at its end.
  bool Next(std::vector<ListedOccurrence>* out);

 private:
  // An event, and what every entry of it has in common.
  struct Source {
    const Event* event;
    signed char hour;  // of a clock time within the day; kAskEachDay where it is to be worked out
    signed char minute;
    bool repeatsByZero;
  };
  // The first step at which a source may have something, and its index.
  using Due = std::pair<long long, std::uint32_t>;
  // A source that is to be asked on a day of the grid.
  struct Asked {
    DayGrid::Position day;
    std::uint32_t source;
  };
  static constexpr signed char kAskEachDay = -2;

  static Source MakeSource(const Event& event);
  void Enter(std::uint32_t source, long long fromStep);
  void CollectDue(long long end);
  void CountDays();
  void Place(std::vector<ListedOccurrence>* out);
  void AskInOrder(std::vector<ListedOccurrence>* out) const;

  VxTime from_;
  CivilDay lastDate_;
  long long lastStep_;
  long long mostDays_;           // that are taken up at once
  long long daysAtOnce_;         // fewer where little is found, so that empty years cost nothing
  std::vector<Source> sources_;  // by id
  std::priority_queue<Due, std::vector<Due>, std::greater<>> due_;
  DayGrid grid_;
  std::vector<std::uint32_t> active_;         // whom to ask about the grid's days
  std::vector<DayGrid::Position> positions_;  // of one of them
  std::vector<Asked> asked_;                  // by source; who happens
  std::vector<Asked> askedZero_;              // by source; who only leaves an assertion record
  std::vector<std::uint32_t> dayEnds_;        // of each day's entries
  bool hasUntimed_ = false;                   // an entry whose time is still to be worked out
};
