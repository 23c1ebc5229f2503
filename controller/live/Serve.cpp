#include <exception>
#include <string>
#include <unistd.h>

#include "controller/Commands.h"
#include "controller/Log.h"
#include "controller/live/Controller.h"

namespace controller {

ExitStatus RunServe(const ServeOptions& options) {
  Log::Info("vexalink " VEXALINK_VERSION ", process " + std::to_string(getpid()));
  try {
    Controller controller(options);
    return controller.Run([] {});
  } catch (const Failure& failure) {
    Log::Error(failure.what());
    return failure.Status();
  } catch (const std::exception& failure) {
    Log::Error(std::string("the controller ends: ") + failure.what());
    return ExitStatus::kFailed;
  }
}

}  // namespace controller
