#pragma once

#include <filesystem>
#include <string>

namespace controller {

/// Where the project is when nobody says: `project.db` in the service manager's state directory
/// (STATE_DIRECTORY, the first of a colon-separated list), else in `vexalink` under XDG_STATE_HOME,
/// else in ~/.local/state/vexalink. Throws a `Failure` where none of these is known.
std::filesystem::path DefaultProjectPath();

/// The absolute name of the project's file, links resolved, so that one project has one name and
/// one lock. Throws a `Failure` for an empty name.
std::filesystem::path ResolveProjectPath(const std::string& given);

/// Creates the folder of `file` and those above it where they are missing, readable for nobody else
/// (mode 0700). Throws a `Failure`.
void MakeFolderFor(const std::filesystem::path& file);

/// The project's file made ready to be opened: its folder exists afterwards.
const std::filesystem::path& PreparedProject(const std::filesystem::path& project);

}  // namespace controller
