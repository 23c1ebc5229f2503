// The door of the event element: what a user interface or a persisted state brings.

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "framework/AssertSink.h"
#include "fuzz/Property.h"
#include "vexalink_agent_scheduler/vxw/ScheduledEvent.h"

namespace {

class IgnoreAsserts final : public vx::IAssertSink {
 public:
  IgnoreAsserts() { vx::SetAssertSink(this); }
  ~IgnoreAsserts() { vx::SetAssertSink(nullptr); }
  IgnoreAsserts(const IgnoreAsserts&) = delete;
  IgnoreAsserts& operator=(const IgnoreAsserts&) = delete;
  void OnAssert(const char*, int, const vx::StackTrace&) override {}
  bool WantsStacks() const override { return false; }
};

constexpr std::time_t kDay = 86400;

VxTime Step(VxTime origin, long long steps) { return VxTime(origin.Seconds() + steps * kDay); }

// The short cut from occurrence to occurrence agrees with asking day by day.
void RequireSearchAgreesWithTheWalk(const Event& event, VxTime origin) {
  constexpr long long kSteps = 450;
  std::optional<long long> walked;
  if (!event.RepeatsByZero()) {
    for (long long step = 0; step <= kSteps && !walked; ++step) {
      if (event.OccursOnDate(Step(origin, step))) walked = step;
    }
  }
  fuzz::Require(event.FindOccurrence(origin, 0, kSteps) == walked,
                "FindOccurrence gives the first day on which OccursOnDate holds");
}

Event Read(const std::string& xml, const fuzz::Surroundings& around) {
  const vx::auto_com<VxXML::IDocument> document = VxXML::CreateXmlDocument(xml);
  fuzz::Require(static_cast<bool>(document), "what is written parses");
  return Event(document.get(), around.Latitude(), around.Longitude());
}

std::string Write(const Event& event) { return event.toXml()->ToString(); }

void RequireSameFields(const Event& first, const Event& second) {
  fuzz::Require(first.eventid == second.eventid, "eventid survives");
  fuzz::RequireEqual(first.description, second.description, "description survives");
  fuzz::Require(first.offset == second.offset, "offset survives");
  fuzz::Require(first.offset_minutes == second.offset_minutes, "offset_minutes survives");
  fuzz::Require(first.start_period == second.start_period, "start_period survives");
  fuzz::Require(first.start_weekday == second.start_weekday, "start_weekday survives");
  fuzz::Require(first.randomize == second.randomize, "randomize survives");
  fuzz::Require(first.frequency == second.frequency, "frequency survives");
  if (first.frequency == Scheduler::kOnce) return;  // written without its repetition
  fuzz::Require(first.rate == second.rate, "rate survives");
  fuzz::Require(first.daymask == second.daymask, "daymask survives");
  fuzz::Require(first.hasEndDate == second.hasEndDate, "hasEndDate survives");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const fuzz::Surroundings around(text);
  const IgnoreAsserts quiet;
  const vx::auto_com<VxXML::IDocument> document = VxXML::CreateXmlDocument(text);
  if (!document) return 0;
  const Event event(document.get(), around.Latitude(), around.Longitude());
  const std::string written = Write(event);
  fuzz::RequireEqual(Write(event), written, "writing changes nothing");

  const Event once = Read(written, around);
  RequireSameFields(event, once);
  const std::string rewritten = Write(once);
  const std::string third = Write(Read(rewritten, around));
  // By weekday, the start is searched anew in the month in which it came to lie: where it was no
  // month or weekday that takes a round, and another where the epoch's day, 31, rolls over.
  const bool isSearched = event.start_period != Scheduler::kByDay;
  if (!isSearched) fuzz::RequireEqual(rewritten, third, "settles after one round");
  const std::string fourth = Write(Read(third, around));
  fuzz::RequireEqual(isSearched ? Write(Read(fourth, around)) : third, fourth, "settles");

  RequireSearchAgreesWithTheWalk(event, VxTime::GetCurrentTime());
  RequireSearchAgreesWithTheWalk(event, event.start);
  RequireSearchAgreesWithTheWalk(event, Step(event.start, -3));
  event.EventTime(event.end_date);
  return 0;
}
