#include "bench/BenchTables.h"

#include <random>

#include "tests/support/TestClock.h"

namespace {

class Dice {
 public:
  int From(int low, int high) { return low + static_cast<int>(engine_() % Span(low, high)); }

 private:
  static unsigned Span(int low, int high) { return static_cast<unsigned>(high - low + 1); }
  std::mt19937 engine_{20240306};
};

void SetRule(int kind, Dice& dice, Event* event) {
  event->rate = 1;
  if (kind < 20) {
    event->frequency = Scheduler::kOnce;
    event->rate = 0;
    event->start = VxTime(2024, 1, dice.From(1, 366), 0, 0, 0, -1);
  } else if (kind < 40) {
    event->frequency = Scheduler::kDaily;
    event->rate = dice.From(1, 3);
  } else if (kind < 70) {
    event->frequency = Scheduler::kWeekly;
    event->rate = dice.From(1, 2);
    event->daymask = static_cast<unsigned>(dice.From(1, 127));
  } else {
    event->frequency = kind < 95 ? Scheduler::kMonthly : Scheduler::kYearly;
    if (kind >= 85 && kind < 95) {
      event->start_weekday = dice.From(1, 7);
      event->start_period =
          static_cast<Scheduler::PERIOD>(kind < 90 ? dice.From(1, 4) : Scheduler::kLast);
    }
  }
}

}  // namespace

std::vector<std::unique_ptr<Event>> MixedEvents(int count, bool withSun) {
  Dice dice;
  std::vector<std::unique_ptr<Event>> events;
  for (int i = 0; i < count; ++i) {
    auto event = std::make_unique<Event>(static_cast<unsigned long>(i + 1),
                                         "Event number " + std::to_string(i), 40.7, -74.0);
    event->start = VxTime(2023, 1, dice.From(1, 365), 0, 0, 0, -1);
    event->EndDate(NeverTime);
    event->offset_minutes = dice.From(0, 1439);
    if (withSun && i % 4 == 0) {
      event->offset = i % 8 == 0 ? Scheduler::kSunrise : Scheduler::kSunset;
      event->offset_minutes = dice.From(-120, 120);
    }
    SetRule(dice.From(0, 99), dice, event.get());
    events.push_back(std::move(event));
  }
  return events;
}

std::map<unsigned long, Event*> TableOf(const std::vector<std::unique_ptr<Event>>& events) {
  std::map<unsigned long, Event*> table;
  for (const auto& event : events) table.emplace(event->eventid, event.get());
  return table;
}

std::string PersistedState(int count) {
  const TestClock clock("2024-03-06 12:00:00");
  const vx::auto_com<VxXML::INode> state = VxXML::CreateXmlNode("event_data", "");
  state->AddUnsigned("current_id", static_cast<unsigned long>(count));
  const vx::auto_com<VxXML::INode> list = VxXML::CreateXmlNode("events", "");
  for (const auto& event : MixedEvents(count, /*withSun=*/true)) list->AddChild(*event->toXml());
  state->AddChild(*list);
  return state->ToString();
}

void Load(vexalink_agent_scheduler& agent, const std::string& state) {
  const vx::auto_com<VxXML::INode> config = VxXML::CreateXmlNode("config", "");
  const vx::auto_com<VxXML::IDocument> document = VxXML::CreateXmlDocument(state);
  agent.Initialize(2, *config, document->GetRoot());
}

BenchAgent::BenchAgent(int count, bool withSun) {
  const TestClock clock("2024-03-06 12:00:00");
  const vx::auto_com<VxXML::INode> config = VxXML::CreateXmlNode("config", "");
  agent.Initialize(2, *config, nullptr);
  for (auto& event : MixedEvents(count, withSun)) {
    event->eventid = 0;
    agent.AddEvent(event.release(), /*assignNewId=*/true, /*registerButton=*/false);
  }
}
