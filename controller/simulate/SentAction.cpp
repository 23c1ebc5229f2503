#include "controller/simulate/SentAction.h"

#include <string>

#include "controller/programming/HookRequest.h"
#include "controller/programming/Placeholders.h"

namespace controller {

namespace {

struct Filler {
  const FiringFacts& facts;
  Trigger trigger;

  void operator()(HookAction& hook) const {
    const HookRequest request = MakeHookRequest(hook, facts, trigger);
    hook.url = request.url;
    hook.headers = {request.headers.begin(), request.headers.end()};
    hook.body = request.body;
  }
  void operator()(CommandAction& command) const {
    for (std::size_t i = 1; i < command.argv.size(); ++i) Fill(command.argv[i]);
  }
  void operator()(VariableAction& variable) const { Fill(variable.value); }

  void Fill(std::string& text) const {
    text = Replaced(text, PlaceholderValues(facts, trigger), Escaping::kNone);
  }
};

}  // namespace

Action SentAction(const Action& action, const FiringFacts& facts) {
  Action sent = action;
  std::visit(Filler{facts, action.on}, sent.what);
  return sent;
}

}  // namespace controller
