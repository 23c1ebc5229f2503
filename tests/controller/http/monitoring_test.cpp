#include "controller/http/Monitoring.h"

#include <charconv>
#include <cmath>
#include <gtest/gtest.h>
#include <set>
#include <sstream>

#include "FakeHouse.h"
#include "RawClient.h"
#include "controller/http/MetricsText.h"

namespace {

/// The exposition format, read as strictly as it is written down: families without gaps, each with
/// its type before its samples, no sample twice, histograms that add up.
class Metrics {
 public:
  explicit Metrics(const std::string& text) {
    EXPECT_TRUE(text.empty() || text.ends_with('\n'));
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) Read(line);
    CheckHistograms();
  }

  double At(const std::string& sample) const {
    const auto found = samples.find(sample);
    if (found != samples.end()) return found->second;
    ADD_FAILURE() << "there is no " << sample;
    return std::nan("");
  }
  bool Has(const std::string& sample) const { return samples.contains(sample); }

  std::map<std::string, double> samples;
  std::map<std::string, std::string> types;

 private:
  void Read(const std::string& line) {
    std::string_view rest = line;
    if (Take(rest, "# HELP ")) {
      family_ = TakeName(rest, ":");
      EXPECT_TRUE(Take(rest, " ") && !rest.empty() && IsEscaped(rest, "n\\")) << line;
      EXPECT_TRUE(helped_.insert(family_).second) << family_ << " comes twice";
    } else if (Take(rest, "# TYPE ")) {
      EXPECT_EQ(TakeName(rest, ":"), family_) << "the type follows the help";
      EXPECT_TRUE(rest == " counter" || rest == " gauge" || rest == " histogram") << line;
      types[family_] = rest.substr(1);
    } else {
      const std::string name = TakeName(rest, ":");
      const std::string labels = TakeLabels(rest);
      EXPECT_TRUE(Take(rest, " ") && IsNumber(rest)) << line;
      ReadSample(name, labels, std::string(rest));
    }
  }

  static bool Take(std::string_view& text, std::string_view beginning) {
    if (!text.starts_with(beginning)) return false;
    text.remove_prefix(beginning.size());
    return true;
  }

  /// Letters, digits and "_", no digit first; in the names of families also `more`.
  static std::string TakeName(std::string_view& text, const std::string& more) {
    const std::string letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_" + more;
    const std::size_t end = std::min(text.find_first_not_of(letters + "0123456789"), text.size());
    const std::string name(text.substr(0, end));
    EXPECT_TRUE(!name.empty() && letters.find(name[0]) != std::string::npos) << text;
    text.remove_prefix(end);
    return name;
  }

  /// Whether each backslash has one of `escapes` behind it.
  static bool IsEscaped(std::string_view text, std::string_view escapes) {
    for (std::size_t at = 0; at < text.size(); ++at) {
      if (text[at] != '\\') continue;
      if (++at == text.size() || escapes.find(text[at]) == std::string_view::npos) return false;
    }
    return true;
  }

  /// `{name="value",...}` as it stands there; nothing where there is none.
  static std::string TakeLabels(std::string_view& text) {
    const std::string_view before = text;
    if (!Take(text, "{")) return "";
    do {
      TakeName(text, "");
      EXPECT_TRUE(Take(text, "=\"")) << before;
      std::size_t end = 0;
      while (end < text.size() && text[end] != '"') end += text[end] == '\\' ? 2 : 1;
      EXPECT_TRUE(IsEscaped(text.substr(0, end), "n\\\"")) << before;
      text.remove_prefix(std::min(end, text.size()));
      EXPECT_TRUE(Take(text, "\"")) << before;
    } while (Take(text, ","));
    EXPECT_TRUE(Take(text, "}")) << before;
    return std::string(before.substr(0, before.size() - text.size()));
  }

  static bool IsNumber(std::string_view text) {
    if (text == "NaN" || text == "+Inf" || text == "-Inf") return true;
    double number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    return read.ec == std::errc() && read.ptr == text.data() + text.size();
  }

  void ReadSample(const std::string& name, const std::string& labels, const std::string& value) {
    ASSERT_TRUE(types.contains(family_)) << name;
    const bool histogram = types[family_] == "histogram";
    const std::string suffix = name.substr(std::min(name.size(), family_.size()));
    EXPECT_EQ(name.substr(0, family_.size()), family_) << "samples stand with their family";
    EXPECT_EQ(histogram, suffix == "_bucket" || suffix == "_sum" || suffix == "_count") << name;
    EXPECT_EQ(suffix.empty(), !histogram) << name;
    if (types[family_] == "counter") {
      EXPECT_TRUE(name.ends_with("_total")) << name;
      EXPECT_GE(std::stod(value), 0) << name;
    }
    EXPECT_TRUE(samples.emplace(name + labels, std::stod(value)).second) << name << labels;
  }

