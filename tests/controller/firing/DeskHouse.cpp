#include "DeskHouse.h"

#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "controller/Clock.h"
#include "controller/LocalTimeText.h"
#include "controller/ProjectVariables.h"
#include "controller/firing/DayDraw.h"

namespace controller {

namespace {

constexpr Place kBerlin{52.52, 13.405};

std::time_t Moment(const std::string& text) {
  const auto moment = ParseLocalTime(text);
  if (!moment) throw std::runtime_error("no time: " + text);
  return *moment;
}

std::string ClockOf(std::time_t moment) { return MomentText(moment).substr(11, 5); }

}  // namespace

DeskHouse::DeskHouse(const std::string& now, const char* zone) {
  const char* before = std::getenv("TZ");
  if (before != nullptr) zoneBefore_ = before;
  ::setenv("TZ", zone, 1);
  ::tzset();
  loader_ = LoadDriver(VEXALINK_AGENT);
  host_.SetVariable(kProjectDevice, kLatitudeVariable, DegreesText(kBerlin.latitude));
  host_.SetVariable(kProjectDevice, kLongitudeVariable, DegreesText(kBerlin.longitude));
  Set(now);
  Begin(std::nullopt, "down");
}

DeskHouse::~DeskHouse() {
  scheduler_.reset();
  Clock::Release();
  zoneBefore_ ? ::setenv("TZ", zoneBefore_->c_str(), 1) : ::unsetenv("TZ");
  ::tzset();
}

void DeskHouse::Set(const std::string& now) { Clock::Freeze(Moment(now)); }

void DeskHouse::Begin(const std::optional<std::string>& persisted, const std::string& cause) {
  const std::time_t now = time(nullptr);
  const std::time_t from = persisted ? desk.AccountedUntil() : now;
  std::optional<DayDraws> draws;
  if (persisted) draws = DrawDays(*loader_, kBerlin, *persisted, from, now, "house");
  scheduler_ = std::make_unique<DriverInstance>(*loader_, host_);
  seed_.Seed();
  scheduler_->Initialize(kSchedulerDevice, persisted);
  desk.Begin(from, now, cause, draws);
}

unsigned long DeskHouse::Add(EventElement event) {
  changed_.clear();
  scheduler_->Command("ADD_EVENT", {{"EVENT_XML", MakeEventElement(event)->ToString()}});
  const unsigned long id = changed_.empty() ? 0 : changed_.back();
  if (id != 0) desk.OnEventChanged(id, time(nullptr));
  return id;
}

unsigned long DeskHouse::Daily(const std::string& description, int minutes, int spread) {
  EventElement event;
  event.description = description;
  event.offset_minutes = minutes;
  event.randomize = spread;
  event.frequency = static_cast<int>(RepeatKind::kDaily);
  event.rate = 1;
  event.start = LocalDay(time(nullptr) - 40 * 86400L);
  return Add(event);
}

void DeskHouse::Delete(unsigned long event) {
  scheduler_->Command("DELETE_EVENT", {{"EVENT_ID", std::to_string(event)}});
  desk.OnEventChanged(event, time(nullptr));
}

void DeskHouse::Move(unsigned long event, int minutes) {
  EventElement moved = *desk.KnownEvent(event);
  moved.offset_minutes = minutes;
  scheduler_->Command("MODIFY_EVENT", {{"EVENT_XML", MakeEventElement(moved)->ToString()}});
  desk.OnEventChanged(event, time(nullptr));
}

void DeskHouse::RunUntil(const std::string& until) {
  const std::time_t end = Moment(until);
  for (std::time_t now = time(nullptr) + 1; now <= end; ++now) {
    Clock::Freeze(now);
    host_.ExpireTimers();
  }
}

void DeskHouse::TickAt(const std::string& now) {
  Set(now);
  host_.ExpireTimers();
}

void DeskHouse::RestartAt(const std::string& now, const std::string& cause) {
  const auto state = scheduler_->PersistText();
  const IDriver* driver = &scheduler_->Driver();
  scheduler_.reset();
  host_.Forget(driver);
  Set(now);
  Begin(state, cause);
}

const Programming& DeskHouse::ProgrammingOf(unsigned long eventId) const {
  static const Programming plain;
  const auto found = programming.find(eventId);
  return found == programming.end() ? plain : found->second;
}

long long DeskHouse::OnDecision(const FiringDecision& decision) {
  const char* const kinds[] = {"fired", "held", "missed"};
  std::string text = std::to_string(decision.event) + ' ' +
                     kinds[static_cast<int>(decision.verdict.kind)] + ' ' + decision.reason + ' ' +
                     DayText(decision.date).substr(5) + ' ' + ClockOf(decision.planned);
  if (decision.drawn) text += (*decision.drawn < 0 ? "" : "+") + std::to_string(*decision.drawn);
  if (decision.triggers.size() != 3) text += " not all";
  decided_.push_back(std::move(text));
  if (decision.verdict.usesSkip) programming[decision.event].skipNext = false;
  return static_cast<long long>(decided_.size());
}

void DeskHouse::OnUiData(IDriver&, const VxXML::INode& data) {
  const VxXML::INode* event = data.GetChild("event");
  if (event != nullptr) changed_.push_back(event->GetUnsigned("eventid"));
}

void DeskHouse::OnTickEnded(IDriver&) { desk.OnTick(time(nullptr)); }

std::vector<std::string> DeskHouse::Decided() { return std::exchange(decided_, {}); }

std::vector<std::string> DeskHouse::States() {
  std::vector<std::string> states;
  for (const PlannedOccurrence& occurrence : desk.Plan().InOrder()) {
    states.push_back(std::to_string(occurrence.event) + ' ' + StateName(occurrence.state));
  }
  return states;
}

}  // namespace controller
