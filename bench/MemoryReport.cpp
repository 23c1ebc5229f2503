// What a hundred thousand events cost in memory: as a tree, and in the agent's table.

#include <cstdio>
#include <malloc.h>
#include <unistd.h>

#include "bench/BenchTables.h"
#include "tests/support/TestClock.h"

namespace {

constexpr int kEvents = 100000;

double ResidentBytes() {
  std::FILE* file = std::fopen("/proc/self/statm", "r");
  long total = 0;
  long resident = 0;
  if (file == nullptr || std::fscanf(file, "%ld %ld", &total, &resident) != 2) resident = 0;
  if (file != nullptr) std::fclose(file);
  return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

double PerEvent(double bytes) { return bytes / kEvents; }

}  // namespace

int main() {
  const ZoneScope zone(kBenchZone);
  const TestClock clock("2024-03-06 12:00:00");
  const std::string state = PersistedState(kEvents);
  malloc_trim(0);
  QuietHost host;
  vexalink_agent_scheduler agent(host);
  const double before = ResidentBytes();
  {
    const auto document = VxXML::CreateXmlDocument(state);
    std::printf("tree after parsing, bytes an event: %.0f\n", PerEvent(ResidentBytes() - before));
    const auto config = VxXML::CreateXmlNode("config", "");
    agent.Initialize(2, *config, document->GetRoot());
  }
  std::printf("resident growth after Initialize, bytes an event: %.0f\n",
              PerEvent(ResidentBytes() - before));
  malloc_trim(0);
  const double loaded = ResidentBytes();
  std::printf("the same after malloc_trim, bytes an event: %.0f\n", PerEvent(loaded - before));
  const auto tree = agent.GetPersistState(0);
  std::printf("state as a tree, bytes an event: %.0f\n", PerEvent(ResidentBytes() - loaded));
  return 0;
}
