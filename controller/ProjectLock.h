#pragma once

#include <filesystem>
#include <string>

namespace controller {

/// Keeps a project for one process: a locked file beside it, `PROJECT.lock`, which says who holds
/// it. The lock is the kernel's and dies with the process, however that ends; the file is taken
/// away at an orderly end, and one that was left behind stops nobody.
class ProjectLock {
 public:
  /// `use` is the command that takes the project, "serve" for example. Throws a `Failure` that
  /// names the process which holds the project, and since when.
  ProjectLock(const std::filesystem::path& project, const std::string& use);
  ~ProjectLock();
  ProjectLock(const ProjectLock&) = delete;
  ProjectLock& operator=(const ProjectLock&) = delete;

 private:
  std::filesystem::path path_;
  int fd_ = -1;
};

}  // namespace controller
