#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/// A folder of a test's own; it goes with everything in it.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  /// A name in it.
  std::filesystem::path operator/(std::string_view name) const { return path_ / name; }
  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

/// Writes a file, and reads one whole.
void WriteFile(const std::filesystem::path& file, std::string_view text);
std::string ReadFile(const std::filesystem::path& file);

/// An environment variable, until this goes out of scope; nothing: it is not set. For TZ the C
/// library is told.
class EnvironmentScope {
 public:
  EnvironmentScope(const char* name, std::optional<std::string> value);
  ~EnvironmentScope();
  EnvironmentScope(const EnvironmentScope&) = delete;
  EnvironmentScope& operator=(const EnvironmentScope&) = delete;

 private:
  void Set(const std::optional<std::string>& value);

  std::string name_;
  std::optional<std::string> before_;
};
