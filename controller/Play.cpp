#include "controller/Play.h"

#include <ctime>
#include <fstream>
#include <iostream>
#include <memory>

#include "controller/DriverLoader.h"
#include "controller/Printable.h"
#include "controller/ScenarioPlayer.h"

namespace controller {
namespace {

constexpr int kFailed = 1;
constexpr int kBadScenario = 2;

bool IsSkipped(const std::string& line) {
  return line.starts_with('#') || line.find_first_not_of(" \t\r\n\v\f") == std::string::npos;
}

// Plays every line of `in`; the exit status.
int PlayLines(const std::string& file, std::istream& in, ScenarioPlayer* player, std::ostream& out,
              std::ostream& err) {
  std::string line;
  for (unsigned long number = 1; std::getline(in, line); ++number) {
    if (IsSkipped(line)) continue;
    try {
      player->Play(line);
    } catch (const ScenarioError& error) {
      out.flush();
      // It may quote what the scenario holds: one line, and nothing that a terminal obeys.
      err << Printable(file) << ':' << number << ": " << Printable(error.what()) << std::endl;
      return kBadScenario;
    }
    if (!out) return kFailed;
  }
  return 0;
}

}  // namespace

int RunPlay(const PlayOptions& options, std::ostream& out, std::ostream& err) {
  tzset();
  std::string error;
  const std::unique_ptr<DriverLoader> library = DriverLoader::Open(options.agentPath, &error);
  if (!library) {
    err << "vexalink: " << error << std::endl;
    return kFailed;
  }
  std::ifstream file;
  if (options.file != "-") file.open(options.file);
  std::istream& in = options.file == "-" ? std::cin : file;
  ScenarioPlayer player(*library, out);
  const int status = PlayLines(options.file, in, &player, out, err);
  out.flush();
  if (status == 0 && (!in.eof() || in.bad())) {
    err << "vexalink: cannot read the scenario " << Quoted(options.file) << std::endl;
    return kBadScenario;
  }
  if (!out) {
    err << "vexalink: the transcript could not be written" << std::endl;
    return kFailed;
  }
  return status;
}

}  // namespace controller
