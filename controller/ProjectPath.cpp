#include "controller/ProjectPath.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <pwd.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

#include "controller/Failure.h"
#include "controller/Printable.h"

namespace controller {

namespace fs = std::filesystem;

namespace {

/// An environment variable that holds an absolute path; the XDG rules say to ignore any other.
std::string_view AbsolutePathFrom(const char* variable) {
  const char* value = std::getenv(variable);
  if (value == nullptr || value[0] != '/') return {};
  return value;
}

fs::path HomeFolder() {
  if (const auto home = AbsolutePathFrom("HOME"); !home.empty()) return home;
  const passwd* user = getpwuid(getuid());
  if (user != nullptr && user->pw_dir != nullptr && user->pw_dir[0] == '/') return user->pw_dir;
  throw Failure("no home folder is known to keep the project in; give --project FILE",
                ExitStatus::kBadInput);
}

}  // namespace

fs::path DefaultProjectPath() {
  if (const auto given = AbsolutePathFrom("STATE_DIRECTORY"); !given.empty()) {
    return fs::path(given.substr(0, given.find(':'))) / "project.db";
  }
  if (const auto state = AbsolutePathFrom("XDG_STATE_HOME"); !state.empty()) {
    return fs::path(state) / "vexalink" / "project.db";
  }
  return HomeFolder() / ".local" / "state" / "vexalink" / "project.db";
}

fs::path ResolveProjectPath(const std::string& given) {
  if (given.empty()) {
    throw Failure("--project is empty; give the name of a file", ExitStatus::kBadInput);
  }
  std::error_code error;
  const fs::path resolved = fs::weakly_canonical(fs::absolute(given, error), error);
  if (error) {
    throw Failure("project " + Quoted(given) + ": " + error.message() + "; give another --project",
                  ExitStatus::kBadInput);
  }
  return resolved;
}

void MakeFolderFor(const fs::path& file) {
  const fs::path folder = file.parent_path();
  fs::path built;
  for (const fs::path& part : folder) {
    built /= part;
    // The mode is given to mkdir, not set afterwards: there is no moment at which others could look
    // in.
    if (::mkdir(built.c_str(), 0700) == 0 || errno == EEXIST) continue;
    // Of a folder that is there but may not be written, mkdir says so instead of "exists".
    std::error_code ignored;
    const int why = errno;
    if (fs::is_directory(built, ignored)) continue;
    throw Failure("folder " + Quoted(built.string()) + " cannot be made: " + std::strerror(why) +
                  "; give another --project");
  }
}

const std::filesystem::path& PreparedProject(const std::filesystem::path& project) {
  MakeFolderFor(project);
  return project;
}

}  // namespace controller
