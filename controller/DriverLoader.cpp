#include "controller/DriverLoader.h"

#include <dlfcn.h>
#include <filesystem>
#include <utility>

#include "controller/Failure.h"
#include "controller/Printable.h"

namespace controller {

std::unique_ptr<DriverLoader> DriverLoader::Open(const std::string& path, std::string* error) {
  // With a slash, so that the loader looks nowhere else.
  const std::string file = std::filesystem::absolute(path).string();
  void* const library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    *error = "cannot load the driver \"" + path + "\": " + dlerror() +
             "; give the path of vexalink_agent_scheduler.so with --agent";
    return nullptr;
  }
  const auto entry = reinterpret_cast<VxGetCreationFunc>(dlsym(library, "GetCreationFunc"));
  const VxCreateFunc create = entry == nullptr ? nullptr : entry();
  if (create == nullptr) {
    *error = "\"" + path + "\" is no driver: it does not offer GetCreationFunc";
    dlclose(library);
    return nullptr;
  }
  return std::unique_ptr<DriverLoader>(new DriverLoader(library, create, file));
}

std::string DriverLoader::DefaultAgentPath() {
  namespace fs = std::filesystem;
  constexpr char kName[] = "vexalink_agent_scheduler.so";
  std::error_code failed;
  const fs::path program = fs::read_symlink("/proc/self/exe", failed);
  const fs::path folder = failed ? fs::path(".") : program.parent_path();
  const fs::path beside = folder.parent_path() / "lib" / kName;
  return (fs::exists(beside, failed) ? beside : folder / kName).string();
}

DriverLoader::DriverLoader(void* library, VxCreateFunc create, std::string path)
    : library_(library), create_(create), path_(std::move(path)) {}

DriverLoader::~DriverLoader() { dlclose(library_); }

IDriver* DriverLoader::Create(IInstanceManager& manager) const { return create_(manager); }

void* DriverLoader::Find(const char* symbol) const { return dlsym(library_, symbol); }

std::unique_ptr<DriverLoader> LoadDriver(const std::string& path) {
  std::string error;
  auto loader = DriverLoader::Open(path, &error);
  if (loader == nullptr) throw Failure(Printable(error));
  return loader;
}

}  // namespace controller
