#include <exception>

#include "controller/Commands.h"
#include "controller/Log.h"

namespace controller {

ExitStatus RunServe(const ServeOptions& options) {
  try {
    Controller controller(options);
    return controller.Run();
  } catch (const Failure& failure) {
    Log::Error(failure.what());
    return failure.Status();
  } catch (const std::exception& failure) {
    Log::Error(std::string("the controller ends: ") + failure.what());
    return ExitStatus::kFailed;
  }
}

}  // namespace controller