  void CheckHistograms() {
    for (const auto& [name, type] : types) {
      if (type != "histogram") continue;
      double before = 0;
      for (const auto& [sample, value] : Buckets(name)) {
        EXPECT_GE(value, before) << name << " counts what is below, too";
        before = value;
      }
      EXPECT_EQ(At(name + "_bucket{le=\"+Inf\"}"), At(name + "_count"));
      EXPECT_TRUE(Has(name + "_sum"));
    }
  }

  std::map<double, double> Buckets(const std::string& name) const {
    std::map<double, double> buckets;
    const std::string prefix = name + "_bucket{le=\"";
    for (const auto& [sample, value] : samples) {
      if (sample.starts_with(prefix)) buckets[std::stod(sample.substr(prefix.size()))] = value;
    }
    return buckets;
  }

  std::string family_;
  std::set<std::string> helped_;
};

struct Watched : TestServer {
  explicit Watched(bool reachable = false) : TestServer({}, reachable) {
    controller::AddMonitoring(*server, house, stream);
    server->Add(stream.Route("/stream"));
    Listen();
  }
  ~Watched() { server.reset(); }

  FakeHouse house;
  controller::EventStream stream{base.get(), [](const controller::HttpRequest&) { return true; }};
};

controller::PlannedOccurrence Occurrence(std::time_t planned, std::optional<std::time_t> due,
                                         controller::OccurrenceState state) {
  controller::PlannedOccurrence occurrence;
  occurrence.planned = planned;
  occurrence.due = due;
  occurrence.state = state;
  return occurrence;
}

}  // namespace

TEST(Metrics, HoldWhatIsCounted) {
  Watched server;
  server.house.counters.fired = {{"timer", 7}};
  server.house.counters.held = {{"paused", 2}, {"odd \"one\"\\\n", 1}};
  server.house.counters.missed = {{"down", 3}};
  server.house.counters.actions = {{"done", 5}, {"failed", 1}};
  server.house.counters.delays = {4, 3, 0, 0, 1, 0, 0, 0, 2};
  server.house.counters.delaySum = 200.25;
  server.house.counters.saves = 11;
  server.house.counters.saveFailures = 1;
  server.house.counters.clockJumps = 2;
  server.house.counters.tickLateness = 0.0004;
  server.house.counters.worstTickLateness = 1.5;
  using controller::OccurrenceState;
  server.house.today = {Occurrence(1795000100, 1795000050, OccurrenceState::kFired),
                        Occurrence(1795000300, 1795000500, OccurrenceState::kPending),
                        Occurrence(1795000400, std::nullopt, OccurrenceState::kPending)};
  server.house.trouble = "the disk is full";
  RawClient listener(server);
  listener.Send("GET /stream HTTP/1.1\r\nHost: localhost\r\n\r\n");
  EXPECT_TRUE(listener.ReadUntil("retry"));
  EXPECT_EQ(Ask(server, "GET", "/none").status, 404);

  RawAnswer answer = Ask(server, "GET", "/metrics");
  EXPECT_EQ(answer.fields["content-type"], "text/plain; version=0.0.4; charset=utf-8");
  const Metrics metrics(answer.body);
  const struct {
    const char* sample;
    double value;
  } rows[] = {
      {"vexalink_firings_total{cause=\"timer\"}", 7},
      {"vexalink_firings_total{cause=\"by-hand\"}", 0},
      {"vexalink_held_total{reason=\"paused\"}", 2},
      {"vexalink_held_total{reason=\"odd \\\"one\\\"\\\\\\n\"}", 1},
      {"vexalink_missed_total{reason=\"down\"}", 3},
      {"vexalink_actions_total{outcome=\"failed\"}", 1},
      {"vexalink_firing_delay_seconds_bucket{le=\"0.1\"}", 4},
      {"vexalink_firing_delay_seconds_bucket{le=\"0.25\"}", 7},
      {"vexalink_firing_delay_seconds_bucket{le=\"2.5\"}", 8},
      {"vexalink_firing_delay_seconds_bucket{le=\"60\"}", 8},
      {"vexalink_firing_delay_seconds_bucket{le=\"+Inf\"}", 10},
      {"vexalink_firing_delay_seconds_sum", 200.25},
      {"vexalink_firing_delay_seconds_count", 10},
      {"vexalink_next_firing_timestamp_seconds", 1795000400},
      {"vexalink_saves_total", 11},
      {"vexalink_save_failures_total", 1},
      {"vexalink_saving_works", 0},
      {"vexalink_clock_jumps_total", 2},
      {"vexalink_tick_lateness_seconds", 0.0004},
      {"vexalink_tick_lateness_max_seconds", 1.5},
      {"vexalink_stream_clients", 1},
      {"vexalink_http_responses_total{status=\"404\"}", 1},
      {"vexalink_http_connections", 2},
      {"process_start_time_seconds", 1795000000},
      {"vexalink_build_info{version=\"" VEXALINK_VERSION "\"}", 1},
  };
  for (const auto& row : rows) EXPECT_DOUBLE_EQ(metrics.At(row.sample), row.value) << row.sample;
  EXPECT_GT(metrics.At("process_resident_memory_bytes"), 1e6);
  EXPECT_LT(metrics.At("process_resident_memory_bytes"), 1e9);
  EXPECT_GT(metrics.At("process_open_fds"), 3);
  EXPECT_GE(metrics.At("process_cpu_seconds_total"), 0);
}

