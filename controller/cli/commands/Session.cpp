#include "controller/cli/commands/Session.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "controller/Failure.h"
#include "controller/Printable.h"
#include "controller/cli/parse/TextError.h"

namespace controller::cli {

namespace {

int Tell(const Failure& failure, const std::string& more = {}) {
  std::cout.flush();
  std::cerr << "vexalink: " << Printable(failure.what()) << '\n' << more;
  return static_cast<int>(failure.Status());
}

/// What was written must have arrived: a program that reads it must not take half for all.
void FinishOutput() {
  std::cout.flush();
  if (!std::cout) throw Failure("standard output could not be written");
}

int Work(const ClientOptions& options, const SessionWork& work) {
  try {
    Session session{Api(options), StandardOutput(options.color), options.json};
    const int status = work(session);
    FinishOutput();
    return status;
  } catch (const TextError& error) {
    return Tell(error, error.Picture());
  } catch (const Failure& failure) {
    return Tell(failure);
  } catch (const Json::exception& error) {
    return Tell(Failure("the controller at " + Printable(options.url) +
                        " answers something that this program does not know: " + error.what()));
  }
}

}  // namespace

void Session::WriteJson(const Json& document) const {
  // A terminal could be made to obey some characters beyond ASCII that JSON lets stand.
  terminal.out << document.dump(2, ' ', terminal.isTerminal) << '\n';
}

void Session::Note(const std::string& text) const {
  terminal.out.flush();
  std::cerr << "note: " << Printable(text) << '\n';
}

HouseToday Session::Today() {
  return [this, known = std::string()]() mutable {
    if (known.empty()) known = api.Today();
    return known;
  };
}

CLI::App* AddClientCommand(CLI::App& app, CommandRun& run, const std::string& name,
                           const std::string& description,
                           const std::shared_ptr<ClientOptions>& options, SessionWork work) {
  CLI::App* command = app.add_subcommand(name, description);
  AddClientOptions(*command, *options);
  command->callback([options, work = std::move(work), &run] {
    run = [options, work] { return Work(*options, work); };
  });
  return command;
}

std::string ClientExitStatuses(const std::string& own) {
  return "Exit status: 0 done, 1 it could not be done, 2 the command line is wrong, 3 no "
         "controller "
         "answers, 4 the controller refuses, 5 there is no such event or more than one, 6 done but "
         "not saved yet" +
         (own.empty() ? "" : ", " + own) + '.';
}

}  // namespace controller::cli
