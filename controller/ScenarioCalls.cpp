#include "controller/ScenarioCalls.h"

#include "vexalink_agent_scheduler/vxw/IAgentScheduler.h"

namespace controller {
namespace {

using nlohmann::json;

[[noreturn]] void UnknownCall(const char* what, const std::string& call) {
  throw ScenarioError("\"call\" is \"" + call + "\"; that is no " + what);
}

// The arguments of one call, by position.
class Arguments {
 public:
  Arguments(const ScenarioAction& action, std::size_t count) : list_(action.List("args", count)) {}

  const std::string& Text(std::size_t at) const { return ToText(list_[at], Name(at)); }
  unsigned int Unsigned(std::size_t at) const { return static_cast<unsigned int>(Integer(at)); }
  unsigned long UnsignedLong(std::size_t at) const { return ToId(list_[at], Name(at)); }
  int Int(std::size_t at) const { return static_cast<int>(Integer(at)); }
  double Number(std::size_t at) const { return ToNumber(list_[at], Name(at)); }

 private:
  static std::string Name(std::size_t at) { return "\"args\"[" + std::to_string(at) + "]"; }
  long long Integer(std::size_t at) const { return ToInteger(list_[at], Name(at)); }

  const json& list_;
};

template <typename Function>
Function* Symbol(const DriverLoader& library, const char* mangled) {
  void* const address = library.Find(mangled);
  if (address == nullptr) {
    throw ScenarioError("the library \"" + library.Path() + "\" does not export " + mangled);
  }
  return reinterpret_cast<Function*>(address);
}

int CallRange(const DriverLoader& library, const char* mangled, const ScenarioAction& action) {
  const Arguments args(action, 2);
  return Symbol<int(int, int)>(library, mangled)(args.Int(0), args.Int(1));
}

bool AnswersWithMessage(const json& value) {
  if (value.is_null()) return false;
  if (value.is_boolean() && value.get<bool>()) return true;
  throw ScenarioError("\"result\" is " + ShownValue(value) + "; give null (no message) or true");
}

PlayHost::Variables ToVariables(const json& list) {
  if (!list.is_array()) throw ScenarioError("\"result\" is no list of variables");
  PlayHost::Variables variables;
  for (const json& entry : list) {
    const auto field = [&entry](const char* name) -> const json& {
      if (!entry.is_object() || !entry.contains(name)) {
        throw ScenarioError("\"result\" holds a variable without \"" + std::string(name) + '"');
      }
      return entry[name];
    };
    const unsigned long device = ToId(field("device"), "\"device\"");
    const unsigned long variable = ToId(field("variable"), "\"variable\"");
    variables[{device, variable}] = ToText(field("value"), "\"value\"");
  }
  return variables;
}

}  // namespace

json CallInterface(IAgentScheduler& scheduler, const ScenarioAction& action) {
  const std::string call = action.Text("call");
  if (call == "GetDeviceId") {
    if (action.Has("args")) action.List("args", 0);
    return scheduler.GetDeviceId();
  }
  if (call == "AddDailyEvent") {
    const Arguments args(action, 3);
    return scheduler.AddDailyEvent(args.Text(0), args.Unsigned(1), args.Unsigned(2));
  }
  if (call == "AddEveryXDaysEvent") {
    const Arguments args(action, 3);
    return scheduler.AddEveryXDaysEvent(args.Text(0), args.Unsigned(1), args.Unsigned(2));
  }
  if (call == "AddDaysOfWeekEvent") {
    const Arguments args(action, 3);
    return scheduler.AddDaysOfWeekEvent(args.Text(0), args.Unsigned(1), args.Unsigned(2));
  }
  if (call == "DoesEventExist") {
    return scheduler.DoesEventExist(Arguments(action, 1).UnsignedLong(0));
  }
  if (call == "GetEventIdByDescription") {
    return scheduler.GetEventIdByDescription(Arguments(action, 1).Text(0));
  }
  if (call == "DeleteEvent") {
    scheduler.DeleteEvent(Arguments(action, 1).UnsignedLong(0));
    return nullptr;
  }
  UnknownCall("operation of the scheduler's interface", call);
}

int CallComparator(const DriverLoader& library, const ScenarioAction& action) {
  const std::string call = action.Text("call");
  if (call == "CompareClockTime") return CallRange(library, "_Z16CompareClockTimeii", action);
  if (call == "CompareToday") return CallRange(library, "_Z12CompareTodayii", action);
  if (call == "CompareDate") return CallRange(library, "_Z11CompareDateii", action);
  if (call == "CompareMonth") return CallRange(library, "_Z12CompareMonthii", action);
  if (call == "CompareYear") return CallRange(library, "_Z11CompareYearii", action);
  if (call == "CompareLeap") {
    if (action.Has("args")) action.List("args", 0);
    return Symbol<int()>(library, "_Z11CompareLeapv")();
  }
  if (call == "CompareAstroClockTime") {
    const Arguments args(action, 3);
    return Symbol<int(int, double, double)>(library, "_Z21CompareAstroClockTimeidd")(
        args.Int(0), args.Number(1), args.Number(2));
  }
  UnknownCall("comparison function", call);
}

void SetHostAnswer(const ScenarioAction& action, PlayHost* host) {
  const std::string call = action.Text("call");
  const json& result = action.Value("result");
  if (call == "RegisterBinding") {
    host->AnswerRegisterBinding(static_cast<int>(ToInteger(result, "\"result\"")));
  } else if (call == "RegisterQuery") {
    host->AnswerRegisterQuery(static_cast<int>(ToInteger(result, "\"result\"")));
  } else if (call == "CreateBindMessage") {
    host->AnswerCreateBindMessage(AnswersWithMessage(result));
  } else if (call == "VmRegisterListener") {
    std::optional<unsigned int> seed;
    if (action.Has("seed")) seed = static_cast<unsigned int>(action.Integer("seed"));
    host->DeliverOnRegistration(ToVariables(result));
    host->SeedOnRegistration(seed);
  } else {
    UnknownCall("host operation whose answer can be set", call);
  }
}

}  // namespace controller
