#include "SimulatedHouses.h"

#include <cstdlib>
#include <ctime>

#include "controller/Clock.h"
#include "controller/DayEdges.h"
#include "controller/DriverInstance.h"
#include "controller/LocalTimeText.h"
#include "controller/ProjectVariables.h"
#include "controller/ScratchHost.h"
#include "controller/firing/DayListing.h"

namespace controller {

namespace {

constexpr Place kBerlin{52.52, 13.405};

}  // namespace

std::vector<std::string> KeptReport::Texts() const {
  std::vector<std::string> texts;
  for (const SimulatedOccurrence& each : occurrences) {
    texts.push_back(std::to_string(each.event) + ' ' + StateName(each.outcome) + ' ' + each.reason +
                    ' ' + DayText(each.date).substr(5) + ' ' + MomentText(each.at).substr(11, 8));
  }
  return texts;
}

const DriverLoader& Agent() {
  static const auto loader = LoadDriver(VEXALINK_AGENT);
  return *loader;
}

EventElement Daily(unsigned long id, int minutes, int spread) {
  EventElement event;
  event.eventid = id;
  event.description = "Event " + std::to_string(id);
  event.offset_minutes = minutes;
  event.randomize = spread;
  event.frequency = static_cast<int>(RepeatKind::kDaily);
  event.rate = 1;
  event.start = {2000, 1, 1};
  return event;
}

SimulatedHouse HouseWith(const std::vector<EventElement>& events) {
  SimulatedHouse house;
  house.projectId = "house";
  house.place = kBerlin;
  house.schedule = ScheduleOf(events);
  return house;
}

std::map<unsigned long, Programming> RandomProgramming(std::mt19937& random, std::size_t count,
                                                       int year) {
  std::map<unsigned long, Programming> all;
  for (unsigned long id = 1; id <= count; ++id) {
    Programming programming;
    programming.enabled = !OneIn(random, 10);
    programming.skipNext = OneIn(random, 10);
    if (OneIn(random, 10)) programming.pausedUntil = RandomDay(random, year);
    programming.catchUp.policy = static_cast<CatchUp::Policy>(Between(random, 0, 2));
    programming.catchUp.minutes = Between(random, 1, 3000);
    all[id] = programming;
  }
  return all;
}

Listing ListedDays(const SimulatedHouse& house, const DayFields& from, const DayFields& to) {
  ScratchHost host(house.place);
  DriverInstance scheduler(Agent(), host);
  const ClockScope before(LocalInstant(DaysAfter(from, -1), 12, 0));
  scheduler.Initialize(kSchedulerDevice, house.schedule);
  Listing listing;
  for (DayFields day = from; day <= to; day = DaysAfter(day, 1)) {
    const std::time_t begin = FirstSecondOf(day);
    if (LocalDay(begin) != day) continue;  // the calendar here leaves it out
    const ClockScope then(begin);
    EventCatalog catalog;
    for (const ListedOccurrence& listed : ListDay(scheduler, catalog, day)) {
      listing.emplace(day, listed.event);
    }
  }
  return listing;
}

}  // namespace controller
