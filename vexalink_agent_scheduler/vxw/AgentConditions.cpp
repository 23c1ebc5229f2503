// Programming conditions: tests of the present local time against the operands in an XML text.

#include <string>
#include <string_view>

#include "astro/AstroClock.h"
#include "vexalink_agent_scheduler/vxw/vexalink_agent_scheduler.h"

namespace {

using VxXML::INode;

constexpr unsigned int kLogLevel = 7;
constexpr int kMinutesPerDay = 1440;

// The present moment, read once for the whole test.
struct Present {
  Present() : now(VxTime::GetCurrentTime()) {
    std::tm local;
    if (now.GetLocalTm(&local) == nullptr) return;
    weekday = local.tm_wday + 1;
    day = now.GetDay();
    month = now.GetMonth();
    year = now.GetYear();
  }

  VxTime Midnight() const { return VxTime(year, month, day, 0, 0, 0, -1); }

  VxTime now;
  int weekday = 0;  // 1 = Sunday .. 7 = Saturday
  int day = 0;
  int month = 0;
  int year = 0;
};

const INode* Child(const INode* node, std::string_view name) {
  return node == nullptr ? nullptr : node->GetChild(name);
}

int Number(const INode* node, std::string_view name) {
  return node == nullptr ? 0 : node->GetInt(name);
}

std::string Text(const INode* node, std::string_view name) {
  return node == nullptr ? std::string() : node->GetText(name);
}

template <typename T>
bool IsWithin(const T& value, const T& from, const T& to) {
  return from <= value && value <= to;
}

// "EQ" to "LE"; any other code is false.
template <typename T>
bool Compare(std::string_view comparator, const T& current, const T& operand) {
  if (comparator == "EQ") return current == operand;
  if (comparator == "NE") return current != operand;
  if (comparator == "GT") return current > operand;
  if (comparator == "GE") return current >= operand;
  if (comparator == "LT") return current < operand;
  if (comparator == "LE") return current <= operand;
  return false;
}

// A list holds when one of its entries does; "NE" when all of them do, so also when there is none.
bool CompareWithList(std::string_view comparator, int current, const INode* list) {
  const INode* entry = list == nullptr ? nullptr : list->GetFirstChild();
  const bool all = comparator == "NE";
  for (; entry != nullptr; entry = entry->GetNextSibling()) {
    if (Compare(comparator, current, entry->GetInt()) != all) return !all;
  }
  return all;
}

bool TestYear(const INode& root, const std::string& comparator, const Present& present) {
  if (comparator == "BT") {
    const INode* between = root.GetChild("year_between");
    const int from = Number(between, "year_from");
    const int to = Number(between, "year_to");
    return from > 0 && to > 0 && IsWithin(present.year, from, to);
  }
  const INode* operand = root.GetChild("year_current");
  return operand != nullptr &&
         Compare(comparator, present.year, operand->GetIntOrAttribute("year_curr"));
}

bool TestMonth(const INode& root, const std::string& comparator, const Present& present) {
  if (comparator == "BT") {
    const INode* between = root.GetChild("month_between");
    const int from = Number(between, "month_from");
    const int to = Number(between, "month_to");
    if (from <= 0 || to <= 0) return false;
    if (to < from) return present.month >= from || present.month <= to;
    return IsWithin(present.month, from, to);
  }
  const INode* operand = root.GetChild("month_current");
  return operand != nullptr &&
         CompareWithList(comparator, present.month, operand->GetChild("month_names"));
}

bool TestToday(const INode& root, const std::string& comparator, const Present& present) {
  const bool between = comparator == "BT";
  const INode* operand = root.GetChild(between ? "day_between" : "day_current");
  const std::string mode = Text(operand, "day_name");
  if (mode != "Day" && mode != "DayNum") return false;
  const bool byWeekday = mode == "Day";
  const int current = byWeekday ? present.weekday : present.day;
  if (between) {
    return IsWithin(current, Number(operand, byWeekday ? "dayname_from" : "day_from"),
                    Number(operand, byWeekday ? "dayname_to" : "day_to"));
  }
  return CompareWithList(comparator, current, Child(operand, byWeekday ? "day_names" : "cur_days"));
}

VxTime Midnight(const INode* node, const char* year, const char* month, const char* day) {
  return VxTime(Number(node, year), Number(node, month), Number(node, day), 0, 0, 0, -1);
}

bool TestDate(const INode& root, const std::string& comparator, const Present& present) {
  if (comparator == "BT") {
    const INode* between = root.GetChild("date_between");
    return IsWithin(present.Midnight(),
                    Midnight(between, "date_from_yy", "date_from_mm", "date_from_dd"),
                    Midnight(between, "date_to_yy", "date_to_mm", "date_to_dd"));
  }
  const INode* operand = root.GetChild("date_current");
  if (Number(operand, "date_curr_dd") <= 0 || Number(operand, "date_curr_mm") <= 0 ||
      Number(operand, "date_curr_yy") <= 0) {
    return false;
  }
  return Compare(comparator, present.Midnight(),
                 Midnight(operand, "date_curr_yy", "date_curr_mm", "date_curr_dd"));
}

bool TestClockSpan(const vexalink_agent_scheduler& agent, const INode& root, VxTime now) {
  int to = root.GetInt("offset_to");
  if (to > kMinutesPerDay) to -= kMinutesPerDay;
  const VxTime start = agent.CalculateEventTime(Scheduler::kClock, root.GetInt("offset_from"));
  const VxTime end = agent.CalculateEventTime(Scheduler::kClock, to);
  if (end < start) return now >= start || now <= end;  // over midnight
  return IsWithin(now, start, end);
}

bool TestClockTime(const vexalink_agent_scheduler& agent, const INode& root,
                   const std::string& comparator, VxTime now) {
  const int minutes = root.GetInt("comp_time");
  // Midnight itself, 0, never holds. Kept: programming written by older controllers relies on it.
  if (minutes < 1) return false;
  const VxTime target = agent.CalculateEventTime(Scheduler::kClock, minutes);
  if (comparator == "EQ" || comparator == "NE") {
    const bool sameMinute =
        now.GetHour() == target.GetHour() && now.GetMinute() == target.GetMinute();
    return sameMinute == (comparator == "EQ");
  }
  return Compare(comparator, now, target);
}

// The minutes between a sun event and the far end of its span: negative before it, and 0 where the
// condition does not say on which side.
int SignedMinutes(const INode& root) {
  const INode* side = root.GetChild("offset");
  if (side == nullptr || side->IsEmpty()) return 0;
  const int minutes = root.GetInt("offset_minutes");
  if (side->GetText() != "Before") return minutes;
  return static_cast<int>(-static_cast<long long>(minutes));
}

bool TestNearSun(const vexalink_agent_scheduler& agent, const INode& root, VxTime now) {
  const INode* base = root.GetChild("offset_type");
  if (base == nullptr || base->IsEmpty()) return false;
  const auto event = base->GetText() == "1" ? Scheduler::kSunrise : Scheduler::kSunset;
  const VxTime sun = agent.CalculateEventTime(event, 0);
  const VxTime shifted = agent.CalculateEventTime(event, SignedMinutes(root));
  return sun <= shifted ? IsWithin(now, sun, shifted) : IsWithin(now, shifted, sun);
}

bool TestSun(const vexalink_agent_scheduler& agent, const INode& root, VxTime now) {
  const std::string type = root.GetText("type");
  if (type == "Within") return TestNearSun(agent, root, now);
  if (type != "Day" && type != "Night") return false;
  const VxTime sunrise = agent.CalculateEventTime(Scheduler::kSunrise, 0);
  const VxTime sunset = agent.CalculateEventTime(Scheduler::kSunset, 0);
  return IsWithin(now, sunrise, sunset) == (type == "Day");
}

bool TestTime(const vexalink_agent_scheduler& agent, const INode& root,
              const std::string& comparator, VxTime now) {
  bool holds = false;
  if (comparator == "BT") {
    holds = TestClockSpan(agent, root, now);
  } else if (!comparator.empty()) {
    holds = TestClockTime(agent, root, comparator, now);
  }
  return TestSun(agent, root, now) || holds;
}

bool TestKind(const vexalink_agent_scheduler& agent, const std::string& name, const INode& root,
              const Present& present) {
  const std::string comparator = root.GetText("comparator");
  if (name == "IF_TIME") return TestTime(agent, root, comparator, present.now);
  if (name == "IF_TODAY") return TestToday(root, comparator, present);
  if (name == "IF_DATE") return TestDate(root, comparator, present);
  if (name == "IF_MONTH") return TestMonth(root, comparator, present);
  if (name == "IF_YEAR") return TestYear(root, comparator, present);
  if (name == "IF_LEAP") return AstroClock::IsLeapYear(present.now.GetYear());
  return false;
}

}  // namespace

bool vexalink_agent_scheduler::TestCondition(const ICondMessage& message,
                                             unsigned long* /*reserved*/) {
  const Present present;
  std::string xml = message.GetParam("CONDITIONAL_XML");
  if (xml.empty()) xml = message.GetParam("TIME_XML");
  const vx::auto_com<VxXML::IDocument> document = VxXML::CreateXmlDocument(xml);
  if (!document) {
    LogMessage(kLogLevel, ("Unable to parse conditional in scheduler: " + xml).c_str());
    return false;
  }
  return TestKind(*this, message.GetName(), *document->GetRoot(), present);
}
