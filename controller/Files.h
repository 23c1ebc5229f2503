#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace controller {

/// Everything that a file holds; "-" is standard input. Throws a `Failure` where it cannot be read
/// or holds more than `limit` bytes.
std::string ReadWhole(const std::string& file, std::size_t limit);

/// Writes to an open file, all of it; `name` is what a `Failure` calls it.
void WriteWhole(int fd, std::string_view text, const std::string& name);

/// Puts `text` in the place of a file in one step: whoever reads it finds the old text or the new
/// one, also after a power cut. What is no ordinary file (a pipe, a device) is written to as it is.
/// Throws a `Failure`; the file is then as it was.
void ReplaceFile(const std::filesystem::path& file, std::string_view text);

}  // namespace controller
