#include <gtest/gtest.h>
#include <list>
#include <memory>

#include "tests/support/FakeHost.h"
#include "tests/support/TestClock.h"
#include "tests/vexalink_agent_scheduler/shortcuts/PlainCalendar.h"
#include "tests/vexalink_agent_scheduler/shortcuts/PlainRules.h"
#include "tests/vexalink_agent_scheduler/shortcuts/RandomInput.h"
#include "vexalink_agent_scheduler/vxw/vexalink_agent_scheduler.h"

namespace {

// The agent's table and today's list by walks alone.
class PlainAgent {
 public:
  PlainAgent() : scheduleDate_(std::time(nullptr)) {}

  unsigned long Add(const Event& given, bool assignNewId) {
    auto event = std::make_shared<Event>(given);
    if (assignNewId) {
      if (event->eventid != 0) records.push_back(107);
      if (FindByDescription(event->description) == 0) event->eventid = ++currentId_;
    }
    const unsigned long id = event->eventid;
    if (id == 0) return 0;
    if (!table.try_emplace(id, event).second) records.push_back(116);
    if (plain::OccursOnDate(*event, std::time(nullptr), &records)) {
      Schedule(event, /*schedulePast=*/false);
    }
    return id;
  }
  void Delete(unsigned long id) {
    for (auto entry = today.begin(); entry != today.end(); ++entry) {
      if (entry->event->eventid != id) continue;
      today.erase(entry);
      break;
    }
    const auto gone = table.find(id);
    if (gone == table.end()) return;
    today.remove_if([&](const Entry& entry) { return entry.event == gone->second; });
    table.erase(gone);
  }
  void Clear() {
    today.clear();
    table.clear();
  }
  unsigned long FindByDescription(const std::string& description) const {
    for (const auto& [id, event] : table) {
      if (event->description == description) return id;
    }
    return 0;
  }
  std::vector<unsigned long> IdsOnDate(std::time_t date) {
    std::vector<unsigned long> ids;
    for (const auto& [id, event] : table) {
      if (plain::OccursOnDate(*event, date, &records)) ids.push_back(id);
    }
    return ids;
  }
  // The ids that fire; after a change of the day, those of today's new list behind a 0.
  std::vector<unsigned long> Tick() {
    const std::time_t now = std::time(nullptr);
    std::vector<unsigned long> ids;
    for (; !today.empty() && today.front().time <= now; today.pop_front()) {
      ids.push_back(today.front().event->eventid);
    }
    const plain::Date date(now);
    const plain::Date before(scheduleDate_);
    if (date.year <= before.year && date.month <= before.month && date.day <= before.day)
      return ids;
    scheduleDate_ = now;
    today.clear();
    for (const unsigned long id : IdsOnDate(now)) Schedule(table[id], /*schedulePast=*/true);
    ids.push_back(0);
    for (const Entry& entry : today) ids.push_back(entry.event->eventid);
    return ids;
  }

  struct Entry {
    std::shared_ptr<Event> event;
    std::time_t time;
  };
  std::map<unsigned long, std::shared_ptr<Event>> table;
  std::list<Entry> today;
  plain::Records records;

 private:
  void Schedule(const std::shared_ptr<Event>& event, bool schedulePast) {
    const std::time_t now = std::time(nullptr);
    std::time_t time = plain::EventTime(*event, now, &records);
    if (event->randomize > 0) {
      const int spread = event->randomize;
      time += (std::rand() % (2 * spread + 1) - spread) * 60L;
    }
    if (time <= now && !schedulePast) return;
    auto at = today.begin();
    while (at != today.end() && at->time <= time) ++at;
    today.insert(at, {event, time});
  }

