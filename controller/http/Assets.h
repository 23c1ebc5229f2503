#pragma once

#include <span>
#include <string_view>

namespace controller {

/// One file of the page, as it was when the program was built.
struct Asset {
  /// As it is asked for, "/index.html" for example.
  std::string_view path;
  std::string_view mediaType;
  std::string_view content;
  /// The same compressed; empty where that is not smaller.
  std::string_view gzip;
  /// A strong entity tag, quotes included.
  std::string_view tag;
  /// Its name holds a hash of its content: it never becomes another.
  bool immutable = false;
};

/// All files of the page, by path. They last as long as the program.
std::span<const Asset> Assets();

}  // namespace controller
