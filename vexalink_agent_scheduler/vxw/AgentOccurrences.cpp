// The listing of what happens over a span of days.

#include <algorithm>
#include <functional>
#include <optional>
#include <queue>
#include <tuple>
#include <vector>

#include "vexalink_agent_scheduler/vxw/LocalTime.h"
#include "vexalink_agent_scheduler/vxw/vexalink_agent_scheduler.h"

namespace {

using local_time::kSecondsPerDay;

bool IsOnLaterDay(VxTime a, VxTime b) {
  return std::tuple(a.GetYear(), a.GetMonth(), a.GetDay()) >
         std::tuple(b.GetYear(), b.GetMonth(), b.GetDay());
}

// The days of a listing on which something is to be asked of an event, in order, without a walk
// over those on which nothing can come.
class Agenda {
 public:
  /// Steps of 86400 seconds from `from`, not beyond `lastStep`.
  Agenda(VxTime from, long long lastStep) : from_(from), lastStep_(lastStep) {}

  /// Enters the first step from `first` on at which `event` is to be asked.
  void Enter(Event* event, long long first) {
    if (const auto step = NextStep(*event, first)) due_.push({*step, event->eventid, event});
  }

  bool IsEmpty() const { return due_.empty(); }
  VxTime NextDay() const { return VxTime(from_.Seconds() + due_.top().step * kSecondsPerDay); }

  /// Takes the events to be asked on the next day, in the order of their ids, and enters their
  /// next.
  void TakeDay(std::vector<Event*>* out) {
    out->clear();
    const long long step = due_.top().step;
    while (!due_.empty() && due_.top().step == step) {
      out->push_back(due_.top().event);
      due_.pop();
    }
    for (Event* event : *out) Enter(event, step + 1);
  }

 private:
  struct Entry {
    long long step;
    unsigned long id;
    Event* event;
    bool operator>(const Entry& other) const {
      return std::tie(step, id) > std::tie(other.step, other.id);
    }
  };

  std::optional<long long> NextStep(const Event& event, long long first) const {
    if (!event.RepeatsByZero()) return event.FindOccurrence(from_, first, lastStep_);
    // It never happens, but each day between its start and its end becomes an assertion record.
    const long long untilStart = event.start.Seconds() - from_.Seconds();
    const long long started =
        untilStart <= 0 ? 0 : (untilStart + kSecondsPerDay - 1) / kSecondsPerDay;
    const long long step = std::max(first, started);
    if (step > lastStep_) return std::nullopt;
    const VxTime day(from_.Seconds() + step * kSecondsPerDay);
    return day > event.end_date ? std::nullopt : std::optional(step);
  }

  VxTime from_;
  long long lastStep_;
  std::priority_queue<Entry, std::vector<Entry>, std::greater<>> due_;
};

void AppendOccurrence(VxXML::INode& list, const Event& event, VxTime day) {
  const VxTime time = event.EventTime(day);
  VxXML::INode& entry = XmlHelper::AddChild(list, "event", "");
  entry.AddUnsigned("eventid", event.eventid);
  entry.AddText("description", event.description);
  VxXML::INode& when = XmlHelper::AddChild(entry, "event_time", "");
  when.AddInt("year", day.GetYear());
  when.AddInt("month", day.GetMonth());
  when.AddInt("day", day.GetDay());
  when.AddInt("hour", time.GetHour());
  when.AddInt("min", time.GetMinute());
}

}  // namespace

vx::auto_com<VxXML::INode> vexalink_agent_scheduler::GetEventOccurences(VxTime from,
                                                                        VxTime to) const {
  constexpr long long kDaysToSpare = 3;  // `to` is an instant of the last day, zones may shift
  vx::auto_com<VxXML::INode> list = VxXML::CreateXmlNode("events", "");
  Agenda agenda(from, (to.Seconds() - from.Seconds()) / kSecondsPerDay + kDaysToSpare);
  for (const auto& [id, event] : events) agenda.Enter(event, 0);
  std::vector<Event*> asked;
  std::vector<const Event*> happening;
  while (!agenda.IsEmpty()) {
    const VxTime day = agenda.NextDay();
    if (IsOnLaterDay(day, to)) break;
    agenda.TakeDay(&asked);
    happening.clear();
    for (const Event* event : asked) {
      if (event->OccursOnDate(day)) happening.push_back(event);
    }
    for (const Event* event : happening) AppendOccurrence(*list, *event, day);
  }
  return list;
}