  unsigned long currentId_ = 0;
  std::time_t scheduleDate_;
};

// What the host heard, in the form of PlainAgent::Tick, and of the records the lines.
std::vector<unsigned long> Heard(const std::vector<std::string>& calls, plain::Records* records) {
  const std::string fire = "FireEvent ";
  const std::string date = "LogMessage 7 SCHEDULE_TRACE:  For: ";
  const std::string entry = "LogMessage 7 SCHEDULE_TRACE:  Event: ";
  std::vector<unsigned long> ids;
  for (const std::string& call : calls) {
    if (call.starts_with(fire)) ids.push_back(std::stoul(call.substr(fire.size())));
    if (call.starts_with(date)) ids.push_back(0);
    if (call.starts_with(entry)) ids.push_back(std::stoul(call.substr(entry.size())));
    if (call.starts_with("AssertWrite"))
      records->push_back(std::stoi(call.substr(call.rfind(':') + 1)));
  }
  return ids;
}

Event MakeEvent(const Instants& instants, Random& random) {
  Event event = RandomEvent(0, std::time(nullptr), instants, random);
  if (!random.OneIn(3)) {
    event.frequency = Scheduler::kDaily;
    event.rate = 1;
  }
  if (random.OneIn(2)) event.offset_minutes = static_cast<int>(random.Between(0, 23)) * 60;
  if (random.OneIn(5)) event.randomize = static_cast<int>(random.Between(-1, 90));
  event.description = random.Of<const char*>({"", "a", "a ", "ab", "b", "\xC3\xA4", "the seventh"});
  if (random.OneIn(2)) event.eventid = static_cast<unsigned long>(random.Between(1, 9));
  return event;
}

// One agent and one plain agent, to which the same is done.
class AgentPair {
 public:
  explicit AgentPair(const Instants& instants) : instants_(instants), agent_(host_) {
    const auto config = VxXML::CreateXmlNode("config", "");
    agent_.Initialize(7, *config, nullptr);
    host_.TakeCalls();
  }
  void Act(TestClock& clock, Random& random) {
    const auto id = static_cast<unsigned long>(random.Between(0, 12));
    const auto seed = static_cast<unsigned>(random.Between(1, 1000000));
    std::vector<unsigned long> ours;
    std::vector<unsigned long> theirs;
    const auto both = [&](const auto& doOurs, const auto& doTheirs) {
      std::srand(seed);
      doOurs();
      std::srand(seed);
      doTheirs();
    };
    switch (random.Between(0, 9)) {
      case 0:
      case 1:
      case 2:
      case 3: {
        const Event event = MakeEvent(instants_, random);
        const bool assign = random.OneIn(2);
        both([&] { ours.push_back(agent_.AddEvent(new Event(event), assign, false)); },
             [&] { theirs.push_back(plain_.Add(event, assign)); });
        break;
      }
      case 4:
      case 5:
        both([&] { agent_.DeleteEvent(id, random.OneIn(2)); }, [&] { plain_.Delete(id); });
        break;
      case 6:
        Modify(seed, random);
        break;
      case 7:
      case 8:
        clock.Advance(random.Of<long long>({60, 3600, 20000, 50000, 86400}));
        both([&] { agent_.OnTimerExpired(host_.lastTimer, 0); }, [&] { theirs = plain_.Tick(); });
        break;
      default:
        if (random.OneIn(10)) both([&] { agent_.ClearAllEvents(); }, [&] { plain_.Clear(); });
    }
    plain::Records records;
    const auto heard = Heard(host_.TakeCalls(), &records);
    ours.insert(ours.end(), heard.begin(), heard.end());
    EXPECT_EQ(ours, theirs);
    EXPECT_EQ(records, std::exchange(plain_.records, {}));
    CompareLookUps(random);
  }

 private:
  void Modify(unsigned seed, Random& random) {
    Event given = MakeEvent(instants_, random);
    const std::string xml = given.toXml()->ToString();
    const auto document = VxXML::CreateXmlDocument(xml);
    const Event read(document.get(), 0, 0);
    host_.TakeCalls();
    std::srand(seed);
    EXPECT_EQ(agent_.ModifyEvent(xml), read.eventid);
    std::srand(seed);
    plain_.Delete(read.eventid);
    // The element is read again, with its assertion records.
    const auto calls = host_.TakeCalls();
    const Event again(document.get(), 0, 0);
    Heard(host_.TakeCalls(), &plain_.records);
    host_.calls = calls;
    plain_.Add(read, /*assignNewId=*/false);
  }
  void CompareLookUps(Random& random) {
    for (unsigned long id = 0; id <= 14; ++id) {
      EXPECT_EQ(agent_.DoesEventExist(id), plain_.table.contains(id)) << id;
    }
    for (const char* description : {"", "a", "a ", "ab", "b", "\xC3\xA4", "the seventh", "c"}) {
      const Event event(0, description, 0, 0);
      EXPECT_EQ(agent_.GetEventIdByDescription(description), plain_.FindByDescription(description));
      EXPECT_EQ(agent_.IsDuplicateEvent(&event), plain_.FindByDescription(description) != 0);
    }
    const std::time_t date = instants_.Near(std::time(nullptr), 10, random);
    std::list<Event*> found;
    agent_.GetEventsOnDate(VxTime(date), &found);
    std::vector<unsigned long> ids;
    for (const Event* event : found) ids.push_back(event->eventid);
    EXPECT_EQ(ids, plain_.IdsOnDate(date)) << date;
    plain::Records records;
    Heard(host_.TakeCalls(), &records);
    EXPECT_EQ(records, std::exchange(plain_.records, {})) << date;
  }

  const Instants& instants_;
  FakeHost host_;
  vexalink_agent_scheduler agent_;
  PlainAgent plain_;
};

}  // namespace

TEST(AgentTable, AnswersAndFiresWhatWalksOverItFind) {
  Random random(51);
  for (const std::string& name : Zones()) {
    SCOPED_TRACE(name);
    const ZoneScope zone(name);
    const Instants instants;
    for (int run = 0; run < 8; ++run) {
      TestClock clock(instants.Any(random));
      AgentPair pair(instants);
      for (int i = 0; i < 120; ++i) {
        pair.Act(clock, random);
        ASSERT_FALSE(testing::Test::HasFailure()) << "run " << run << ", act " << i;
      }
    }
  }
}
