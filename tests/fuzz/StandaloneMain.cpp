// Feeds every file of the given folders to a fuzz target: `corpus_event_xml FOLDER...`. What breaks
// a property ends the process, and the last name written is that of the input.

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr unsigned int kMostSeconds = 20;  // for one input, sanitizers included

extern "C" void OnAlarm(int) {
  constexpr char kText[] = "this input takes too long\n";
  if (write(STDERR_FILENO, kText, sizeof kText - 1) < 0) _exit(2);
  _exit(1);
}

std::vector<std::filesystem::path> FilesOf(const std::string& folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::string Read(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace

int main(int count, char** arguments) {
  std::signal(SIGALRM, OnAlarm);
  std::size_t fed = 0;
  for (const std::string& folder : std::vector<std::string>(arguments + 1, arguments + count)) {
    for (const std::filesystem::path& file : FilesOf(folder)) {
      std::cout << file.string() << std::endl;
      const std::string input = Read(file);
      alarm(kMostSeconds);
      LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
      alarm(0);
      ++fed;
    }
  }
  std::cout << fed << " inputs fed" << std::endl;
  return fed == 0 ? 1 : 0;
}
