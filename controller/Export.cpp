#include <csignal>
#include <unistd.h>

#include "controller/Commands.h"
#include "controller/Files.h"
#include "controller/ProjectStore.h"
#include "controller/Printable.h"
#include "controller/ProjectVariables.h"
#include "controller/ScheduleSummary.h"

namespace controller {

namespace {

std::string BackupText(ProjectStore& store, const std::string& project, unsigned number) {
  const std::vector<StoredState> backups = store.Backups(kSchedulerName);
  if (number >= 1 && number <= backups.size()) return backups[number - 1].xml;
  throw Failure("project " + Quoted(project) + " keeps " +
                CountText(backups.size(), "earlier schedule") + ", there is no number " +
                std::to_string(number));
}

std::string PresentText(ProjectStore& store, const std::string& project) {
  const auto state = store.State(kSchedulerName);
  if (state) return state->xml;
  throw Failure(
      "project " + Quoted(project) +
      " keeps no schedule yet; run \"vexalink serve\" or \"vexalink import\" on it first");
}

/// The project itself and its lock would be gone for good.
void RefuseOwnFiles(const ExportOptions& options) {
  std::error_code ignored;
  for (const char* end : {"", ".lock", "-journal"}) {
    const std::filesystem::path own = options.project.string() + end;
    if (options.file == own || std::filesystem::equivalent(options.file, own, ignored)) {
      throw Failure(Quoted(options.file) + " belongs to the project; give another file",
                    ExitStatus::kBadInput);
    }
  }
}

}  // namespace

ExitStatus RunExport(const ExportOptions& options) {
  std::signal(SIGPIPE, SIG_IGN);  // a reader that goes away is an error to be told
  RefuseOwnFiles(options);
  ProjectStore store(options.project, ProjectStore::Use::kLook);
  const std::string name = options.project.string();
  const std::string text =
      (options.backup ? BackupText(store, name, *options.backup) : PresentText(store, name)) + '\n';
  if (options.file == "-") {
    WriteWhole(STDOUT_FILENO, text, "standard output");
  } else {
    ReplaceFile(options.file, text);
  }
  return ExitStatus::kOk;
}

}  // namespace controller
