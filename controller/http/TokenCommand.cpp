#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>

#include "controller/CommandLine.h"
#include "controller/Failure.h"
#include "controller/Log.h"
#include "controller/Printable.h"
#include "controller/ProjectLock.h"
#include "controller/ProjectPath.h"
#include "controller/ProjectSchema.h"
#include "controller/ProjectStore.h"
#include "controller/http/TokenStore.h"

namespace controller {

namespace {

constexpr int kBusyMilliseconds = 5000;

struct TokenLine {
  std::optional<std::string> project;
  std::string name;
  std::string role = "view";
};

bool IsThereAndUpToDate(const std::filesystem::path& project) {
  std::error_code error;
  if (!std::filesystem::exists(project, error) || std::filesystem::is_empty(project, error)) {
    return false;
  }
  ProjectStore(project, ProjectStore::Use::kLook);
  SqliteDatabase database(project.string(), SqliteDatabase::Mode::kExisting, kBusyMilliseconds);
  return database.Number("PRAGMA user_version") == kProjectSchemaVersion;
}

/// The project's database, also while a controller runs it: the table of tokens is nobody's alone.
/// A project that is not there yet is made, so that the first controller can find a token in it.
SqliteDatabase OpenProject(const std::filesystem::path& project) {
  if (!IsThereAndUpToDate(project)) {
    MakeFolderFor(project);
    const ProjectLock lock(project, "token");
    ProjectStore(project, ProjectStore::Use::kKeep);
  }
  SqliteDatabase database(project.string(), SqliteDatabase::Mode::kExisting, kBusyMilliseconds);
  database.Execute("PRAGMA synchronous = EXTRA");
  return database;
}

Role GivenRole(const std::string& name) {
  if (const auto role = RoleOf(name)) return *role;
  throw Failure("--role is " + Quoted(name) + "; give view, operate or edit",
                ExitStatus::kBadInput);
}

int AddToken(const TokenLine& line) {
  const Role role = GivenRole(line.role);
  CheckTokenName(line.name);
  SqliteDatabase database = OpenProject(ProjectFile(line.project));
  const std::string token = TokenStore(database).Add(line.name, role);
  // Alone on standard output, so that it can go from here to where it is wanted.
  std::cerr << "The token of " << line.name << ", role " << RoleName(role)
            << "; it is shown this once:\n";
  std::cout << token << '\n';
  return 0;
}

int ListTokens(const TokenLine& line) {
  SqliteDatabase database = OpenProject(ProjectFile(line.project));
  const std::vector<TokenRow> all = TokenStore(database).All();
  if (all.empty()) std::cerr << "Nobody has a token.\n";
  for (const TokenRow& row : all) {
    std::cout << row.name << '\t' << RoleName(row.role) << '\t' << LocalTimeText(row.created)
              << '\n';
  }
  return 0;
}

int RemoveToken(const TokenLine& line) {
  SqliteDatabase database = OpenProject(ProjectFile(line.project));
  if (TokenStore(database).Remove(line.name)) return 0;
  throw Failure("there is no token " + Quoted(line.name) +
                    "; \"vexalink token list\" shows those that are there",
                ExitStatus::kBadInput);
}

}  // namespace

void AddTokenCommand(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<TokenLine>();
  CLI::App* command = app.add_subcommand(
      "token", "Who may reach the controller from elsewhere: make, list and remove tokens");
  command->require_subcommand(1);
  command->footer(
      std::string("What is changed counts at once, also for a controller that runs.\n") +
      kExitStatuses);

  CLI::App* add = command->add_subcommand("add", "Make a token and show it, this once");
  add->add_option("NAME", line->name,
                  "Who has it, for the journal: letters, digits, \".\", \"_\", \"-\"")
      ->required();
  add->add_option("--role", line->role,
                  "view (default) only reads; operate also runs, presses, pauses, skips, sets away "
                  "and tests; edit may do everything")
      ->type_name("ROLE");
  AddProjectOption(*add, line->project);
  add->callback([line, &run] { run = [line] { return AddToken(*line); }; });

  CLI::App* list = command->add_subcommand("list", "Name, role and day of each token");
  AddProjectOption(*list, line->project);
  list->callback([line, &run] { run = [line] { return ListTokens(*line); }; });

  CLI::App* remove = command->add_subcommand("remove", "Take a token away");
  remove->add_option("NAME", line->name, "Whose")->required();
  AddProjectOption(*remove, line->project);
  remove->callback([line, &run] { run = [line] { return RemoveToken(*line); }; });
}

}  // namespace controller
