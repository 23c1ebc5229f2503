#include "controller/http/Monitoring.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sys/resource.h>
#include <unistd.h>

#include "controller/http/MetricsText.h"
#include "controller/http/Problem.h"

namespace controller {

namespace {

const std::vector<double>& DelayBounds() {
  static const std::vector<double> bounds = {0.1, 0.25, 0.5, 1, 2.5, 5, 10, 60};
  return bounds;
}

/// One counter with a label; those values that are known from the start stand there with 0, so that
/// a first increase can be seen.
void CounterByLabel(MetricsText& text, const std::string& name, const std::string& help,
                    const std::string& label, const std::map<std::string, std::uint64_t>& counted,
                    std::initializer_list<const char*> known) {
  std::map<std::string, std::uint64_t> all;
  for (const char* const value : known) all[value] = 0;
  for (const auto& [value, count] : counted) all[value] = count;
  text.Family(name, "counter", help);
  for (const auto& [value, count] : all) text.Sample(count, {{label, value}});
}

void Single(MetricsText& text, const std::string& name, const std::string& type,
            const std::string& help, double value) {
  text.Family(name, type, help);
  text.Sample(value);
}

void Counter(MetricsText& text, const std::string& name, const std::string& help,
             std::uint64_t value) {
  text.Family(name, "counter", help);
  text.Sample(value);
}

/// The next occurrence of the day that is still to come: its due time, or where the random part is
/// not known yet the planned one.
std::optional<std::time_t> NextOf(const std::vector<PlannedOccurrence>& today) {
  std::optional<std::time_t> next;
  for (const PlannedOccurrence& occurrence : today) {
    if (occurrence.state != OccurrenceState::kPending) continue;
    const std::time_t when = occurrence.due.value_or(occurrence.planned);
    if (!next || when < *next) next = when;
  }
  return next;
}

void AddFirings(MetricsText& text, const HouseCounters& counters) {
  CounterByLabel(text, "vexalink_firings_total", "Occurrences that were acted on.", "cause",
                 counters.fired, {"timer", "caught-up", "by-hand"});
  CounterByLabel(text, "vexalink_held_total", "Occurrences that nothing was done about on purpose.",
                 "reason", counters.held,
                 {"already-acted", "not-listed", "disabled", "away", "paused", "skipped", "journal"});
  CounterByLabel(text, "vexalink_missed_total", "Occurrences that were missed.", "reason",
                 counters.missed, {"down", "clock-jump", "past-midnight", "left-out", "superseded"});
  CounterByLabel(text, "vexalink_actions_total", "Actions by how they ended.", "outcome",
                 counters.actions, {"done", "failed", "timed-out", "condition", "cancelled"});
  text.Family("vexalink_firing_delay_seconds", "histogram",
              "How long after its due time an occurrence was acted on.");
  text.Histogram(DelayBounds(), counters.delays, counters.delaySum);
}

void AddHouse(MetricsText& text, House& house) {
  const HouseCounters& counters = house.Counters();
  AddFirings(text, counters);
  if (const auto next = NextOf(house.Today())) {
    Single(text, "vexalink_next_firing_timestamp_seconds", "gauge",
           "When the next occurrence of today is due; missing where none is left.",
           static_cast<double>(*next));
  }
  Counter(text, "vexalink_saves_total", "Changes that were saved.", counters.saves);
  Counter(text, "vexalink_save_failures_total", "Attempts to save that failed.",
          counters.saveFailures);
  Single(text, "vexalink_saving_works", "gauge", "1 while saving works, else 0.",
         house.SavingTrouble().empty() ? 1 : 0);
  Single(text, "vexalink_waiting", "gauge",
         "1 while the scheduler has not begun, because the clock cannot be right; else 0.",
         house.WaitingFor().empty() ? 0 : 1);
  Counter(text, "vexalink_clock_jumps_total", "Times that the clock was set.", counters.clockJumps);
  Counter(text, "vexalink_zone_changes_total", "Times that the time zone became another.",
          counters.zoneChanges);
  Counter(text, "vexalink_ticks_total", "Ticks of the scheduler.", counters.ticks);
  Single(text, "vexalink_tick_lateness_seconds", "gauge", "How late the latest tick came.",
         counters.tickLateness);
  Single(text, "vexalink_tick_lateness_max_seconds", "gauge",
         "How late the latest of all ticks came.", counters.worstTickLateness);
}

void AddServer(MetricsText& text, const HttpServer& server, const EventStream& stream) {
  const HttpCounters& counters = server.Counters();
  text.Family("vexalink_http_responses_total", "counter", "Answers by their status.");
  for (const auto& [status, count] : counters.answers) {
    text.Sample(count, {{"status", std::to_string(status)}});
  }
  Counter(text, "vexalink_http_connections_total", "Connections that were taken.",
          counters.connections);
  Single(text, "vexalink_http_connections", "gauge", "Connections that are open.",
         static_cast<double>(counters.openConnections));
  Single(text, "vexalink_stream_clients", "gauge", "Clients of the stream.",
         static_cast<double>(stream.Clients()));
  Counter(text, "vexalink_stream_events_total", "Events that were told on the stream.",
          stream.Published());
  Counter(text, "vexalink_stream_dropped_total",
          "Clients that were dropped because they did not read.", stream.Dropped());
}

/// Pages of memory, the second number there: those that are resident.
double ResidentBytes() {
  long total = 0;
  long resident = 0;
  std::ifstream("/proc/self/statm") >> total >> resident;
  return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

double OpenFiles() {
  std::error_code error;
  double count = 0;
  for (std::filesystem::directory_iterator entry("/proc/self/fd", error), end;
       !error && entry != end; entry.increment(error)) {
    ++count;
  }
  return count - 1;  // the one that looks
}

double CpuSeconds() {
  rusage used{};
  getrusage(RUSAGE_SELF, &used);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(used.ru_utime) + seconds(used.ru_stime);
}

void AddProcess(MetricsText& text, House& house) {
  Single(text, "process_resident_memory_bytes", "gauge", "Memory that is resident.",
         ResidentBytes());
  Single(text, "process_start_time_seconds", "gauge", "When the controller started.",
         static_cast<double>(house.StartedAt()));
  Single(text, "process_cpu_seconds_total", "counter", "Time of the processor that was used.",
         CpuSeconds());
  Single(text, "process_open_fds", "gauge", "Open files.", OpenFiles());
  text.Family("vexalink_build_info", "gauge", "1, with what was built.");
  text.Sample(std::uint64_t{1}, {{"version", VEXALINK_VERSION}});
}

void AddRoute(HttpServer& server, const std::string& path, bool open,
              std::function<HttpResponse()> answer) {
  HttpRoute route;
  route.method = "GET";
  route.path = path;
  route.open = open;
  route.always = true;
  route.handler = [answer = std::move(answer)](const HttpRequest&, Respond respond) {
    respond(answer());
  };
  server.Add(std::move(route));
}

HttpResponse Plain(std::string text) {
  return {200, "text/plain; charset=utf-8", std::move(text), {}, {}};
}

}  // namespace

std::string MetricsOf(House& house, const HttpServer& server, const EventStream& stream) {
  MetricsText text;
  AddHouse(text, house);
  AddServer(text, server, stream);
  AddProcess(text, house);
  return text.Text();
}

void AddMonitoring(HttpServer& server, House& house, const EventStream& stream) {
  AddRoute(server, "/healthz", /*open=*/true, [] { return Plain("ok\n"); });
  AddRoute(server, "/readyz", /*open=*/true, [&house, &server] {
    const std::string waiting = house.WaitingFor();
    if (!waiting.empty()) throw Problem("not-ready", waiting);
    const std::string trouble = house.SavingTrouble();
    if (trouble.empty()) return Plain("ok\n");
    // Anybody may ask here, also from elsewhere: they need not know the names of files.
    throw Problem("not-ready",
                  "saving does not work: " + (server.NeedsToken() ? "the log says why" : trouble));
  });
  AddRoute(server, "/metrics", /*open=*/false, [&] {
    return HttpResponse{
        200, "text/plain; version=0.0.4; charset=utf-8", MetricsOf(house, server, stream), {}, {}};
  });
}

}  // namespace controller
