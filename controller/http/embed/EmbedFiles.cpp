#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "controller/http/Digest.h"

// Writes a folder of files as a C++ source that defines `controller::Assets`. A tool of the build:
//   embed_files FOLDER SOURCE
// SOURCE is written only where it would become another, so that it is compiled only then.

namespace {

namespace fs = std::filesystem;

struct File {
  std::string path;
  std::string content;
  std::string gzip;
};

std::string ReadWhole(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream content;
  content << in.rdbuf();
  if (!in) throw std::runtime_error(file.string() + " cannot be read");
  return content.str();
}

/// Names go into a command line and into addresses; the page's build gives no others.
void CheckName(const std::string& path) {
  constexpr const char* kAllowed =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789./_-";
  if (path.find_first_not_of(kAllowed) == std::string::npos) return;
  throw std::runtime_error("the file \"" + path +
                           "\" has a name with other characters than letters, digits, \".\", \"_\" "
                           "and \"-\"; give it another");
}

/// As gzip makes it smallest; without the time, so that the same input gives the same program.
std::string Compressed(const fs::path& folder, const std::string& path) {
  const std::string quoted = "'" + (folder / path).string() + "'";
  if (folder.string().find('\'') != std::string::npos) {
    throw std::runtime_error("the folder's name holds a quotation mark");
  }
  FILE* const pipe = popen(("gzip -9 -n -c < " + quoted).c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("gzip cannot be started");
  std::string all;
  char bytes[65536];
  for (std::size_t size = 0; (size = std::fread(bytes, 1, sizeof(bytes), pipe)) > 0;) {
    all.append(bytes, size);
  }
  if (pclose(pipe) != 0) throw std::runtime_error("gzip failed at " + path);
  return all;
}

std::string MediaType(const std::string& path) {
  const std::map<std::string, std::string> types = {{".html", "text/html; charset=utf-8"},
                                                    {".css", "text/css; charset=utf-8"},
                                                    {".js", "text/javascript; charset=utf-8"},
                                                    {".mjs", "text/javascript; charset=utf-8"},
                                                    {".json", "application/json"},
                                                    {".webmanifest", "application/manifest+json"},
                                                    {".map", "application/json"},
                                                    {".svg", "image/svg+xml"},
                                                    {".png", "image/png"},
                                                    {".ico", "image/x-icon"},
                                                    {".woff2", "font/woff2"},
                                                    {".txt", "text/plain; charset=utf-8"}};
  const auto found = types.find(fs::path(path).extension().string());
  if (found != types.end()) return found->second;
  throw std::runtime_error("the file \"" + path +
                           "\" is of a kind that is not known; add it to MediaType in "
                           "controller/http/embed/EmbedFiles.cpp");
}

/// "app-5f3a9c1d.js": eight characters or more behind the last "-", a digit among them.
bool HasHashInName(const std::string& path) {
  const std::string stem = fs::path(path).stem().string();
  const std::size_t dash = stem.rfind('-');
  if (dash == std::string::npos) return false;
  const std::string hash = stem.substr(dash + 1);
  return hash.size() >= 8 && hash.find_first_of("0123456789") != std::string::npos;
}

/// As a literal, in octal digits where need be: these cannot run into what follows.
void WriteLiteral(std::ostream& out, const std::string& name, const std::string& content) {
  out << "const char " << name << "[] =\n    \"";
  std::size_t column = 0;
  for (const char byte : content) {
    const auto code = static_cast<unsigned char>(byte);
    if (++column > 100) {
      out << "\"\n    \"";
      column = 1;
    }
    if (code >= 0x20 && code < 0x7F && byte != '"' && byte != '\\' && byte != '?') {
      out << byte;
      continue;
    }
    out << '\\' << static_cast<char>('0' + (code >> 6)) << static_cast<char>('0' + (code >> 3 & 7))
        << static_cast<char>('0' + (code & 7));
  }
  out << "\";\n";
}

std::vector<File> ReadFolder(const fs::path& folder) {
  std::vector<File> files;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    File file;
    file.path = fs::relative(entry.path(), folder).generic_string();
    CheckName(file.path);
    file.content = ReadWhole(entry.path());
    file.gzip = Compressed(folder, file.path);
    if (file.gzip.size() >= file.content.size()) file.gzip.clear();
    files.push_back(std::move(file));
  }
  std::sort(files.begin(), files.end(),
            [](const File& left, const File& right) { return left.path < right.path; });
  return files;
}

std::string SourceOf(const std::vector<File>& files) {
  std::ostringstream out;
  out << "// Written by embed_files.\n#include \"controller/http/Assets.h\"\n\n"
         "namespace controller {\n\nnamespace {\n\n";
  std::ostringstream table;
  for (std::size_t at = 0; at < files.size(); ++at) {
    const File& file = files[at];
    const std::string plain = "kPlain" + std::to_string(at);
    const std::string gzip = "kGzip" + std::to_string(at);
    WriteLiteral(out, plain, file.content);
    WriteLiteral(out, gzip, file.gzip);
    table << "    {\"/" << file.path << "\", \"" << MediaType(file.path) << "\", {" << plain
          << ", sizeof(" << plain << ") - 1}, {" << gzip << ", sizeof(" << gzip << ") - 1},\n"
          << "     \"\\\"" << controller::ContentHash(file.content) << "\\\"\", "
          << (HasHashInName(file.path) ? "true" : "false") << "},\n";
  }
  out << "\nconstexpr Asset kAssets[] = {\n"
      << table.str() << "};\n\n}  // namespace\n\n"
      << "std::span<const Asset> Assets() { return kAssets; }\n\n}  // namespace controller\n";
  return out.str();
}

void WriteIfOther(const fs::path& file, const std::string& text) {
  if (fs::exists(file) && ReadWhole(file) == text) return;
  std::ofstream out(file, std::ios::binary);
  out << text;
  if (!out.flush()) throw std::runtime_error(file.string() + " cannot be written");
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc != 3) throw std::runtime_error("give FOLDER SOURCE");
    const std::vector<File> files = ReadFolder(argv[1]);
    if (files.empty()) throw std::runtime_error(std::string(argv[1]) + " holds no files");
    WriteIfOther(argv[2], SourceOf(files));
    return 0;
  } catch (const std::exception& failure) {
    std::cerr << "embed_files: " << failure.what() << '\n';
    return 1;
  }
}
