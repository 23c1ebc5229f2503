#include "controller/firing/ScheduleTrace.h"

#include <charconv>
#include <utility>

namespace controller {

namespace {

constexpr std::string_view kDay = "SCHEDULE_TRACE:  For: ";
constexpr std::string_view kEvent = "SCHEDULE_TRACE:  Event: ";
// A description may hold anything, these words too: the last of them counts.
constexpr std::string_view kWhen = ") will fire at ";

/// The number that begins `text`, which is taken off, with the `separator` behind it.
template <typename Number>
bool TakeNumber(std::string_view& text, char separator, Number* number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *number);
  if (error != std::errc()) return false;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  if (separator == '\0') return text.empty();
  if (text.empty() || text.front() != separator) return false;
  text.remove_prefix(1);
  return true;
}

std::optional<DayFields> ReadTraceDay(std::string_view text) {
  DayFields day;
  if (!TakeNumber(text, '/', &day.month) || !TakeNumber(text, '/', &day.day) ||
      !TakeNumber(text, '\0', &day.year)) {
    return std::nullopt;
  }
  return day;
}

std::optional<ScheduleTrace::Entry> ReadEntry(std::string_view text) {
  ScheduleTrace::Entry entry;
  const auto when = text.rfind(kWhen);
  if (when == std::string_view::npos) return std::nullopt;
  std::string_view time = text.substr(when + kWhen.size());
  if (!TakeNumber(text, ' ', &entry.event) || !TakeNumber(time, ':', &entry.hour) ||
      !TakeNumber(time, '\0', &entry.minute)) {
    return std::nullopt;
  }
  return entry;
}

}  // namespace

void ScheduleTraceReader::Read(std::string_view line) {
  if (line.starts_with(kDay)) {
    if (const auto day = ReadTraceDay(line.substr(kDay.size()))) trace_ = ScheduleTrace{*day, {}};
  } else if (trace_ && line.starts_with(kEvent)) {
    if (const auto entry = ReadEntry(line.substr(kEvent.size()))) {
      trace_->entries.push_back(*entry);
    }
  }
}

std::optional<ScheduleTrace> ScheduleTraceReader::Take() {
  return std::exchange(trace_, std::nullopt);
}

}  // namespace controller
