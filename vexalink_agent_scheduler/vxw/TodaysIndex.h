#pragma once

#include <list>
#include <map>
#include <vector>

#include "vexalink_agent_scheduler/vxw/ScheduledEvent.h"

/// Keeps today's list sorted without walking it.
///
/// The list belongs to the agent, is plain to whoever reads it, and is changed through here only.
/// Invariants: it is sorted by `next_fire`, those of one time in the order in which they were
/// inserted; `firstOfTime_` leads from each time in the list to the first entry of that time; each
/// event in the list knows its entry (`Event::today`) and stands there once. An event's `next_fire`
/// stays as it is while it is in the list.
class TodaysIndex {
 public:
  /// `list` must outlive this and be empty.
  explicit TodaysIndex(std::list<Event*>& list) : list_(list) {}

  /// Empties the list.
  void Clear();
  /// Inserts an event behind those of its time; one that is in the list is moved.
  void Insert(Event& event);
  /// Replaces the list by `events`, as if they had been inserted one after the other.
  void Assign(const std::vector<Event*>& events);
  /// Takes an event out; one that is not in the list is left alone.
  void Remove(Event& event);
  bool IsListed(const Event& event) const { return event.today.listing == listing_; }
  /// Whether `a` stands before `b`; both are in the list.
  static bool IsBefore(const Event& a, const Event& b);

 private:
  using Entry = std::list<Event*>::iterator;

  void Enter(Event& event, Entry entry);

  std::list<Event*>& list_;
  std::map<VxTime, Entry> firstOfTime_;
  unsigned long insertions_ = 0;
  unsigned long listing_ = 1;  // changes when the list is emptied, so that no event need be told
};