TEST(Metrics, LeaveOutANextFiringThatThereIsNot) {
  Watched server;
  server.house.today = {Occurrence(1, 1, controller::OccurrenceState::kMissed)};
  const Metrics metrics(Ask(server, "GET", "/metrics").body);
  EXPECT_FALSE(metrics.Has("vexalink_next_firing_timestamp_seconds"));
  EXPECT_EQ(metrics.At("vexalink_saving_works"), 1);
}

TEST(Metrics, WriteNumbersThatCanBeReadBack) {
  controller::MetricsText text;
  text.Family("a", "gauge", "What \\ is\nit.");
  text.Sample(0.1 + 0.2, {{"n", "1"}});
  text.Sample(1e300, {{"n", "2"}});
  text.Sample(std::nan(""), {{"n", "3"}});
  text.Sample(-HUGE_VAL, {{"n", "4"}});
  text.Sample(std::uint64_t{18446744073709551615U}, {{"n", "5"}});
  const Metrics read(text.Text());
  EXPECT_EQ(read.At("a{n=\"1\"}"), 0.1 + 0.2);
  EXPECT_EQ(read.At("a{n=\"2\"}"), 1e300);
  EXPECT_TRUE(std::isnan(read.At("a{n=\"3\"}")));
  EXPECT_EQ(read.At("a{n=\"4\"}"), -HUGE_VAL);
  EXPECT_NE(text.Text().find(" 18446744073709551615\n"), std::string::npos);
  EXPECT_EQ(text.Text().find("# HELP a What \\\\ is\\nit.\n"), 0U);
}

TEST(Health, TellsWhetherTheLoopTurnsAndSavingWorks) {
  Watched server;
  EXPECT_EQ(Ask(server, "GET", "/healthz").body, "ok\n");
  EXPECT_EQ(Ask(server, "GET", "/readyz").status, 200);
  server.house.trouble = "project \"/p.db\": the disk is full";
  EXPECT_EQ(Ask(server, "GET", "/healthz").status, 200);
  const RawAnswer unready = Ask(server, "GET", "/readyz");
  EXPECT_EQ(unready.status, 503);
  EXPECT_EQ(ProblemName(unready), "not-ready");
  EXPECT_EQ(ProblemDetail(unready), "saving does not work: project \"/p.db\": the disk is full");
}

TEST(Health, HoldsRequestsBackUntilTheSchedulerRuns) {
  Watched server;
  server.house.waiting = "the clock is wrong";
  EXPECT_EQ(Ask(server, "GET", "/healthz").body, "ok\n");
  EXPECT_EQ(ProblemDetail(Ask(server, "GET", "/readyz")), "the clock is wrong");
  EXPECT_EQ(Metrics(Ask(server, "GET", "/metrics").body).At("vexalink_waiting"), 1);
  server.house.waiting.clear();
  EXPECT_EQ(Ask(server, "GET", "/readyz").status, 200);
  EXPECT_EQ(Metrics(Ask(server, "GET", "/metrics").body).At("vexalink_waiting"), 0);
}

TEST(Health, TellsOthersNoNamesOfFiles) {
  Watched server(/*reachable=*/true);
  server.house.trouble = "project \"/p.db\": the disk is full";
  EXPECT_EQ(Ask(server, "GET", "/healthz").status, 200);
  EXPECT_EQ(ProblemDetail(Ask(server, "GET", "/readyz")), "saving does not work: the log says why");
  EXPECT_EQ(Ask(server, "GET", "/metrics").status, 401);
}
