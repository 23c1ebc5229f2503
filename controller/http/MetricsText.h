#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace controller {

/// Writes the text that Prometheus reads (exposition format 0.0.4).
class MetricsText {
 public:
  using Labels = std::vector<std::pair<std::string, std::string>>;

  /// Begins a family: all samples of it follow. `type` is "counter", "gauge" or "histogram"; `help`
  /// one sentence.
  void Family(const std::string& name, const std::string& type, const std::string& help);
  void Sample(double value, const Labels& labels = {});
  void Sample(std::uint64_t value, const Labels& labels = {});
  /// The one family "histogram": `counts` how many lie in each bucket, one more than `bounds`: the
  /// last ones lie beyond.
  void Histogram(const std::vector<double>& bounds, const std::vector<std::uint64_t>& counts,
                 double sum);

  const std::string& Text() const { return text_; }

 private:
  void Line(const std::string& suffix, const Labels& labels, const std::string& value);

  std::string name_;
  std::string text_;
};

}  // namespace controller
