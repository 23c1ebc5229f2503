#include <exception>
#include <memory>
#include <string>
#include <unistd.h>

#include "controller/Commands.h"
#include "controller/Log.h"
#include "controller/live/Controller.h"
#include "controller/live/WebFace.h"

namespace controller {

namespace {

std::unique_ptr<WebFace> OpenWebFace(Controller& controller, const ServeOptions& options) {
  if (!options.http) return nullptr;
  WebOptions web;
  web.allowedHosts = options.allowedHosts;
  for (const std::string& address : options.listen) {
    web.listen.push_back(ParseListenAddress("--listen", address));
  }
  const bool unasked = web.listen.empty();
  if (unasked) web.listen.push_back({});
  try {
    auto face =
        std::make_unique<WebFace>(controller.Loop(), controller, web, options.project.string());
    for (const ListenAddress& address : face->Addresses()) {
      Log::Info("api http://" + address.Text() + "/");
    }
    return face;
  } catch (const Failure& failure) {
    if (!unasked) throw;
    // The house is to be looked after, whoever else has taken the place that nobody asked for.
    Log::Warning(std::string(failure.what()) + ". The schedule runs, but has neither page nor API");
    return nullptr;
  }
}

}  // namespace

ExitStatus RunServe(const ServeOptions& options) {
  Log::Info("vexalink " VEXALINK_VERSION ", process " + std::to_string(getpid()));
  try {
    Controller controller(options);
    std::unique_ptr<WebFace> face;
    return controller.Run([&] { face = OpenWebFace(controller, options); });
  } catch (const Failure& failure) {
    Log::Error(failure.what());
    return failure.Status();
  } catch (const std::exception& failure) {
    Log::Error(std::string("the controller ends: ") + failure.what());
    return ExitStatus::kFailed;
  }
}

}  // namespace controller
