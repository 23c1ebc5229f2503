#pragma once

#include <memory>
#include <string>

#include "host/IDriver.h"

namespace controller {

/// A driver's shared library, loaded for as long as this lives; the drivers created from it must be
/// gone before.
class DriverLoader {
 public:
  /// Loads the library at `path`. Null where it cannot be loaded or is no driver; `*error` then
  /// says why and what to do.
  static std::unique_ptr<DriverLoader> Open(const std::string& path, std::string* error);
  /// Where the scheduler agent lies beside this program: ../lib from the program's folder, else the
  /// folder itself.
  static std::string DefaultAgentPath();

  ~DriverLoader();
  DriverLoader(const DriverLoader&) = delete;
  DriverLoader& operator=(const DriverLoader&) = delete;

  /// A new driver, owned by the caller (`delete`), or null where it could not be made.
  IDriver* Create(IInstanceManager& manager) const;
  /// The address of a symbol of the library, by its mangled name; null where it has none.
  void* Find(const char* symbol) const;
  const std::string& Path() const { return path_; }

 private:
  DriverLoader(void* library, VxCreateFunc create, std::string path);

  void* library_;
  VxCreateFunc create_;
  std::string path_;
};

/// Loads a driver's library; throws a `Failure`.
std::unique_ptr<DriverLoader> LoadDriver(const std::string& path);

}  // namespace controller
