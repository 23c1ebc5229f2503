#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vx {

/// The names of all elements there are, each kept once and known by a number, which is what an
/// element holds of it. Counted, so that a text with many different names leaves nothing behind.
/// From one thread only.
class NamePool {
 public:
  using Number = std::uint32_t;

  /// The number of `text`, with a reference that the caller gives back by `Return`.
  static Number Take(std::string_view text);
  static void Return(Number number) {
    if (--table_[number]->references == 0) Drop(number);
  }
  /// The name itself; stays as long as a reference does, and so do the others.
  static std::string_view Text(Number number) { return table_[number]->Text(); }
  /// "<name>" and "</name>", ready to be written.
  static std::string_view StartTag(Number number) { return table_[number]->StartTag(); }
  static std::string_view EndTag(Number number) { return table_[number]->EndTag(); }

 private:
  struct Name {
    explicit Name(std::string_view text) : size(text.size()) {
      tags.append("<").append(text).append("></").append(text).append(">");
    }
    std::string_view Text() const { return {tags.data() + 1, size}; }
    std::string_view StartTag() const { return {tags.data(), size + 2}; }
    std::string_view EndTag() const { return {tags.data() + size + 2, size + 3}; }

    std::string tags;
    std::size_t size;
    std::uint32_t references = 0;
  };
  class Store;

  static void Drop(Number number);

  static Name* const* table_;  // of the store, by number
};

}  // namespace vx
