#pragma once

#include <ostream>
#include <string>

namespace controller {

struct PlayOptions {
  std::string file;       ///< the scenario; "-" for standard input
  std::string agentPath;  ///< the agent's library
};

/// Plays a scenario against the agent with a clock that moves only when told, and writes its
/// transcript to `out`. What is wrong with the scenario goes to `err` as one line `FILE:LINE:
/// what`, after everything that was played before. The exit status: 0; 1 where the agent cannot be
/// loaded or the transcript not be written; 2 for a bad scenario.
int RunPlay(const PlayOptions& options, std::ostream& out, std::ostream& err);

}  // namespace controller
