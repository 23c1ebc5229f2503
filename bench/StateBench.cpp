// A hundred thousand events from and to text.

#include <benchmark/benchmark.h>
#include <expat.h>
#include <pugixml.hpp>
#include <sstream>

#include "bench/BenchTables.h"
#include "tests/support/TestClock.h"

namespace {

constexpr int kEvents = 100000;

const std::string& StateText() {
  static const std::string text = [] {
    const ZoneScope zone(kBenchZone);
    return PersistedState(kEvents);
  }();
  return text;
}

void BM_Initialize(benchmark::State& state) {
  const ZoneScope zone(kBenchZone);
  const TestClock clock("2024-03-06 12:00:00");
  const auto config = VxXML::CreateXmlNode("config", "");
  const auto document = VxXML::CreateXmlDocument(StateText());
  for (auto _ : state) {
    QuietHost host;
    vexalink_agent_scheduler agent(host);
    agent.Initialize(2, *config, document->GetRoot());
    benchmark::DoNotOptimize(agent);
  }
  state.SetItemsProcessed(state.iterations() * kEvents);
}
BENCHMARK(BM_Initialize)->Unit(benchmark::kMillisecond);

void BM_Initialize_expat(benchmark::State& state) {
  const std::string& text = StateText();
  for (auto _ : state) {
    XML_Parser parser = XML_ParserCreate("UTF-8");
    const XML_Status status =
        XML_Parse(parser, text.data(), static_cast<int>(text.size()), XML_TRUE);
    if (status != XML_STATUS_OK) state.SkipWithError("does not parse");
    XML_ParserFree(parser);
  }
  state.SetItemsProcessed(state.iterations() * kEvents);
}
BENCHMARK(BM_Initialize_expat)->Unit(benchmark::kMillisecond);

void BM_ParseState(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(VxXML::CreateXmlDocument(StateText()));
  state.SetItemsProcessed(state.iterations() * kEvents);
}
BENCHMARK(BM_ParseState)->Unit(benchmark::kMillisecond);

void BM_PersistStateToText(benchmark::State& state) {
  const ZoneScope zone(kBenchZone);
  const TestClock clock("2024-03-06 12:00:00");
  BenchAgent bench(kEvents);
  for (auto _ : state) {
    const std::string text = bench.agent.GetPersistState(0)->ToString();
    benchmark::DoNotOptimize(text.data());
  }
  state.SetItemsProcessed(state.iterations() * kEvents);
}
BENCHMARK(BM_PersistStateToText)->Unit(benchmark::kMillisecond);

void CopyTree(const VxXML::INode& from, pugi::xml_node to) {
  pugi::xml_node node = to.append_child(std::string(from.GetName()).c_str());
  const std::string text = from.GetText();
  if (!text.empty()) node.append_child(pugi::node_pcdata).set_value(text.c_str());
  for (const auto* child = from.GetFirstChild(); child != nullptr;
       child = child->GetNextSibling()) {
    CopyTree(*child, node);
  }
}

// The same tree built and serialised by pugixml. The values come from a tree of its own kind, read
// before, so that only the building and the writing are measured.
void CopyPugi(const pugi::xml_node& from, pugi::xml_node to) {
  for (const pugi::xml_node child : from.children()) {
    if (child.type() == pugi::node_pcdata) {
      to.append_child(pugi::node_pcdata).set_value(child.value());
    } else {
      CopyPugi(child, to.append_child(child.name()));
    }
  }
}

struct StringWriter final : pugi::xml_writer {
  void write(const void* data, std::size_t size) override {
    text.append(static_cast<const char*>(data), size);
  }
  std::string text;
};

void BM_PersistStateToText_pugixml(benchmark::State& state) {
  const ZoneScope zone(kBenchZone);
  const TestClock clock("2024-03-06 12:00:00");
  pugi::xml_document source;
  {
    const BenchAgent bench(kEvents);
    CopyTree(*const_cast<BenchAgent&>(bench).agent.GetPersistState(0), source);
  }
  for (auto _ : state) {
    pugi::xml_document document;
    CopyPugi(source, document);
    StringWriter writer;
    document.save(writer, "", pugi::format_raw | pugi::format_no_declaration);
    benchmark::DoNotOptimize(writer.text.data());
  }
  state.SetItemsProcessed(state.iterations() * kEvents);
}
BENCHMARK(BM_PersistStateToText_pugixml)->Unit(benchmark::kMillisecond);

}  // namespace
