#include "TempFolder.h"

#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace fs = std::filesystem;

TempFolder::TempFolder() {
  std::string name = (fs::temp_directory_path() / "vexalink-test-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
  path_ = fs::canonical(name);
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  for (const auto& entry : fs::recursive_directory_iterator(path_, ignored)) {
    if (entry.is_directory(ignored) && !entry.is_symlink(ignored)) {
      fs::permissions(entry.path(), fs::perms::owner_all, ignored);
    }
  }
  fs::permissions(path_, fs::perms::owner_all, ignored);
  fs::remove_all(path_, ignored);
}

void WriteFile(const fs::path& file, std::string_view text) {
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out << text;
  if (!out.flush()) throw std::runtime_error("cannot write " + file.string());
}

std::string ReadFile(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

EnvironmentScope::EnvironmentScope(const char* name, std::optional<std::string> value)
    : name_(name) {
  if (const char* before = std::getenv(name)) before_ = before;
  Set(value);
}

EnvironmentScope::~EnvironmentScope() { Set(before_); }

void EnvironmentScope::Set(const std::optional<std::string>& value) {
  if (value) {
    ::setenv(name_.c_str(), value->c_str(), 1);
  } else {
    ::unsetenv(name_.c_str());
  }
  if (name_ == "TZ") ::tzset();
}
