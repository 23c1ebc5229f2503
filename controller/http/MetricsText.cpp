#include "controller/http/MetricsText.h"

#include <charconv>
#include <cmath>

namespace controller {

namespace {

std::string NumberText(double value) {
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value > 0 ? "+Inf" : "-Inf";
  char text[64];
  const auto end = std::to_chars(text, text + sizeof(text), value);
  return {text, end.ptr};
}

std::string Escaped(const std::string& text, bool quotes) {
  std::string escaped;
  for (const char byte : text) {
    if (byte == '\\') {
      escaped += "\\\\";
    } else if (byte == '\n') {
      escaped += "\\n";
    } else if (byte == '"' && quotes) {
      escaped += "\\\"";
    } else {
      escaped += byte;
    }
  }
  return escaped;
}

}  // namespace

void MetricsText::Family(const std::string& name, const std::string& type,
                         const std::string& help) {
  name_ = name;
  text_ += "# HELP " + name + " " + Escaped(help, /*quotes=*/false) + "\n";
  text_ += "# TYPE " + name + " " + type + "\n";
}

void MetricsText::Sample(double value, const Labels& labels) {
  Line("", labels, NumberText(value));
}

void MetricsText::Sample(std::uint64_t value, const Labels& labels) {
  Line("", labels, std::to_string(value));
}

void MetricsText::Histogram(const std::vector<double>& bounds,
                            const std::vector<std::uint64_t>& counts, double sum) {
  std::uint64_t total = 0;
  for (std::size_t at = 0; at < counts.size(); ++at) {
    total += counts[at];
    const std::string bound = at < bounds.size() ? NumberText(bounds[at]) : "+Inf";
    Line("_bucket", {{"le", bound}}, std::to_string(total));
  }
  Line("_sum", {}, NumberText(sum));
  Line("_count", {}, std::to_string(total));
}

void MetricsText::Line(const std::string& suffix, const Labels& labels, const std::string& value) {
  text_ += name_ + suffix;
  std::string list;
  for (const auto& [name, content] : labels) {
    list += (list.empty() ? "" : ",") + name + "=\"" + Escaped(content, /*quotes=*/true) + "\"";
  }
  if (!list.empty()) text_ += "{" + list + "}";
  text_ += " " + value + "\n";
}

}  // namespace controller
